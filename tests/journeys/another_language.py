#!/usr/bin/python3
"""Somebody who speaks another language starts the program."""

import os

import journey
from waiting import wait_until


def is_translated(text):
    return text.startswith("[!! ") and text.endswith(" !!]")


class AnotherLanguage(journey.Journey):
    def test_window_and_menu_speak_it(self):
        # The catalogue comes to lie among those that are built in.
        self.program.environment = {"LANG": "de_DE.UTF-8", "LANGUAGE": "de",
                                    "LD_PRELOAD": os.environ["PLENAURA_GERMAN_CATALOGUE"]}
        self.program.start(wait_for_window=False)
        wait_until(lambda: self.program.names("push button"), "the window")
        for role in ("push button", "check box"):
            names = self.program.names(role)
            self.assertTrue(names and all(map(is_translated, names)), names)
        rows = [row.label for row in self.program.menu() if not row.is_separator]
        self.assertTrue(rows and all(map(is_translated, rows)), rows)


if __name__ == "__main__":
    journey.main()
