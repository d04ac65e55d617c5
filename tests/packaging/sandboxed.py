"""The program as a Flatpak that the person has installed, in its sandbox."""

import contextlib
import os
import pathlib
import subprocess

import onthebus
import driver
from gi.repository import Atspi, GLib
from installation import ID
from waiting import wait_until

def flatpak(*arguments):
    return subprocess.run(["flatpak", *arguments], check=True, capture_output=True, text=True).stdout


class Permissions:
    """What the manifest asks for, as the installation keeps it: pairs of a kind and a value."""

    def __init__(self):
        self.file = pathlib.Path(flatpak("info", "--show-location", ID).strip()) / "metadata"

    def read(self):
        keys = GLib.KeyFile()
        keys.load_from_file(str(self.file), GLib.KeyFileFlags.NONE)
        return keys

    def all(self):
        keys = self.read()
        context = {(kind, value) for kind in keys.get_keys("Context")[0]
                   for value in keys.get_string_list("Context", kind)}
        if ("sockets", "fallback-x11") in context:
            context.discard(("sockets", "x11"))  # Goes with it, for old versions of Flatpak.
        names = {("talk", name) for name in keys.get_keys("Session Bus Policy")[0]}
        return context | names

    @contextlib.contextmanager
    def without(self, kind, value):
        """Starts of the program meanwhile lack this one."""
        before = self.file.read_text()
        keys = self.read()
        if kind == "talk":
            keys.remove_key("Session Bus Policy", value)
        else:
            dropped = {value, value.removeprefix("fallback-")}
            others = [each for each in keys.get_string_list("Context", kind) if each not in dropped]
            keys.set_string_list("Context", kind, others)
        keys.save_to_file(str(self.file))
        try:
            yield
        finally:
            self.file.write_text(before)


class Plenaura(driver.Plenaura):
    """The same program for the person, but its own folders lie elsewhere outside the sandbox."""

    def __init__(self, home):
        super().__init__(pathlib.Path(), home)

    @property
    def own_folder(self):
        return self.home / ".var/app" / ID

    @property
    def key_file(self):
        return self.own_folder / "Library/Application Support/Plenaura/keys.json"

    @property
    def settings_file(self):
        return self.own_folder / "config/tarnel/Plenaura.conf"

    def command(self):
        # Qt 6.4 asks whether accessibility has a name on the bus, which a sandbox does not let it
        # see, and so never comes to the door that the sandbox has for it: it gets another one.
        return ["flatpak", "run", "--no-a11y-bus", "--talk-name=org.a11y.Bus",
                f"--filesystem={os.environ['XDG_RUNTIME_DIR']}/at-spi", ID]

    def process_id(self):
        # That of the proxy that stands between it and the session bus.
        return onthebus.process_id() if onthebus.is_running() else None

    def application(self):
        desktop = Atspi.get_desktop(0)
        children = [desktop.get_child_at_index(index)
                    for index in range(desktop.get_child_count())]
        return next((child for child in children if child and child.get_name() == "Plenaura"), None)

    def look_inside(self, *command):
        """What this command says that runs in such a sandbox."""
        return subprocess.run(
            ["flatpak", "run", f"--command={command[0]}", ID, *command[1:]], check=True,
            capture_output=True, text=True, env=self.surroundings()).stdout.strip()

    def end(self, *_signals):
        if self.process is None:
            return None
        if onthebus.is_running():
            onthebus.application("ActivateAction", "quit", [])
            onthebus.wait_for_end()
        wait_until(lambda: not self.process.alive(), "the sandbox's end")
        return self.process.child.returncode
