#!/usr/bin/python3
"""The whole way through the main window with nothing but the keyboard."""

import journey
import person
from driver import GENERATE, SET
from waiting import wait_until


class ByKeyboard(journey.Journey):
    def start(self):
        self.program.start()
        return person.Keyboard(self.program)

    def wait_gone(self, picture):
        wait_until(lambda: not picture.exists(), f"{picture.name} to go")
        self.program.wait_gone("list item", picture.name)

    def test_tab_goes_as_one_reads(self):
        self.put_pictures("navy")
        self.program.put_keys(gemini="ok-png")
        self.program.put_settings(lastPrompt="a sea", autoEnabled="true")
        keyboard = self.start()
        [tile] = self.program.names("list item")
        way = [("text", "Prompt"), ("check box", "4K resolution"), ("check box", "NSFW"),
               ("push button", GENERATE), ("check box", "Auto-generate"), ("combo box", "Every"),
               ("list item", tile), ("push button", "Apply"), ("push button", "Delete")]
        keyboard.wait_here(*way[0])
        self.assertEqual(keyboard.walk_to(*way[-1]), way)
        self.assertEqual(keyboard.step(), way[0], "it is a circle")
        self.assertEqual(keyboard.walk_to(*way[1], key="shift+Tab"), [way[0], *way[:0:-1]])

    def test_a_picture_is_made_applied_and_deleted(self):
        earlier, = self.put_pictures("navy")
        self.program.put_keys(gemini="ok-png")
        keyboard = self.start()
        keyboard.wait_here("text", "Prompt")
        person.enter("a calm sea")
        self.program.wait_can_generate()
        keyboard.use("push button", GENERATE, "Return")
        self.program.wait_status(SET)
        made, = set(self.program.images()) - {earlier}
        self.assertIn("a calm sea", self.request_bodies()[0])
        self.program.find("push button", GENERATE)

        keyboard.walk_to("list item", made.name)
        self.assertEqual(keyboard.step("Right"), ("list item", earlier.name))
        keyboard.use("push button", "Apply")
        wait_until(lambda: self.desktop.backdrop() == str(earlier), "the earlier picture")
        keyboard.use("push button", "Delete", "Return")
        self.wait_gone(earlier)
        keyboard.wait_here("list item", made.name)
        self.assertEqual(keyboard.step("shift+Tab"), ("check box", "Auto-generate"))
        keyboard.use("push button", "Delete")
        self.wait_gone(made)
        self.assertEqual(self.program.images(), [])
        self.assertEqual(keyboard.step(), ("text", "Prompt"))

    def test_arrows_walk_the_tiles(self):
        names = [picture.name for picture in self.put_pictures("navy", "teal", "gold", "pink")]
        keyboard = self.start()
        keyboard.walk_to("list item", names[3])
        for key, number in (("Right", 2), ("Down", 0), ("Left", 1), ("Up", 3)):
            self.assertEqual(keyboard.step(key), ("list item", names[number]))
            self.program.find("push button", "Apply")
            wait_until(lambda: self.program.names("push button").count("Apply") == 1,
                       "one bar at a time")

    def test_the_preview_closes_all_ways(self):
        picture, = self.put_pictures("navy")
        before = self.desktop.backdrop()
        keyboard = self.start()
        tile = ("list item", picture.name)
        keyboard.walk_to(*tile)
        for button, key in ((None, "Escape"), ("Close preview", "space"), ("Close", "Return")):
            person.press("Return")
            keyboard.wait_here("push button", "Set as Wallpaper")
            if button:
                keyboard.walk_to("push button", button)
            person.press(key)
            self.program.wait_gone("push button", "Close preview")
            keyboard.wait_here(*tile)
        self.assertEqual(self.desktop.backdrop(), before)

        person.press("space")
        keyboard.wait_here("push button", "Set as Wallpaper")
        person.press("Return")
        self.program.wait_status(SET)
        self.assertEqual(self.desktop.backdrop(), str(picture))
        keyboard.wait_here(*tile)

    def test_the_keyboard_stays_in_the_preview(self):
        picture, = self.put_pictures("navy")
        keyboard = self.start()
        keyboard.walk_to("list item", picture.name)
        person.press("Return")
        keyboard.wait_here("push button", "Set as Wallpaper")
        way = [keyboard.step() for _ in range(4)]
        self.assertEqual([name for _, name in way],
                         ["Close", "Close preview", "Set as Wallpaper", "Close"])
        self.assertEqual(keyboard.step("shift+Tab"), ("push button", "Set as Wallpaper"))

    def test_space_and_return_switch_and_choose(self):
        keyboard = self.start()
        for name in ("4K resolution", "NSFW", "Auto-generate"):
            keyboard.walk_to("check box", name)
            switch = self.program.find("check box", name)
            for key, on in (("space", True), ("Return", False), ("space", True)):
                person.press(key)
                wait_until(lambda: self.program.is_on(switch) == on, f"{name} to be {on}")
        keyboard.walk_to("combo box", "Every")
        for keys in (["Return", "Down", "Return"], ["space", "Down", "space"]):
            person.press(*keys)
        wait_until(lambda: self.program.settings().get("intervalMinutes") == "120",
                   "two steps from 30 min")
        self.assertEqual(keyboard.here(), ("combo box", "Every"))


if __name__ == "__main__":
    journey.main()
