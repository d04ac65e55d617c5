#!/usr/bin/python3
"""The whole way through the main window with accessible actions and the pointer."""

import journey
import person
from driver import GENERATE, SET, descendants, is_showing
from waiting import wait_until


class ByPointer(journey.Journey):
    def open_preview(self, tile):
        person.click(tile)
        return self.program.find("push button", "Close preview")

    def wait_preview_closed(self):
        self.program.wait_gone("push button", "Close preview")

    def bar_button(self, picture, name):
        """The button in the bar of the picture's tile, once the pointer is there."""
        tile = self.program.find("list item", picture.name)
        person.move_to(tile)
        return wait_until(lambda: [node for node in descendants(tile) if is_showing(node)
                                   and node.get_name() == name], f"{name} on {picture.name}")[0]

    def test_a_picture_is_made_applied_and_deleted(self):
        earlier, = self.put_pictures("navy")
        self.program.put_keys(gemini="ok-png")
        self.program.start()
        self.program.type("Prompt", "a calm sea")
        self.program.wait_can_generate()
        person.click(self.program.find("push button", GENERATE))
        self.program.wait_status(SET)
        made, = set(self.program.images()) - {earlier}

        self.assertFalse(self.program.sees("push button", "Apply"), "no bar without the pointer")
        person.click(self.bar_button(earlier, "Apply"))
        wait_until(lambda: self.desktop.backdrop() == str(earlier), "the earlier picture")
        self.assertFalse(self.program.sees("push button", "Close preview"))

        person.click(self.bar_button(made, "Delete"))
        wait_until(lambda: not made.exists(), "the file to go")
        self.program.wait_gone("list item", made.name)
        self.assertEqual(self.program.images(), [earlier])
        self.assertFalse(self.program.sees("push button", "Close preview"))

    def test_the_bar_goes_with_the_pointer(self):
        picture, = self.put_pictures("navy")
        self.program.start()
        self.bar_button(picture, "Apply")
        self.bar_button(picture, "Delete")
        person.move_to(self.program.find_field("Prompt"))
        self.program.wait_gone("push button", "Apply")
        self.program.wait_gone("push button", "Delete")

    def test_actions_need_no_pointer(self):
        one, other = self.put_pictures("navy", "teal")
        self.program.start()
        self.program.act(self.program.find("list item", one.name), "Press")
        self.program.press("Set as Wallpaper")
        wait_until(lambda: self.desktop.backdrop() == str(one), "the desktop's setting")
        self.wait_preview_closed()
        self.program.act(self.program.find("list item", other.name), "SetFocus")
        self.program.press("Delete")
        wait_until(lambda: not other.exists(), "the file to go")
        self.program.wait_gone("list item", other.name)

    def test_the_preview_closes_all_ways(self):
        picture, = self.put_pictures("navy")
        before = self.desktop.backdrop()
        self.program.start()
        tile = self.program.find("list item", picture.name)

        person.click(self.open_preview(tile))
        self.wait_preview_closed()
        self.open_preview(tile)
        person.click(self.program.find("push button", "Close"))
        self.wait_preview_closed()
        self.open_preview(tile)
        person.click_here()  # The pointer is still where the tile is: now the backdrop.
        self.wait_preview_closed()
        self.assertEqual(self.desktop.backdrop(), before)

        self.open_preview(tile)
        person.click(self.program.find("push button", "Set as Wallpaper"))
        self.wait_preview_closed()
        self.program.wait_status(SET)
        self.assertEqual(self.desktop.backdrop(), str(picture))

    def test_nothing_behind_the_preview_takes_a_click(self):
        picture, = self.put_pictures("navy")
        self.program.start()
        switch = self.program.find("check box", "4K resolution")
        self.open_preview(self.program.find("list item", picture.name))
        person.click(switch)
        self.wait_preview_closed()
        self.assertFalse(self.program.is_on(switch))
        person.click(switch)
        wait_until(lambda: self.program.is_on(switch), "the switch to be on")


if __name__ == "__main__":
    journey.main()
