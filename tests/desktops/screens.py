"""What the screens of a desktop show.

Pictures are of one colour, so one pixel tells what a screen shows; it is taken at the right edge,
where neither the program's window nor a panel is.
"""

import math
import shlex
import subprocess

from waiting import wait_until

SCREEN = (1280, 800)
RED, GREEN = (255, 0, 0), (0, 128, 0)
# Pictures made for several screens are scaled, and desktops keep some of them as JPEG.
TOLERANCE = 12
# Between two looks, in seconds; a fade that is under way has moved on by then.
STILL = 0.4
# As many pixels may differ between two looks. A text's caret has 14 of them, and would be on in one
# look and off in the next for good, where looking takes as long as its blinking.
CARET = 60


def is_near(colour, other):
    return all(abs(a - b) <= TOLERANCE for a, b in zip(colour, other))


class Screens:
    def __init__(self, count, screenshot, folder):
        self.count = count
        self.command = shlex.split(screenshot)
        self.file = folder / "screens.png"

    def take(self):
        subprocess.run([*self.command, self.file], check=True, stdout=subprocess.DEVNULL)

    def colours(self):
        """What each screen shows, from left to right."""
        self.take()
        return [self.colour_at(screen * SCREEN[0] + SCREEN[0] - 24, SCREEN[1] // 2)
                for screen in range(self.count)]

    def colour_at(self, x, y):
        answer = subprocess.run(
            ["convert", self.file, "-crop", f"1x1+{x}+{y}", "-alpha", "off", "-depth", "8", "rgb:-"],
            capture_output=True, check=True)
        return tuple(answer.stdout)

    def settle(self):
        """Waits for the desktop's own pictures to be there, and for what fades in to have done so."""
        self.file.unlink(missing_ok=True)

        def is_still():
            before = None
            if self.file.exists():
                before = self.file.replace(self.file.with_name("before.png"))
            self.take()
            return before and self.difference(before) <= CARET
        wait_until(is_still, "the screens to stand still", interval=STILL)

    def difference(self, other):
        """In how many pixels the last look differs from another one."""
        answer = subprocess.run(["compare", "-metric", "AE", other, self.file, "null:"],
                                stderr=subprocess.PIPE, text=True, check=False)
        # Status 2 says that they cannot be compared; a screen's size may have changed.
        return float(answer.stderr) if answer.returncode < 2 else math.inf

    def show(self, wanted):
        return all(is_near(*pair) for pair in zip(self.colours(), wanted))
