"""Waiting for what should happen, and children that end; nothing waits for a fixed time."""

import signal
import subprocess
import time

from gi.repository import GLib

PATIENCE = 30.0


class Impatience(AssertionError):
    """Something that should have happened did not."""


def wait_until(condition, what, patience=PATIENCE, interval=0.02):
    """Returns the first true answer of condition(), or fails after so many seconds of patience.

    It is asked again after each interval, in seconds, also where what it looked at went away
    meanwhile, as parts of a window do that changes.
    """
    end = time.monotonic() + patience
    while True:
        gone = None
        try:
            answer = condition()
        except GLib.Error as error:
            if error.domain != "atspi_error":
                raise
            answer, gone = None, error
        if answer:
            return answer
        if time.monotonic() > end:
            raise Impatience(f"waited {patience:.0f} s for: {what}") from gone
        time.sleep(interval)


class Process:
    """A child of ours, ended by its own pid."""

    def __init__(self, command, **options):
        self.command = [str(part) for part in command]
        self.child = subprocess.Popen(self.command, **options)

    def alive(self):
        return self.child.poll() is None

    def end(self, with_signal=signal.SIGTERM):
        if self.alive():
            self.child.send_signal(with_signal)
        try:
            return self.child.wait(5)
        except subprocess.TimeoutExpired:
            self.child.kill()
            return self.child.wait()
