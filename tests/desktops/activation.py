"""Whether the window comes to the front when another program covers it and has the keyboard."""

import contextlib
import os
import subprocess

from gi.repository import GLib
from launcher import Launcher
from results import NotRun
from sessionbus import call
from waiting import wait_until

COLOUR = "rgb(255,0,255)"
# Of the launcher, in pixels. The program's window is larger, and nothing else is nearly as large.
SMALLEST_PART = 200 * 200


class ActivationChecks:
    """The part of the checks that is about coming to the front."""

    def start_while_covered(self):
        """A second start from a panel or a menu, which hand it their token."""
        self.need(self.window)
        with self.covered() as launcher:
            token = self.token_of(launcher)
            self.start_second(XDG_ACTIVATION_TOKEN=token, DESKTOP_STARTUP_ID=token)
            self.wait_front()
        return self.in_front()

    def call_while_covered(self):
        """As GLib starts what can be asked over the bus; it knows one name for all tokens."""
        self.need(self.window)
        with self.covered() as launcher:
            token = GLib.Variant("s", self.token_of(launcher))
            call(self.program.NAME, "/com/tarnel/Plenaura", "org.freedesktop.Application", "Activate",
                 GLib.Variant("(a{sv})", ({"desktop-startup-id": token},)))
            self.wait_front()
        return self.in_front()

    def icon_while_covered(self):
        self.need(self.window)
        self.need_tray()
        self.need(self.tray_icon)
        if not self.is_item_registered():
            raise NotRun("The icon is a window of its own")
        with self.covered() as launcher:
            self.program.hand_token_to_tray_icon(self.token_of(launcher))
            self.program.click_tray_icon()
            self.wait_front()
        return self.in_front()

    def start_without_token(self):
        """Whether the window may come to the front is for the desktop to say then."""
        self.need(self.window)
        with self.covered():
            self.start_second()
            return self.in_front() if self.is_in_front_once_settled() else "Stays behind"

    # What they are made of.

    @contextlib.contextmanager
    def covered(self):
        # A window that is still on its way to the front would cover the other one again.
        self.screens.settle()
        launcher = Launcher()
        try:
            wait_until(lambda: not self.program.active_window() and self.covered_area(),
                       "the other window to have the keyboard")
            # The desktop goes by what the person has used last.
            if self.arguments.keyboard:
                launcher.use(lambda: self.ask_desktop("press_key"))
            self.screens.settle()
            self.cover = self.covered_area()
            yield launcher
        finally:
            launcher.end()

    @staticmethod
    def token_of(launcher):
        token = launcher.token()
        if not token:
            raise NotRun("The desktop gives no tokens")
        return token

    def start_second(self, **tokens):
        second = subprocess.run([self.program.binaries / self.program.program],
                                env={**os.environ, **tokens}, check=False)
        if second.returncode != 0:
            raise AssertionError(f"the second start ended with status {second.returncode}")

    def wait_front(self):
        wait_until(self.is_in_front, "the window to be in front, with the keyboard")

    def is_in_front_once_settled(self):
        self.screens.settle()
        return self.is_in_front()

    def is_in_front(self):
        return self.program.active_window() and (
            self.arguments.raises_none or self.covered_area() < self.cover - SMALLEST_PART)

    def in_front(self):
        return "Gets the keyboard" if self.arguments.raises_none else "Comes to the front"

    def covered_area(self):
        """How many pixels of the launcher's colour are seen."""
        self.screens.take()
        answer = subprocess.run(
            ["convert", self.screens.file, "-alpha", "off", "-fill", "black", "+opaque", COLOUR,
             "-fill", "white", "-opaque", COLOUR, "-format", "%[fx:mean*w*h]", "info:"],
            capture_output=True, text=True, check=True)
        return float(answer.stdout)
