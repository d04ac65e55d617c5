"""The icon in the tray, and panels that come and go."""

import re
import subprocess

from gi.repository import GLib
from results import NotRun
from sessionbus import process_of
from waiting import wait_until

LARGEST_ICON = 64


class TrayChecks:
    """The part of the checks that is about the tray."""

    def tray_icon(self):
        self.need(self.window)
        self.need_tray()
        return self.wait_icon()

    def panel_restarted(self):
        self.need_tray()
        self.need(self.tray_icon)
        self.need_panel()
        self.end_panel()
        self.ask_desktop("start_panel")
        return self.wait_icon()

    def panel_late(self):
        """The panel is started after the program, as when both start at login."""
        self.need_tray()
        self.need(self.panel_restarted)
        if self.arguments.other_tray:
            raise NotRun("Another tray would take the icon meanwhile")
        self.program.end()
        self.end_panel()
        try:
            self.start_program()
            # A panel that was ended a moment ago may still have taken it.
            wait_until(lambda: not self.icon(), "no icon to be there without a panel")
        finally:
            self.ask_desktop("start_panel")
        return self.wait_icon()

    # What they are made of.

    def need_tray(self):
        if not self.arguments.tray:
            raise NotRun("There is no tray")

    def need_panel(self):
        if not self.arguments.panel:
            raise NotRun("The panel is not started anew here")

    def end_panel(self):
        self.ask_desktop("end_panel")
        wait_until(lambda: not self.icon(), "the icon to go with the panel")

    def wait_icon(self):
        return wait_until(self.icon, "the icon in the tray")

    def icon(self):
        """How the tray has it; nothing if it does not."""
        if self.is_item_registered():
            return "As a StatusNotifierItem"
        return "Embedded" if self.is_icon_embedded() else ""

    def is_item_registered(self):
        """Whether what knows all icons knows ours, and a panel to show it."""
        return any(map(self.is_ours, self.program.tray_items())) \
            and self.program.ask_tray("IsStatusNotifierHostRegistered") \
            and self.ask_desktop("shows_icons", check=False)

    def is_ours(self, item):
        try:
            return process_of(item) == self.program.process_id()
        except GLib.Error:
            return False  # It has gone since.

    def is_icon_embedded(self):
        """Whether a small window of the program is in a window of somebody else."""
        search = subprocess.run(["xdotool", "search", "--pid", str(self.program.process.child.pid)],
                                capture_output=True, text=True, check=False)
        return any(is_small_and_embedded(window) for window in search.stdout.split())


def is_small_and_embedded(window):
    answer = subprocess.run(["xwininfo", "-children", "-stats", "-id", window],
                            capture_output=True, text=True, check=False).stdout
    parent = re.search("Parent window id: (.*)", answer)
    width = re.search("Width: (.*)", answer)
    return bool(parent and width and "(the root window)" not in parent[1]
                and 1 < int(width[1]) <= LARGEST_ICON and "IsViewable" in answer)
