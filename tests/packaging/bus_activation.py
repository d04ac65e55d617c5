#!/usr/bin/python3
"""The program as it is installed below a home, started by the bus. Needs a private display."""

import pathlib
import re
import subprocess
import sys
import unittest

import installation
import onthebus
from onthebus import call, wait_until

HOME = pathlib.Path.home()


def windows():
    """Whatever the program has on the screen."""
    answer = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "plenaura"],
                            capture_output=True, text=True, check=False)
    return answer.stdout.split()


class BusActivation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.installed = BUILD.install(HOME / ".local")

    def setUp(self):
        self.assertFalse(onthebus.is_running())
        self.addCleanup(self.end)

    def end(self):
        if onthebus.is_running():
            onthebus.application("ActivateAction", "quit", [])
            onthebus.wait_for_end()

    def start_in_tray(self):
        onthebus.start_in_tray(self.installed.autostart_file)

    def run_action(self, name):
        onthebus.run_action(self.installed.desktop_file, name)

    def test_autostart_runs_the_installed_program_without_a_window(self):
        self.start_in_tray()
        self.assertEqual(onthebus.executable(), str(self.installed.program))
        self.assertEqual(windows(), [])

    def test_activation_starts_the_program_and_shows_its_window(self):
        onthebus.application("Activate")
        [window] = wait_until(windows, "the window")
        classes = subprocess.run(["xprop", "-id", window, "WM_CLASS"], check=True, text=True,
                                 capture_output=True).stdout
        wanted = re.search(r"(?m)^StartupWMClass=(.*)$", self.installed.desktop_file.read_text())
        self.assertEqual(re.findall('"(.*?)"', classes)[1], wanted.group(1))

    def test_the_settings_action_shows_a_window(self):
        self.start_in_tray()
        self.run_action("settings")
        wait_until(windows, "the settings window")

    def test_the_generate_action_shows_what_is_missing(self):
        self.run_action("generate")
        wait_until(windows, "the main window, which asks for a prompt and a key")

    def test_the_quit_action_ends_the_program(self):
        self.start_in_tray()
        self.run_action("quit")
        onthebus.wait_for_end()

    def test_the_bus_understands_an_odd_place(self):
        odd = BUILD.install(HOME / "an \"odd\" $place `of` 100%u;=&")
        self.addCleanup(BUILD.install, HOME / ".local")
        self.installed.service_file.write_text(odd.service_file.read_text())
        call(*onthebus.BUS, "ReloadConfig")
        self.start_in_tray()
        self.assertEqual(onthebus.executable(), str(odd.program))
        onthebus.application("Activate")
        wait_until(windows, "the window, whose module lies there as well")


if __name__ == "__main__":
    BUILD = installation.build_from(sys.argv)
    unittest.main(verbosity=2)
