#!/usr/bin/python3
"""Somebody starts the program for the first time, gives it a key, and makes a wallpaper."""

import journey
from driver import GENERATE, SET
from waiting import wait_until


class FirstLaunch(journey.Journey):
    def test_an_empty_home_shows_what_is_missing(self):
        self.program.start()
        self.assertEqual(self.program.windows(), ["Plenaura"])
        self.assertTrue(self.program.sees("label", "Missing Gemini API key"))
        self.assertTrue(self.program.sees("label", "Open Settings (\u2318,)"))
        self.assertTrue(self.program.sees("label", "No wallpapers yet"))
        button = self.program.find("push button", GENERATE)
        self.assertFalse(self.program.is_enabled(button))
        self.program.act(button, "Press")
        self.assertEqual(self.service.requests(), [])
        self.assertEqual([row.label for row in self.program.menu() if not row.is_separator],
                         ["Idle", "Generate Now", "Auto-Generate", "Open Window", "Settings...",
                          "Quit"])
        self.assertTrue((self.home / "Pictures/Plenaura").is_dir())
        self.assertFalse(self.program.key_file.exists())

    def test_from_the_first_key_to_the_first_picture(self):
        self.program.start()
        self.program.menu_row("Settings...").click()
        self.program.type("Gemini API Key", "canary-key")
        wait_until(lambda: [node for node in self.program.look("push button", "Save")
                            if self.program.is_enabled(node)], "Save to be enabled")
        [save] = [node for node in self.program.look("push button", "Save")
                  if self.program.is_enabled(node)]
        self.program.act(save, "Press")
        self.program.find("label", "Saved in Keychain")
        self.assertEqual(self.program.key_file.read_bytes(), b'{"gemini":"canary-key"}')
        self.assertEqual(self.program.key_file.stat().st_mode & 0o777, 0o600)
        [settings] = [title for title in self.program.windows() if title != "Plenaura"]
        self.program.close_window(settings)

        self.program.press_keys("Tab")  # The main window becomes active and reads the keys again.
        self.program.generate("a calm sea at sunset")
        self.program.wait_status(SET)
        [picture] = self.program.images()
        self.program.find("list item", picture.name)
        self.assertEqual(self.desktop.backdrop(), str(picture))
        self.assert_on_desktop(picture)


if __name__ == "__main__":
    journey.main()
