"""The program as the session bus knows it: started by its activation, driven by its interface."""

import os
import pathlib
import shlex
import subprocess
import sys

from installation import ID, ROOT

sys.path.insert(0, str(ROOT / "tests/journeys"))
from gi.repository import GLib  # noqa: E402
from sessionbus import call, has_owner  # noqa: E402
from waiting import wait_until  # noqa: E402

BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")


def application(method, *arguments):
    signature = {"Activate": "(a{sv})", "ActivateAction": "(sava{sv})"}[method]
    call(ID, "/com/tarnel/Plenaura", "org.freedesktop.Application", method,
         GLib.Variant(signature, (*arguments, {})))


def is_running():
    return has_owner(ID)


def wait_for_end():
    wait_until(lambda: not is_running(), "the program's end")


def process_id():
    (process,) = call(*BUS, "GetConnectionUnixProcessID", GLib.Variant("(s)", (ID,)))
    return process


def executable():
    return os.readlink(f"/proc/{process_id()}/exe")


def commands(desktop_file):
    """The command of each section of a desktop file."""
    sections = {}
    for line in pathlib.Path(desktop_file).read_text().splitlines():
        if line.startswith("["):
            section = line.strip("[]")
        elif line.startswith("Exec="):
            sections[section] = shlex.split(line.removeprefix("Exec="))
    return sections


def start_in_tray(autostart_file):
    subprocess.run(commands(autostart_file)["Desktop Entry"], check=True,
                   stdout=subprocess.DEVNULL)
    wait_until(is_running, "the program on the bus")
    # Answered by the event loop: whatever is shown at the start has been shown by then.
    application("ActivateAction", "none-of-the-actions", [])


def run_action(desktop_file, name):
    """As a launcher does that knows no D-Bus activation."""
    subprocess.run(commands(desktop_file)[f"Desktop Action {name}"], check=True)


def hand_to_bus(*names):
    """What the bus starts from now on has these variables as we have them."""
    call(*BUS, "UpdateActivationEnvironment",
         GLib.Variant("(a{ss})", ({name: os.environ[name] for name in names},)))
