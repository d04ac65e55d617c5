#!/usr/bin/python3
"""A desktop without a tray: the window is the only way in, and must never be lost."""

import driver
import journey
import person
from driver import GENERATE
from waiting import wait_until


class WithoutTray(journey.Journey):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.desktop.end_tray()

    def open_menu(self):
        self.program.press("Menu")
        return self.program.find("menu item", "Settings...")

    def start_again(self):
        second = driver.Plenaura(self.binaries, self.home)
        second.start(wait_for_window=False)
        self.assertEqual(second.wait_for_exit(), 0)

    def test_the_window_is_shown_at_start_with_a_menu_of_its_own(self):
        self.program.start()
        self.assertEqual(self.program.windows(), ["Plenaura"])
        self.open_menu()
        self.assertEqual(self.program.names("menu item"), ["Settings...", "Quit"])

    def test_a_second_start_brings_the_window_back(self):
        self.program.start()
        self.program.close_window()
        wait_until(lambda: not self.program.windows(), "the window to close")
        self.start_again()
        self.program.find("push button", GENERATE)
        self.assertEqual(self.program.windows(), ["Plenaura"])

    def test_a_second_start_brings_the_window_to_the_front(self):
        self.program.start()
        keyboard = person.Keyboard(self.program)
        self.program.act(self.open_menu(), "Press")
        keyboard.wait_window("Settings")
        self.start_again()
        keyboard.wait_window("Plenaura")

    def test_the_menu_reaches_settings_and_quit(self):
        self.program.start()
        self.program.act(self.open_menu(), "Press")
        self.program.find("page tab", "API Keys")
        self.open_menu()
        self.program.act(self.program.find("menu item", "Quit"), "Press")
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_the_keyboard_reaches_settings_and_quit(self):
        self.program.start()
        keyboard = person.Keyboard(self.program)
        keyboard.wait_here("text", "Prompt")
        keyboard.walk_to("push button", "Menu", key="shift+Tab")
        person.press("space")
        self.program.find("menu item", "Settings...")
        person.press("Down", "Return")
        keyboard.wait_window("Settings")
        keyboard.turn_to("Plenaura")
        keyboard.wait_here("push button", "Menu")
        person.press("Return")
        self.program.find("menu item", "Quit")
        person.press("Down", "Down", "Return")
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_a_tray_that_comes_makes_the_menu_needless(self):
        self.program.start()
        self.program.find("push button", "Menu")
        self.desktop.start_tray()
        self.addCleanup(self.desktop.end_tray)
        self.program.wait_tray_item()
        self.program.wait_gone("push button", "Menu")


if __name__ == "__main__":
    journey.main()
