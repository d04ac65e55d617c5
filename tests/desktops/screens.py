"""What the screens of a desktop show.

Pictures are of one colour, so one pixel tells what a screen shows; it is taken at the right edge,
where neither the program's window nor a panel is.
"""

import shlex
import subprocess

from waiting import wait_until

SCREEN = (1280, 800)
RED, GREEN = (255, 0, 0), (0, 128, 0)
# Pictures made for several screens are scaled, and desktops keep some of them as JPEG.
TOLERANCE = 12
# Between two looks; a fade that is under way has moved on by then.
STILL = 0.4


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
        last = None

        def is_still():
            nonlocal last
            before, last = last, self.fingerprint()
            return last == before
        wait_until(is_still, "the screens to stand still", interval=STILL)

    def fingerprint(self):
        self.take()
        return subprocess.run(["identify", "-format", "%#", self.file], check=True,
                              capture_output=True).stdout

    def show(self, wanted):
        return all(is_near(*pair) for pair in zip(self.colours(), wanted))
