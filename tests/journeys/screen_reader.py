#!/usr/bin/python3
"""What somebody hears who does not see the windows, and what must never be heard."""

import journey
import person
from driver import GENERATE, MISSING_KEY, SET
from waiting import wait_until

KEY = "canary-key-5e1f"


class Hearing(journey.Journey):
    def setUp(self):
        super().setUp()
        self.reader = person.ScreenReader(self.program)
        self.addCleanup(self.reader.end)

    def test_each_status_is_read_out_once(self):
        picture, = self.put_pictures("navy")
        self.program.put_keys(gemini="fail-503")
        self.program.start()
        self.program.act(self.program.find("list item", picture.name), "Press")
        self.program.press("Set as Wallpaper")
        self.reader.wait_heard(SET)
        self.program.generate("a sea")
        overloaded = "API error: The model is overloaded. Please try again later."
        self.reader.wait_heard(overloaded)
        self.program.key_file.unlink()
        self.program.press(GENERATE)
        self.reader.wait_heard(MISSING_KEY.format("Gemini"))
        # This one replaces the status before it; a run clears it first.
        self.program.act(self.program.find("list item", picture.name), "Press")
        self.program.press("Set as Wallpaper")
        wait_until(lambda: self.reader.listen().count(SET) == 2, "the status to be read out")
        self.assertEqual(self.reader.heard,
                         [SET, overloaded, MISSING_KEY.format("Gemini"), SET])


class Secrets(journey.Journey):
    def assert_nowhere(self):
        texts = list(person.all_texts(self.program))
        self.assertIn("Gemini API Key", texts)
        self.assertEqual([text for text in texts if KEY[:6] in text], [])

    def test_a_key_is_nowhere_to_be_read(self):
        self.program.put_keys(gemini=KEY)
        self.program.start()
        keyboard = person.Keyboard(self.program)
        person.press("ctrl+comma")
        keyboard.wait_window("Settings")
        self.assertEqual(self.program.text_of("Gemini API Key"), "\u2022" * len(KEY))
        self.assert_nowhere()
        keyboard.walk_to("password text", "Grok API Key")
        person.enter(KEY)
        wait_until(lambda: self.program.text_of("Grok API Key") == "\u2022" * len(KEY), "bullets")
        self.assert_nowhere()
        keyboard.use("push button", "Save")
        keyboard.wait_here("push button", "Update")
        self.assert_nowhere()


if __name__ == "__main__":
    journey.main()
