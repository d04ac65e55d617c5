#!/usr/bin/python3
"""The windows come to the front when a person asks for them, and never else."""

import driver
import journey
from driver import SET
from gi.repository import GLib
from launcher import Launcher
from person import press
from waiting import wait_until


class ComingForward(journey.Journey):
    def cover(self):
        """Another program's window lies over everything and has been used last."""
        wait_until(self.program.active_window, "our window to have the keyboard")
        launcher = Launcher()
        self.addCleanup(launcher.end)
        wait_until(lambda: not self.program.active_window(), "the other window to have the keyboard")
        launcher.use(lambda: press("Shift_L"))
        return launcher

    def test_a_second_start_brings_the_window_to_the_front(self):
        self.program.start()
        token = self.cover().token()
        self.assertIn("_TIME", token)
        second = driver.Plenaura(self.binaries, self.home,
                                 environment={"DESKTOP_STARTUP_ID": token})
        second.start(wait_for_window=False)
        self.assertEqual(second.wait_for_exit(), 0)
        self.program.wait_active("Plenaura")

    def test_the_settings_action_brings_the_settings_to_the_front(self):
        self.program.start()
        self.program.action("settings")
        self.program.wait_active("Settings")
        token = GLib.Variant("s", self.cover().token())
        self.program.action("settings", {"desktop-startup-id": token})
        self.program.wait_active("Settings")

    def test_the_tray_brings_the_window_to_the_front(self):
        self.program.start()
        self.cover()
        self.program.menu_row("Open Window").click()
        self.program.wait_active("Plenaura")

    def test_the_generate_action_takes_the_keyboard_from_nobody(self):
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(lastPrompt="a sea")
        self.program.start()
        token = GLib.Variant("s", self.cover().token())
        self.program.action("generate", {"desktop-startup-id": token})
        self.program.wait_status(SET)
        self.assertIsNone(self.program.active_window())

    def test_the_generate_action_shows_what_is_missing(self):
        self.program.start()
        token = GLib.Variant("s", self.cover().token())
        self.program.action("generate", {"desktop-startup-id": token})
        self.program.wait_active("Plenaura")


if __name__ == "__main__":
    journey.main()
