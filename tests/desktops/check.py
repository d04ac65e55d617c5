#!/usr/bin/python3
"""Uses the built program on a real desktop and looks at the screens; one result for each check.

Runs where tests/desktops/session has started the desktop.
"""

import argparse
import contextlib
import os
import pathlib
import signal
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "journeys"))
import driver  # noqa: E402
import results  # noqa: E402
from gi.repository import Atspi, GLib  # noqa: E402
from activation import ActivationChecks  # noqa: E402
from primary import PrimaryScreenCheck  # noqa: E402
from results import NotRun  # noqa: E402
from sessionbus import has_owner, process_of  # noqa: E402
from screens import GREEN, RED, Screens  # noqa: E402
from tray import TrayChecks  # noqa: E402
from waiting import PATIENCE, Impatience, wait_until  # noqa: E402

# A desktop is given three seconds to answer; the rest is for this machine to be busy.
ANSWER_TIME = 5.0
# One that waits for the desktop would be silent for as long.
QUICK = 2.0
FADING = 1.5
# What came of it where a process of the program paints.
ANEW = "Painted anew"


class DesktopCheck(TrayChecks, ActivationChecks, PrimaryScreenCheck):
    def __init__(self, arguments):
        self.arguments = arguments
        home = pathlib.Path.home()
        self.program = driver.Plenaura(arguments.programs.resolve(), home)
        self.screens = Screens(arguments.screens, arguments.screenshot, home)
        self.before = []
        self.shown = []
        self.status = ""
        self.passed = set()

    def run(self):
        self.paint_pictures()
        for check in self.checks():
            self.report(check)
        self.program.end()

    def checks(self):
        return [self.window, self.tray_icon, self.panel_restarted, self.panel_late, self.second_start,
                self.start_while_covered, self.call_while_covered, self.icon_while_covered,
                self.start_without_token, self.picture, self.next_picture, self.broken_picture,
                self.missing_picture, self.primary_screen, self.painter_hung, self.program_killed,
                self.painter_gone, self.logout]

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
        self.before = self.screens.colours()
        self.shown = list(self.before)
        self.start_program()

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
            if self.has_own_painter():
                self.wait_new_status()
                self.expect_set([RED, *self.shown[1:]])
                self.shown[0] = RED
                return ANEW
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

    def program_killed(self):
        """What it has set remains, unless a process of its own shows it."""
        self.need(self.picture)
        own_painters = self.painters() if self.has_own_painter() else []
        self.program.end(signal.SIGKILL)
        wait_until(lambda: not any(is_alive(process) for process in own_painters), "the painter's end")
        if own_painters:
            self.shown[0] = self.before[0]
        self.screens.settle()
        if not self.screens.show(self.shown):
            raise AssertionError(f"the screens show {self.screens.colours()}")
        self.start_program()
        self.status = ""
        return "The picture goes, too" if own_painters else "The picture stays"

    def painter_gone(self):
        self.need(self.picture)
        if self.has_own_painter():
            return self.own_painter_gone()
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

    def own_painter_gone(self):
        """The program starts it again, and nobody has to ask for the picture."""
        self.apply("green.png")
        self.wait_new_status()
        self.expect_set([GREEN, *self.shown[1:]])
        painters = self.painters()
        for process in painters:
            os.kill(process, signal.SIGKILL)
        wait_until(lambda: set(self.current_painters()) - set(painters),
                   "the painter to be started again")
        self.expect_set([GREEN, *self.shown[1:]])
        return "Started again"

    def logout(self):
        """The program says no to the end of the session, closes its windows and stays."""
        self.need(self.window)
        if not self.arguments.logout:
            raise NotRun("No session manager was started")
        self.ask_desktop("ask_logout")
        wait_until(lambda: not self.program.windows(), "the windows to close")
        wait_until(lambda: self.ask_desktop("is_session_kept", check=False), "the session to run on")
        self.start_again()
        return self.arguments.logout

    def second_start(self):
        """With no window there is a way back, and without a tray the window brings its menu."""
        self.need(self.window)
        if not self.ask_desktop("close_window", check=False):
            raise NotRun("Nothing can close a window from outside")
        wait_until(lambda: not self.program.windows(), "the window to close")
        self.start_again()
        if self.arguments.tray:
            self.need(self.tray_icon)
            self.program.wait_gone("push button", "Menu")
            return "Shows the window"
        self.program.find("push button", "Menu")
        return "Shows the window, with a menu"

    # What they are made of.

    @staticmethod
    def ask_desktop(function, check=True):
        return subprocess.run(["bash", "-c", function], check=check,
                              stdout=subprocess.DEVNULL).returncode == 0

    def start_again(self):
        self.start_second()
        self.program.find("push button", driver.GENERATE)

    def start_program(self):
        self.program.start()
        pictures = len(list(self.program.image_folder.iterdir()))
        wait_until(lambda: len(self.program.look("list item")) == pictures, "the pictures in the window")

    @property
    def painter_names(self):
        return self.arguments.painters.split()

    def painters(self):
        """Process ids. The bus is asked anew, since a desktop may start a painter again."""
        found = self.current_painters()
        if not found:
            raise NotRun("Nobody but the program paints")
        return found

    def current_painters(self):
        return [process for name in self.painter_names for process in self.processes_of(name)]

    def processes_of(self, painter):
        if painter.isdigit():
            return [int(painter)]
        return [process_of(painter)] if "." in painter else self.children(painter)

    def has_own_painter(self):
        """Whether a child of the program paints; such painters go by the name of their program."""
        return any(not name.isdigit() and "." not in name for name in self.painter_names)

    def children(self, name):
        found = subprocess.run(["pgrep", "--exact", name, "--parent", str(self.program.process.child.pid)],
                               capture_output=True, text=True, check=False)
        return [int(process) for process in found.stdout.split()]

    def is_there(self, painter):
        if painter.isdigit():
            return is_alive(painter)
        return has_owner(painter) if "." in painter else bool(self.children(painter))

    @staticmethod
    @contextlib.contextmanager
    def stopped(processes):
        for process in processes:
            os.kill(process, signal.SIGSTOP)
        try:
            yield
        finally:
            for process in processes:
                with contextlib.suppress(ProcessLookupError):  # The program ends a painter of its own.
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


def is_alive(process):
    try:
        state = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0]
    except OSError:
        return False
    return state != "Z"


def arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--desktop", required=True)
    parser.add_argument("--screens", type=int, required=True)
    parser.add_argument("--results", type=pathlib.Path, required=True)
    parser.add_argument("--painters", default="")
    parser.add_argument("--painters-own-windows", action="store_true")
    parser.add_argument("--tray", action="store_true")
    parser.add_argument("--other-tray", action="store_true")
    parser.add_argument("--panel", action="store_true")
    parser.add_argument("--keyboard", action="store_true")
    parser.add_argument("--raises-none", action="store_true")
    parser.add_argument("--logout")
    parser.add_argument("--screenshot", required=True)
    return parser.parse_args()


if __name__ == "__main__":
    DesktopCheck(arguments()).run()
