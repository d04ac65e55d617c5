#!/usr/bin/python3
"""The program goes on while the panel, the painter and the session bus end and start again.

PLENAURA_SOAK_CYCLES says how often.
"""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

import driver
from sessionbus import has_owner
from surroundings import Desktop, ImageService
from waiting import Process, wait_until

# What the program frees goes back to the kernel, which is asked how much it has.
TELLING_MEMORY = {"MALLOC_ARENA_MAX": "1", "MALLOC_MMAP_THRESHOLD_": "65536",
                  "MALLOC_TRIM_THRESHOLD_": "65536"}
WARM_UP = 2
CYCLES = int(os.environ.get("PLENAURA_SOAK_CYCLES", "3"))


class MortalBus:
    """A session bus of its own for everything that is started from here on."""

    def __init__(self, folder):
        self.path = folder / "bus"
        self.address = f"unix:path={self.path}"
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.address
        self.start()

    def start(self):
        self.process = Process(["dbus-daemon", "--session", "--nofork", "--print-address",
                                f"--address={self.address}"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.process.child.stdout.readline()  # It tells once it listens.

    def end(self):
        self.process.end(signal.SIGKILL)
        self.process.child.stdout.close()
        self.path.unlink(missing_ok=True)


class Belongings:
    """What the program has, as the kernel counts it."""

    def __init__(self, pid):
        self.folder = pathlib.Path(f"/proc/{pid}")
        self.files = len(list(self.folder.joinpath("fd").iterdir()))
        self.threads = len(list(self.folder.joinpath("task").iterdir()))
        self.kilobytes = sum(int(line.split()[1])
                             for line in self.folder.joinpath("smaps_rollup").read_text().splitlines()
                             if line.startswith("Anonymous:"))
        # A sanitizer is in charge of memory itself, and gives back what is freed much later.
        self.tells_memory = "/libasan" not in self.folder.joinpath("maps").read_text()

    def __repr__(self):
        return f"{self.files} files, {self.threads} threads, {self.kilobytes} KiB"


class Outliving(unittest.TestCase):
    binaries: pathlib.Path

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="home-"))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.bus = MortalBus(self.home)
        self.addCleanup(self.bus.end)
        # The library of accessibility would end this process with the bus.
        self.desktop = Desktop(accessible=False)
        self.addCleanup(self.desktop.end)
        self.service = ImageService(self.binaries)
        self.addCleanup(self.service.end)
        self.program = driver.Plenaura(self.binaries, self.home, environment=TELLING_MEMORY)
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(lastPrompt="a sea")
        self.program.start(wait_for_window=False)
        self.addCleanup(self.program.process.end)
        self.program.wait_tray_item()

    def wait_picture(self):
        """The one that there is: after each run they are removed."""
        [picture] = wait_until(self.program.images, "a picture")
        return picture

    def wait_idle(self):
        wait_until(lambda: self.program.menu()[0].label == "Idle", "the run to end")
        for picture in self.program.images():
            picture.unlink()

    def assert_next_picture_is_set(self):
        self.program.action("generate")
        picture = self.wait_picture()
        wait_until(lambda: self.desktop.backdrop() == str(picture), "the desktop's setting")
        self.wait_idle()

    def assert_quiet(self):
        """The processor time does not change while it is looked at so many times."""
        looks = []

        def stays():
            self.assertTrue(self.program.alive())
            fields = pathlib.Path(f"/proc/{self.program.process_id()}/stat").read_text()
            looks.append(fields.rsplit(")", 1)[1].split()[11:13])
            return len(looks) > 25 and all(look == looks[-1] for look in looks[-25:])
        wait_until(stays, "the program to rest")

    def restart_panel(self):
        self.desktop.tray.end(signal.SIGKILL)
        self.desktop.start_tray()
        self.program.wait_tray_item()

    def restart_painter(self):
        """While nobody paints, the picture is set on the bare screen."""
        self.desktop.painter.end(signal.SIGKILL)
        wait_until(lambda: not has_owner("org.xfce.xfdesktop"), "nobody to paint")
        self.program.action("generate")
        self.wait_picture()
        self.wait_idle()
        self.desktop.start_painter()

    def restart_bus(self):
        """In the middle of a run, which goes on without it."""
        self.program.put_keys(gemini="slow-1000")
        before = len(self.service.requests())
        self.program.action("generate")
        wait_until(lambda: len(self.service.requests()) > before, "the request")
        self.bus.end()
        self.desktop.tray.end()
        self.desktop.painter.end()
        self.wait_picture()
        self.assert_quiet()
        self.bus.start()
        self.desktop.start_tray()
        self.desktop.start_painter()
        wait_until(lambda: has_owner(self.program.NAME), "the program's name")
        self.program.wait_tray_item()
        self.wait_idle()
        self.program.put_keys(gemini="ok-png")

    def test_everything_around_it_is_restarted_many_times(self):
        before = None
        for cycle in range(WARM_UP + CYCLES):
            self.restart_panel()
            self.restart_painter()
            self.restart_bus()
            self.assert_next_picture_is_set()
            self.assert_quiet()
            if cycle == WARM_UP - 1:
                before = Belongings(self.program.process_id())
        after = Belongings(self.program.process_id())
        print(f"{CYCLES} cycles: {before} before, {after} after")
        self.assertLessEqual(after.files, before.files)
        self.assertLessEqual(after.threads, before.threads)
        if after.tells_memory:
            # What QML's collector has not yet collected comes and goes with some pictures.
            self.assertLess(after.kilobytes - before.kilobytes, 2048 + 16 * CYCLES)


if __name__ == "__main__":
    Outliving.binaries = driver.binaries_from(sys.argv)
    unittest.main(verbosity=2)
