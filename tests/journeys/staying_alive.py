#!/usr/bin/python3
"""Closing, quitting and starting again: only the menu's Quit ends the program."""

import signal

import driver
import journey
from driver import SET
from waiting import wait_until


class StayingAlive(journey.Journey):
    def assert_no_window(self):
        wait_until(lambda: not self.program.windows(), "the windows to close")
        self.assertTrue(self.program.alive())

    def test_closing_the_window_leaves_the_program_in_the_tray(self):
        self.program.start()
        self.program.close_window()
        self.assert_no_window()
        self.program.menu_row("Open Window").click()
        self.program.find("push button", driver.GENERATE)

    def test_the_quit_shortcut_closes_all_windows_and_stays(self):
        self.program.start()
        self.program.menu_row("Settings...").click()
        wait_until(lambda: len(self.program.windows()) == 2, "the settings window")
        self.program.press_keys("ctrl+q")
        self.assert_no_window()

    def test_the_settings_shortcut_opens_the_settings(self):
        self.program.start()
        self.program.press_keys("ctrl+comma")
        wait_until(lambda: len(self.program.windows()) == 2, "the settings window")

    def test_quit_of_the_menu_ends_the_program(self):
        self.program.start()
        self.program.menu_row("Quit").click()
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_quit_of_the_menu_ends_a_running_generation(self):
        self.program.put_keys(gemini="silent")
        self.program.start()
        self.program.generate("a sea")
        wait_until(self.service.requests, "the request")
        self.assertEqual(self.program.menu()[0].label, "Generating...")
        self.program.menu_row("Quit").click()
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_sigterm_ends_at_once(self):
        self.program.put_keys(gemini="silent")
        self.program.start()
        self.program.generate("a sea")
        wait_until(self.service.requests, "the request")
        self.assertEqual(self.program.end(signal.SIGTERM), -signal.SIGTERM)

    def test_a_click_on_the_icon_opens_the_window(self):
        self.program.start()
        self.program.close_window()
        self.assert_no_window()
        self.program.click_tray_icon()
        self.program.find("push button", driver.GENERATE)

    def test_a_second_start_shows_the_first(self):
        self.program.start()
        self.program.close_window()
        self.assert_no_window()
        second = driver.Plenaura(self.binaries, self.home)
        second.start(wait_for_window=False)
        self.assertEqual(second.wait_for_exit(), 0)
        self.program.find("push button", driver.GENERATE)
        self.assertEqual(self.program.windows(), ["Plenaura"])

    def test_settings_outlive_a_restart(self):
        self.program.start()
        self.program.type("Prompt", "a prompt, \"to keep\"")
        self.program.switch("4K resolution", True)
        self.program.switch("NSFW", True)
        wait_until(lambda: self.program.settings().get("nsfwEnabled") == "true", "the settings")
        self.program.menu_row("Quit").click()
        self.program.wait_for_exit()

        self.program.start()
        self.assertEqual(self.program.text_of("Prompt"), "a prompt, \"to keep\"")
        for name in ("4K resolution", "NSFW"):
            self.assertTrue(self.program.is_on(self.program.find("check box", name)), name)
        self.assertTrue(self.program.sees("label", "Missing Grok API key"))

    def test_a_settings_file_of_nonsense_is_lived_with(self):
        self.program.put_settings(intervalMinutes="often", autoEnabled="perhaps",
                                  fourKEnabled="-", lastPrompt="one, two")
        self.program.start()
        self.assertEqual(self.program.text_of("Prompt"), "one, two")
        self.assertFalse(self.program.is_on(self.program.find("check box", "4K resolution")))
        self.program.switch("Auto-generate", True)
        picker = self.program.find("combo box", "Every")
        self.assertIn("30 min", [node.get_name() for node in driver.descendants(picker)])

    def test_a_home_that_cannot_be_written_is_lived_with(self):
        self.home.joinpath("Library").write_text("a file where a folder should be")
        self.program.start()
        self.assertTrue(self.program.sees("label", "Missing Gemini API key"))
        self.program.type("Prompt", "a sea")
        self.assertTrue(self.program.alive())


class Tray(journey.Journey):
    def test_the_menu_has_its_nine_rows(self):
        self.program.start()
        rows = self.program.menu()
        self.assertEqual([row.label for row in rows],
                         ["Idle", "", "Generate Now", "Auto-Generate", "", "Open Window",
                          "Settings...", "", "Quit"])
        self.assertEqual([row.is_separator for row in rows],
                         [False, True, False, False, True, False, False, True, False])
        self.assertEqual([row.enabled for row in rows if not row.is_separator],
                         [False, False, True, True, True, True])
        self.assertTrue(rows[3].checkable)
        self.assertFalse(rows[3].checked)

    def test_generate_now_makes_a_picture_without_a_window(self):
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(lastPrompt="a sea")
        self.program.start()
        self.program.close_window()
        wait_until(lambda: not self.program.windows(), "the window to close")
        self.program.menu_row("Generate Now").click()
        [picture] = wait_until(self.program.images, "the picture")
        wait_until(lambda: self.desktop.backdrop() == str(picture), "the desktop's setting")
        self.assert_on_desktop(picture)
        wait_until(lambda: self.program.menu()[0].label == "Idle", "the run to end")

    def test_the_menu_sees_a_key_written_behind_its_back(self):
        self.program.put_settings(lastPrompt="a sea")
        self.program.start()
        self.assertFalse(self.program.menu_row("Generate Now").enabled)
        self.program.put_keys(gemini="ok-png")
        self.assertTrue(self.program.menu_row("Generate Now").enabled)

    def test_auto_generate_is_the_switch_of_the_window(self):
        self.program.start()
        self.program.menu_row("Auto-Generate").click()
        wait_until(lambda: self.program.menu_row("Auto-Generate").checked, "the check mark")
        switch = self.program.find("check box", "Auto-generate")
        wait_until(lambda: self.program.is_on(switch), "the switch")
        self.assertTrue(self.program.menu()[0].label.startswith("Next: "))
        self.assertEqual(self.program.settings()["autoEnabled"], "true")
        self.program.switch("Auto-generate", False)
        self.assertEqual(self.program.menu()[0].label, "Idle")

    def test_a_panel_that_starts_later_gets_the_icon(self):
        self.desktop.end_tray()
        self.program.start()
        self.desktop.start_tray()
        self.program.wait_tray_item()
        self.program.menu_row("Quit").click()
        self.program.wait_for_exit()

    def test_a_panel_that_restarts_gets_the_icon_again(self):
        self.program.start()
        self.program.wait_tray_item()
        self.desktop.end_tray()
        self.desktop.start_tray()
        self.program.wait_tray_item()
        self.program.menu_row("Open Window").click()
        self.assertTrue(self.program.alive())

    def test_desktop_actions_reach_the_program(self):
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(lastPrompt="a sea")
        self.program.start()
        self.program.action("generate")
        self.program.wait_status(SET)
        self.program.action("settings")
        wait_until(lambda: len(self.program.windows()) == 2, "the settings window")
        self.program.action("quit")
        self.assertEqual(self.program.wait_for_exit(), 0)


if __name__ == "__main__":
    journey.main()
