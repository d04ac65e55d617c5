#!/usr/bin/python3
"""The settings window, with accessible actions and with nothing but the keyboard."""

import json

import journey
import person
from driver import descendants
from waiting import wait_until

KEY = "canary-first-key"
OTHER_KEY = "canary-second-key"
FIELD = "Gemini API Key"
SAVED = "Saved in Keychain"
UNAVAILABLE = "NSFW unavailable with OpenAI"


class Settings(journey.Journey):
    def open_settings(self):
        self.program.start()
        keyboard = person.Keyboard(self.program)
        person.press("ctrl+comma")
        keyboard.wait_window("Settings")
        return keyboard

    def wait_keys(self, **keys):
        def stored():
            file = self.program.key_file
            return json.loads(file.read_text()) == keys if file.exists() else not keys
        wait_until(stored, f"the keys {list(keys)} to be stored")

    def press_first_enabled(self, name):
        button = wait_until(lambda: [node for node in self.program.look("push button", name)
                                     if self.program.is_enabled(node)], f"{name} to be enabled")[0]
        self.program.act(button, "Press")

    def choose(self, picker, option):
        self.program.press(picker, "combo box")
        self.program.act(self.program.find("list item", option), "Press")
        self.wait_chosen(picker, option)

    def wait_chosen(self, picker, option):
        node = self.program.find("combo box", picker)
        wait_until(lambda: option in [part.get_name() for part in descendants(node)],
                   f"{option} in {picker}")

    def wait_setting(self, name, value):
        wait_until(lambda: self.program.settings().get(name) == value, f"{name} to be {value}")

    def nsfw(self):
        return self.program.find("check box", "NSFW")

    def test_the_tray_menu_brings_open_settings_to_the_front(self):
        keyboard = self.open_settings()
        keyboard.turn_to("Plenaura")
        self.program.menu_row("Settings...").click()
        keyboard.wait_window("Settings")
        self.assertEqual(sorted(self.program.windows()), ["Plenaura", "Settings"])

    def test_a_key_is_saved_replaced_and_removed(self):
        self.open_settings()
        self.program.type(FIELD, KEY)
        self.press_first_enabled("Save")
        self.wait_keys(gemini=KEY)
        self.program.find("label", SAVED)
        self.program.type(FIELD, OTHER_KEY)
        self.press_first_enabled("Update")
        self.wait_keys(gemini=OTHER_KEY)
        self.program.press("Delete Gemini API key")
        self.wait_keys()
        self.program.wait_gone("label", SAVED)
        self.assertEqual(self.program.text_of(FIELD), "")

    def test_a_key_is_saved_replaced_and_removed_by_keyboard(self):
        keyboard = self.open_settings()
        keyboard.walk_to("password text", FIELD)
        person.enter(KEY)
        keyboard.use("push button", "Save")
        self.wait_keys(gemini=KEY)
        keyboard.wait_here("push button", "Update")
        keyboard.walk_to("password text", FIELD, key="shift+Tab")
        person.press("ctrl+a")
        person.enter(OTHER_KEY)
        keyboard.use("push button", "Update", "Return")
        self.wait_keys(gemini=OTHER_KEY)
        keyboard.use("push button", "Delete Gemini API key")
        self.wait_keys()
        self.program.wait_gone("label", SAVED)
        keyboard.wait_here("password text", FIELD)

    def test_tab_goes_as_one_reads(self):
        self.program.put_keys(gemini=KEY)
        keyboard = self.open_settings()
        way = [("page tab", "API Keys"), ("page tab", "Advanced"), ("password text", FIELD),
               ("push button", "Update"), ("push button", "Delete Gemini API key"),
               ("password text", "Grok API Key"), ("password text", "OpenAI API Key")]
        keyboard.wait_here(*way[0])
        self.assertEqual(keyboard.walk_to(*way[-1]), way)
        self.assertEqual(keyboard.step(), way[0], "it is a circle")

    def test_forcing_openai_makes_nsfw_unavailable(self):
        self.program.put_settings(nsfwEnabled="true")
        keyboard = self.open_settings()
        self.program.press("Advanced", "page tab")
        self.choose("Provider", "Force OpenAI")
        self.wait_setting("providerOverride", "openai")
        keyboard.turn_to("Plenaura")
        self.program.find("label", UNAVAILABLE)
        self.assertFalse(self.program.is_enabled(self.nsfw()))
        self.program.act(self.nsfw(), "Toggle")
        self.program.act(self.nsfw(), "Press")
        person.click(self.nsfw())
        self.program.find("label", "OpenAI")
        self.assertTrue(self.program.is_on(self.nsfw()))
        self.assertEqual(self.program.settings()["nsfwEnabled"], "true")
        keyboard.walk_to("check box", "4K resolution")
        self.assertEqual(keyboard.step(), ("check box", "Auto-generate"), "not on the switch")

        keyboard.turn_to("Settings")
        self.choose("Provider", "Auto (recommended)")
        keyboard.turn_to("Plenaura")
        self.program.wait_gone("label", UNAVAILABLE)
        self.program.switch("NSFW", False)

    def test_models_and_provider_are_chosen(self):
        self.open_settings()
        self.program.press("Advanced", "page tab")
        self.choose("Gemini Model", "3 Pro Image")
        self.wait_setting("selectedModel_gemini", "gemini-3-pro-image-preview")

    def test_models_and_provider_are_chosen_by_keyboard(self):
        keyboard = self.open_settings()
        keyboard.wait_here("page tab", "API Keys")
        self.assertEqual(keyboard.step("Right"), ("page tab", "Advanced"))
        keyboard.walk_to("combo box", "Gemini Model")
        person.press("space", "Down", "Return")
        self.wait_setting("selectedModel_gemini", "gemini-3-pro-image-preview")
        keyboard.walk_to("combo box", "Provider")
        person.press("Return", "Down", "space")
        self.wait_setting("providerOverride", "openai")
        self.wait_chosen("Provider", "Force OpenAI")


if __name__ == "__main__":
    journey.main()
