#!/usr/bin/python3
"""The Flatpak in its sandbox on GNOME, whose wallpaper portal asks the person first.

Runs where tests/desktops/session has started GNOME.
"""

import os
import pathlib
import signal
import subprocess
import sys
import tempfile

import sandboxed

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "desktops"))
import check  # noqa: E402
import driver  # noqa: E402
from gi.repository import Atspi, GLib  # noqa: E402
from sandboxed import Permissions  # noqa: E402
from screens import RED  # noqa: E402
from sessionbus import call, has_owner, process_of  # noqa: E402
from waiting import Process, wait_until  # noqa: E402

PORTAL = "org.freedesktop.portal.Desktop"
STORE = ("org.freedesktop.impl.portal.PermissionStore",
         "/org/freedesktop/impl/portal/PermissionStore",
         "org.freedesktop.impl.portal.PermissionStore")

# The shell shows the buttons of its dialogues to accessibility, but does not let it press them.
PRESS = """(function press(actor) {
    if (actor instanceof imports.gi.St.Button && actor.label === '%s')
        actor.emit('clicked', 0);
    actor.get_children().forEach(press);
})(global.stage)"""


class SandboxCheck(check.DesktopCheck):
    def __init__(self, arguments):
        super().__init__(arguments)
        self.program = sandboxed.Plenaura(pathlib.Path.home())

    def checks(self):
        return [self.window, self.tray_icon, self.denied, self.picture, self.next_picture,
                self.broken_picture, self.missing_picture, self.painter_hung, self.painter_gone,
                self.no_wallpaper_portal, self.no_wayland]

    def question(self, answer):
        """The button of the dialogue that asks whether the program may."""
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application is None or application.get_name() == "Plenaura":
                continue
            for node in driver.descendants(application):
                if node.get_name() == answer and node.get_role_name() == "push button" \
                        and driver.is_showing(node):
                    return node
        return None

    def answer(self, answer):
        wait_until(lambda: self.question(answer), f"the question with {answer!r}")
        self.keep_evidence("question")
        call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval",
             GLib.Variant("(s)", (PRESS % answer,)))
        wait_until(lambda: not self.question(answer), "the question to go")

    def denied(self):
        self.need(self.window)
        self.apply("red.png")
        self.answer("Deny")
        self.wait_new_status()
        return self.expect_failed()

    def picture(self):
        """The desktop keeps both answers; the person takes back the first one."""
        self.need(self.denied)
        call(*STORE, "DeletePermission",
             GLib.Variant("(sss)", ("wallpaper", "wallpaper", self.program.NAME)))
        self.apply("red.png")
        self.answer("Allow")
        self.wait_new_status()
        self.expect_set([RED])
        self.shown[0] = RED

    def painter_gone(self):
        self.need(self.picture)
        self.apply_in_vain("broken.png")
        for process in self.painters():
            os.kill(process, signal.SIGKILL)
        wait_until(lambda: not has_owner(PORTAL), "the portal's end")
        self.apply("red.png")
        self.wait_new_status()
        self.expect_set([RED])
        return "The bus starts it again"

    def no_wallpaper_portal(self):
        """As on desktops that have portals, but none for wallpapers."""
        self.need(self.picture)
        with tempfile.TemporaryDirectory() as no_portals:
            portal = Process(["/usr/libexec/xdg-desktop-portal", "--replace"],
                             env={**os.environ, "XDG_DESKTOP_PORTAL_DIR": no_portals})
            try:
                wait_until(lambda: has_owner(PORTAL)
                           and process_of(PORTAL) == portal.child.pid, "the other portal")
                self.apply("green.png")
                self.wait_new_status()
            finally:
                portal.end()
        if self.status != "Failed: this desktop is not supported":
            raise AssertionError(f"the status is {self.status!r}")
        return self.status

    def no_wayland(self):
        """What the manifest permits for it is needed: there is no X server here."""
        self.program.end()
        with Permissions().without("sockets", "wayland"):
            start = subprocess.run(self.program.command(), check=False, capture_output=True,
                                   text=True)
        if start.returncode == 0:
            raise AssertionError("a window came all the same")
        return start.stderr.splitlines()[0]


if __name__ == "__main__":
    SandboxCheck(check.arguments()).run()
