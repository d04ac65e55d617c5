"""What every journey has: one desktop and one image service, and a fresh home for each test."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import driver
from surroundings import Desktop, ImageService, difference
from waiting import wait_until


class Journey(unittest.TestCase):
    binaries: pathlib.Path

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.addClassCleanup(cls.desktop.end)

    def setUp(self):
        self.service = ImageService(self.binaries)
        self.addCleanup(self.service.end)
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="home-"))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.program = driver.Plenaura(self.binaries, self.home)
        self.addCleanup(self.program.end)
        self.addCleanup(self.quit_program)
        self.addCleanup(self.keep_evidence)

    def quit_program(self):
        """By itself, for only then it tells what it left behind, to whom it is built to tell."""
        if self.program.alive():
            self.program.action("quit")
            self.assertEqual(self.program.wait_for_exit(), 0)

    def keep_evidence(self):
        """A picture of the screen at the end of a test that failed."""
        folder = os.environ.get("PLENAURA_EVIDENCE")
        outcome = self._outcome
        failed = outcome is not None and (not outcome.success)
        if folder and failed:
            os.makedirs(folder, exist_ok=True)
            self.desktop.screenshot(pathlib.Path(folder) / f"{self.id()}.png")

    def put_pictures(self, *colors):
        """Pictures of an earlier day; the last one is the newest."""
        self.program.image_folder.mkdir(parents=True)
        pictures = [self.program.image_folder / f"wallpaper_2026-01-01_10-00-{number:02}.png"
                    for number, _ in enumerate(colors)]
        for picture, color in zip(pictures, colors):
            subprocess.run(["convert", "-size", "640x360", f"xc:{color}", picture], check=True)
        return pictures

    def request_bodies(self):
        return [request["body"] for request in self.service.requests()]

    def assert_on_desktop(self, picture):
        """The real screen shows the picture, once the program's windows are out of the way."""
        self.desktop.show_bare(True)
        shot = self.home / "screen.png"

        def shown():
            self.desktop.screenshot(shot)
            return difference(shot, picture) < 0.05
        try:
            wait_until(shown, f"{picture} on the screen")
        finally:
            self.desktop.show_bare(False)


def main():
    Journey.binaries = driver.binaries_from(sys.argv)
    unittest.main(verbosity=2)
