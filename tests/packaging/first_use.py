#!/usr/bin/python3
"""The packaged program, used once on a desktop: started in the tray, opened, given a key, quit."""

import pathlib
import subprocess
import types
import unittest

import onthebus
import driver
from gi.repository import Atspi
from surroundings import Desktop, difference
from waiting import wait_until

DATA = pathlib.Path("/usr/share")
LAUNCHER = DATA / "applications/com.tarnel.Plenaura.desktop"
AUTOSTART = DATA / "plenaura/autostart/com.tarnel.Plenaura.desktop"
PICTURE = "wallpaper_20261121_120000.png"


class FirstUse(unittest.TestCase):
    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.end)
        onthebus.hand_to_bus("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "QT_QUICK_BACKEND",
                             "XDG_CURRENT_DESKTOP")
        self.home = pathlib.Path.home()
        self.program = driver.Plenaura(pathlib.Path("/usr/bin"), self.home)

    def put_picture(self):
        self.program.image_folder.mkdir(parents=True)
        picture = self.program.image_folder / PICTURE
        subprocess.run(["convert", "-size", "1400x900", "gradient:red-blue", picture], check=True)
        return picture

    def start_in_tray(self):
        onthebus.start_in_tray(AUTOSTART)
        # The driver finds a program among the accessible ones by its process.
        self.program.process = types.SimpleNamespace(
            child=types.SimpleNamespace(pid=onthebus.process_id()))
        self.assertEqual(self.program.menu()[0].label, "Idle")
        self.assertEqual(self.program.windows(), [])

    def enter_key(self):
        onthebus.run_action(LAUNCHER, "settings")
        self.program.type("Gemini API Key", "canary-key")
        [save] = wait_until(lambda: [node for node in self.program.look("push button", "Save")
                                     if self.program.is_enabled(node)], "Save to be enabled")
        self.program.act(save, "Press")
        wait_until(self.program.key_file.exists, "the key file")
        [settings] = self.program.windows()
        self.program.close_window(settings)

    def apply_from_gallery(self):
        onthebus.application("Activate")
        tile = self.program.find("list item", PICTURE)
        box = Atspi.Component.get_extents(tile, Atspi.CoordType.SCREEN)
        subprocess.run(["xdotool", "mousemove", str(box.x + box.width // 2), str(box.y + 40)],
                       check=True)
        self.program.press("Apply")
        self.program.wait_status(driver.SET)

    def wait_on_desktop(self, picture):
        self.desktop.show_bare(True)
        shot = self.home / "screen.png"

        def is_shown():
            self.desktop.screenshot(shot)
            return difference(shot, picture) < 0.05
        wait_until(is_shown, "the picture on the desktop")

    def test_from_the_tray_to_a_new_wallpaper(self):
        picture = self.put_picture()
        self.start_in_tray()
        self.enter_key()
        self.apply_from_gallery()
        self.wait_on_desktop(picture)
        onthebus.run_action(LAUNCHER, "quit")
        onthebus.wait_for_end()


if __name__ == "__main__":
    unittest.main(verbosity=2)
