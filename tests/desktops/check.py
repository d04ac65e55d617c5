#!/usr/bin/python3
"""Uses the built program on a real desktop and looks at the screens; one result for each check.

Runs where tests/desktops/session has started the desktop.
"""

import argparse
import contextlib
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "journeys"))
import driver  # noqa: E402
import results  # noqa: E402
from gi.repository import Atspi, GLib  # noqa: E402
from sessionbus import call, has_owner  # noqa: E402
from waiting import PATIENCE, Impatience, wait_until  # noqa: E402
from screens import Screens  # noqa: E402

RED, GREEN = (255, 0, 0), (0, 128, 0)
# A desktop is given three seconds to answer; the rest is for this machine to be busy.
ANSWER_TIME = 5.0
QUICK = 1.0
FADING = 1.5
LARGEST_ICON = 64


class NotRun(Exception):
    """A check that makes no sense on this desktop, and why."""


class DesktopCheck:
    def __init__(self, arguments):
        self.arguments = arguments
        home = pathlib.Path.home()
        self.program = driver.Plenaura(arguments.programs.resolve(), home)
        self.screens = Screens(arguments.screens, arguments.screenshot, home)
        self.shown = []
        self.status = ""
        self.passed = set()

    def run(self):
        self.paint_pictures()
        checks = [self.window, self.tray_icon, self.picture, self.next_picture, self.broken_picture,
                  self.missing_picture, self.painter_hung, self.painter_gone,
                  self.logout]
        for check in checks:
            self.report(check)
        self.program.end()

    def report(self, check):
        """Runs one check and writes down what came of it."""
        name = check.__name__.replace("_", " ")
        outcome, detail = results.PASSED, ""
        try:
            detail = check() or ""
            self.passed.add(check)
        except NotRun as reason:
            outcome, detail = results.NOT_RUN, str(reason)
        except (AssertionError, GLib.Error, subprocess.CalledProcessError) as error:
            outcome, detail = results.FAILED, str(error)
            self.keep_evidence(name)
        results.add(self.arguments.results, self.arguments.desktop, self.arguments.screens, name,
                    outcome, detail)

    def need(self, check):
        if check not in self.passed:
            raise NotRun(f"Means nothing without: {check.__name__.replace('_', ' ')}")

    def keep_evidence(self, check):
        file = f"{self.arguments.desktop}-{self.arguments.screens}-{check.replace(' ', '-')}.png"
        with contextlib.suppress(subprocess.CalledProcessError):
            subprocess.run([*self.screens.command, self.arguments.results.with_name(file)],
                           check=True, stdout=subprocess.DEVNULL)

    def paint_pictures(self):
        folder = self.program.image_folder
        folder.mkdir(parents=True)
        for name, colour in (("red", RED), ("green", GREEN), ("missing", GREEN)):
            subprocess.run(["convert", "-size", "800x600", "xc:rgb({},{},{})".format(*colour),
                            f"PNG24:{folder}/{name}.png"], check=True)
        (folder / "broken.png").write_text("This is no picture.\n")

    # The checks, in their order.

    def window(self):
        self.screens.settle()
        self.shown = self.screens.colours()
        self.program.start()
        wait_until(lambda: len(self.program.look("list item")) == 4, "the pictures in the window")

    def picture(self):
        self.need(self.window)
        return self.apply_and_see("red.png", RED)

    def next_picture(self):
        self.need(self.picture)
        return self.apply_and_see("green.png", GREEN)

    def broken_picture(self):
        self.need(self.window)
        return self.apply_in_vain("broken.png")

    def missing_picture(self):
        self.need(self.window)
        tile = self.program.find("list item", "missing.png")
        (self.program.image_folder / "missing.png").unlink()
        return self.apply_in_vain(tile)

    def painter_hung(self):
        self.need(self.picture)
        with self.stopped(self.painters()):
            self.apply("red.png")
            start = time.monotonic()
            slowest = self.wait_new_status(ANSWER_TIME)
            took = time.monotonic() - start
            self.expect_failed()
            if slowest > QUICK:
                raise AssertionError(f"the window did not answer for {slowest:.1f} s")
        failure = self.status
        self.apply("green.png")
        self.wait_new_status()
        self.expect_set([GREEN, *self.shown[1:]])
        return f"{failure} (after {took:.1f} s)"

    def painter_gone(self):
        self.need(self.picture)
        painters = self.painters()
        if self.arguments.painters_own_windows:
            raise NotRun("All windows go with the painter")
        # A status that the next one is sure to differ from.
        self.apply("broken.png")
        self.wait_new_status()
        for process in painters:
            os.kill(process, signal.SIGKILL)
        wait_until(lambda: not any(self.is_there(name) for name in self.painter_names),
                   "the painter's end")
        self.apply("red.png")
        self.wait_new_status()
        if self.status != driver.SET:
            return self.expect_failed()
        # Without its painter an X11 desktop is like one that never had any.
        self.expect_set([RED])
        return "Shown on the bare screen"

    def tray_icon(self):
        self.need(self.window)
        if not self.arguments.tray:
            raise NotRun("There is no tray")
        return wait_until(lambda: (self.is_item_registered() and "As a StatusNotifierItem")
                          or (self.is_icon_embedded() and "Embedded"), "the icon in the tray")

    def logout(self):
        """The program says no to the end of the session, closes its windows and stays."""
        self.need(self.window)
        if not self.arguments.logout:
            raise NotRun("No session manager was started")
        subprocess.run(["bash", "-c", "ask_logout"], check=True)
        wait_until(lambda: not self.program.windows(), "the windows to close")
        wait_until(lambda: subprocess.run(["bash", "-c", "is_session_kept"], check=False,
                                          stdout=subprocess.DEVNULL).returncode == 0,
                   "the session to run on")
        call(self.program.NAME, "/com/tarnel/Plenaura", "org.freedesktop.Application",
                    "Activate", GLib.Variant("(a{sv})", ({},)))
        self.program.find("push button", driver.GENERATE)
        return "Cancelled, the program stays"

    # What they are made of.

    def is_item_registered(self):
        item = self.program.tray_item()
        # Some watchers add the object's path to the name.
        return item and process_of(re.split("[@/]", item)[0]) == self.program.process.child.pid

    def is_icon_embedded(self):
        """Whether a small window of the program is in a window of somebody else."""
        search = subprocess.run(["xdotool", "search", "--pid", str(self.program.process.child.pid)],
                                capture_output=True, text=True, check=False)
        return any(is_small_and_embedded(window) for window in search.stdout.split())

    @property
    def painter_names(self):
        return self.arguments.painters.split()

    def painters(self):
        """Process ids. The bus is asked anew, since a desktop may start a painter again."""
        found = [int(name) if name.isdigit() else process_of(name) for name in self.painter_names]
        if not found:
            raise NotRun("Nobody but the program paints")
        return found

    @staticmethod
    def is_there(painter):
        return is_alive(painter) if painter.isdigit() else has_owner(painter)

    @staticmethod
    @contextlib.contextmanager
    def stopped(processes):
        for process in processes:
            os.kill(process, signal.SIGSTOP)
        try:
            yield
        finally:
            for process in processes:
                os.kill(process, signal.SIGCONT)

    def apply(self, tile):
        """Presses the tile's own button, which is there once the tile has the focus."""
        if isinstance(tile, str):
            tile = self.program.find("list item", tile)

        def button():
            Atspi.Component.grab_focus(tile)
            return [node for node in driver.descendants(tile)
                    if node.get_name() == "Apply" and driver.is_showing(node)]
        self.program.act(wait_until(button, "the tile's button")[0], "Press")

    def statuses(self):
        return [name for name in self.program.names("label")
                if name == driver.SET or name.startswith("Failed")]

    def apply_and_see(self, name, colour):
        self.apply(name)
        self.status = wait_until(self.statuses, "a status")[0]
        self.expect_set([colour, *self.shown[1:]])
        self.shown[0] = colour

    def expect_set(self, wanted):
        """Takes the program at its word: if it says so, the screens show it, all that are named."""
        if self.status != driver.SET:
            raise AssertionError(self.status)
        try:
            wait_until(lambda: self.screens.show(wanted), f"{wanted} on the screens")
        except Impatience as error:
            raise AssertionError(f"{error}; they show {self.screens.colours()}") from None

    def apply_in_vain(self, tile):
        self.apply(tile)
        self.wait_new_status()
        self.expect_failed()
        end = time.monotonic() + FADING
        while time.monotonic() < end:
            if not self.screens.show(self.shown):
                raise AssertionError(f"{self.status}, but the screens show {self.screens.colours()}")
        return self.status

    def wait_new_status(self, patience=PATIENCE):
        """Waits for another status than the last. Returns the longest time the window was silent."""
        slowest = 0.0

        def is_new():
            nonlocal slowest
            start = time.monotonic()
            statuses = self.statuses()
            slowest = max(slowest, time.monotonic() - start)
            return statuses and statuses[0] != self.status and statuses[0]
        self.status = wait_until(is_new, f"another status than {self.status!r}", patience)
        return slowest

    def expect_failed(self):
        if not self.status.startswith("Failed: "):
            raise AssertionError(f"the status is {self.status!r}")
        return self.status


def process_of(name):
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                       "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]


def is_small_and_embedded(window):
    answer = subprocess.run(["xwininfo", "-children", "-stats", "-id", window],
                            capture_output=True, text=True, check=False).stdout
    parent = re.search("Parent window id: (.*)", answer)
    width = re.search("Width: (.*)", answer)
    return bool(parent and width and "(the root window)" not in parent[1]
                and 1 < int(width[1]) <= LARGEST_ICON and "IsViewable" in answer)


def is_alive(process):
    try:
        state = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0]
    except OSError:
        return False
    return state != "Z"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--desktop", required=True)
    parser.add_argument("--screens", type=int, required=True)
    parser.add_argument("--results", type=pathlib.Path, required=True)
    parser.add_argument("--painters", default="")
    parser.add_argument("--painters-own-windows", action="store_true")
    parser.add_argument("--tray", action="store_true")
    parser.add_argument("--logout", action="store_true")
    parser.add_argument("--screenshot", required=True)
    DesktopCheck(parser.parse_args()).run()


if __name__ == "__main__":
    main()
