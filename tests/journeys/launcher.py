"""Another program, from which ours is started: what it is covered by, and what it gets its tokens from."""

import pathlib
import select
import subprocess

from waiting import PATIENCE, Impatience, Process, wait_until

WINDOW = pathlib.Path(__file__).with_name("launcher_window.py")


class Launcher:
    """The program that covers ours, and starts it again."""

    def __init__(self):
        self.process = Process([WINDOW], stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)

    def end(self):
        self.process.end()
        self.process.child.stdin.close()
        self.process.child.stdout.close()

    def use(self, press):
        """Has a key pressed in its window until it has noticed: a new keyboard takes a moment."""
        def notices():
            press()
            return self.read(patience=0.5)
        wait_until(notices, "the other window to notice a key")

    def token(self):
        """By which a desktop knows that a start was asked for in this window."""
        self.process.child.stdin.write(b"\n")
        while (line := self.read(PATIENCE)) == "pressed":
            pass
        if line is None:
            raise Impatience("the other window does not answer")
        return line

    def read(self, patience):
        said = self.process.child.stdout
        if not select.select([said], [], [], patience)[0]:
            return None
        return said.readline().decode().strip()
