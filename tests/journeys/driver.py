"""Drives the built program on a private desktop as a person does, through accessibility.

Everything here expects to run under scripts/on-private-display: a screen, a session bus and a home
that belong to nobody.
"""

import json
import os
import pathlib
import re
import signal
import subprocess
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from sessionbus import call, has_owner  # noqa: E402
from waiting import PATIENCE, Impatience, Process, wait_until  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]

GENERATE = "Generate & Set Wallpaper"
SET = "Wallpaper set!"
MISSING_KEY = "Missing {} API key \u2014 open Settings (\u2318,)"


def descendants(root):
    pending = [root]
    while pending:
        node = pending.pop()
        try:
            yield node
            pending += [node.get_child_at_index(index)
                        for index in range(node.get_child_count() - 1, -1, -1)]
        except GLib.Error:
            continue  # It went away while we looked.
        pending = [node for node in pending if node is not None]


def is_showing(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


class Plenaura:
    """One start of the program, with keys and settings put in its home beforehand."""

    NAME = "com.tarnel.Plenaura"

    def __init__(self, binaries, home, program="plenaura-demo", environment=None):
        self.home = pathlib.Path(home)
        self.binaries = binaries
        self.program = program
        self.environment = environment or {}
        self.process = None

    # What lies in the home.

    @property
    def key_file(self):
        return self.home / "Library/Application Support/Plenaura/keys.json"

    @property
    def settings_file(self):
        return self.home / ".config/tarnel/Plenaura.conf"

    @property
    def image_folder(self):
        return self.home / "Pictures/Plenaura"

    def put_keys(self, **keys):
        self.key_file.parent.mkdir(parents=True, exist_ok=True)
        self.key_file.write_text(json.dumps(keys))
        self.key_file.chmod(0o600)

    def put_settings(self, **settings):
        self.settings_file.parent.mkdir(parents=True, exist_ok=True)
        lines = [f"{key}={value}" for key, value in settings.items()]
        self.settings_file.write_text("\n".join(["[General]", *lines, ""]))

    def settings(self):
        lines = self.settings_file.read_text().splitlines()
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def images(self):
        return sorted(self.image_folder.glob("wallpaper_*"), key=lambda path: path.stat().st_mtime)

    # Starting and ending.

    def command(self):
        return [self.binaries / self.program]

    def process_id(self):
        """Which program it is among the accessible ones."""
        return self.process.child.pid

    def surroundings(self):
        return {**os.environ, "HOME": str(self.home),
                "XDG_CONFIG_HOME": str(self.home / ".config"), **self.environment}

    def start(self, wait_for_window=True, **options):
        self.process = Process(self.command(), env=self.surroundings(), **options)
        wait_until(lambda: has_owner(self.NAME) or not self.process.alive(), "the program's name")
        if wait_for_window:
            self.find("push button", GENERATE)
        return self

    def alive(self):
        return self.process is not None and self.process.alive()

    def end(self, with_signal=signal.SIGTERM):
        if self.process is None:
            return None
        status = self.process.end(with_signal)
        wait_until(lambda: not has_owner(self.NAME), "the program's name to be free")
        return status

    def wait_for_exit(self):
        wait_until(lambda: not self.alive(), "the program to end")
        return self.process.child.returncode

    # Looking.

    def application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            try:
                if child is not None and child.get_process_id() == self.process_id():
                    return child
            except GLib.Error:
                continue
        return None

    def named(self, role=None, name=None):
        """All that is on screen now with this role and name, each with its name."""
        application = self.application()
        if application is None:
            return []
        found = []
        for node in descendants(application):
            try:
                own_name = node.get_name()
                if (role is None or node.get_role_name() == role) \
                        and name in (None, own_name) and is_showing(node):
                    found.append((own_name, node))
            except GLib.Error:
                continue
        return found

    def look(self, role=None, name=None):
        return [node for _, node in self.named(role, name)]

    def find(self, role, name, patience=PATIENCE):
        return wait_until(lambda: self.look(role, name), f"{role} {name!r}", patience)[0]

    def sees(self, role, name):
        return bool(self.look(role, name))

    def wait_gone(self, role, name):
        wait_until(lambda: not self.sees(role, name), f"{role} {name!r} to go")

    def wait_status(self, text, patience=PATIENCE):
        try:
            return self.find("label", text, patience)
        except Impatience as error:
            raise Impatience(f"{error}; the labels are {self.names('label')}") from None

    def names(self, role):
        return [name for name, _ in self.named(role)]

    def windows(self):
        return self.names("frame")

    def wait_active(self, title):
        def is_active():
            window = self.active_window()
            return window is not None and window.get_name() == title
        wait_until(is_active, f"{title!r} to have the keyboard")

    def active_window(self):
        """The program's window that has the keyboard."""
        application = self.application()
        for index in range(application.get_child_count()):
            node = application.get_child_at_index(index)
            if node and node.get_state_set().contains(Atspi.StateType.ACTIVE):
                return node
        return None

    @staticmethod
    def is_enabled(node):
        return node.get_state_set().contains(Atspi.StateType.ENABLED)

    @staticmethod
    def is_on(node):
        return node.get_state_set().contains(Atspi.StateType.CHECKED)

    # Acting.

    @staticmethod
    def act(node, *wanted):
        for index in range(Atspi.Action.get_n_actions(node)):
            if Atspi.Action.get_action_name(node, index) in wanted:
                Atspi.Action.do_action(node, index)
                return
        raise AssertionError(f"{node.get_name()!r} offers none of {wanted}")

    def press(self, name, role="push button"):
        self.act(self.find(role, name), "Press")

    def switch(self, name, on):
        node = self.find("check box", name)
        if self.is_on(node) != on:
            self.act(node, "Toggle", "Press")
        wait_until(lambda: self.is_on(node) == on, f"{name} to be {on}")

    def type(self, field, text):
        node = self.find_field(field)
        Atspi.EditableText.set_text_contents(node, text)

    def find_field(self, field):
        return wait_until(
            lambda: [node for node in self.look(None, field)
                     if node.get_role_name() in ("text", "password text")], f"field {field!r}")[0]

    def text_of(self, field):
        return Atspi.Text.get_text(self.find_field(field), 0, -1)

    def wait_can_generate(self):
        wait_until(lambda: [node for node in self.look("push button", GENERATE)
                            if self.is_enabled(node)], "the button to be enabled")

    def generate(self, prompt=None):
        if prompt is not None:
            self.type("Prompt", prompt)
        self.wait_can_generate()
        self.press(GENERATE)

    @staticmethod
    def manage_window(action, title):
        # Qt appends the program's name to other titles than that name itself.
        exactly = ["-F"] if title == "Plenaura" else []
        # The window manager may not have taken the window in yet.
        wait_until(lambda: subprocess.run(["wmctrl", *exactly, action, title], check=False,
                                          stderr=subprocess.DEVNULL).returncode == 0,
                   f"the window manager to know {title!r}")

    def close_window(self, title="Plenaura"):
        self.manage_window("-c", title)

    def press_keys(self, keys, title="Plenaura"):
        self.manage_window("-a", title)
        subprocess.run(["xdotool", "key", "--clearmodifiers", keys], check=True)

    # The desktop's actions.

    def action(self, name, platform_data=None):
        """As a desktop does that offers what the desktop file tells of."""
        call(self.NAME, "/com/tarnel/Plenaura", "org.freedesktop.Application", "ActivateAction",
             GLib.Variant("(sava{sv})", (name, [], platform_data or {})))

    # The tray menu.

    @staticmethod
    def ask_tray(question):
        """A property of what knows all icons and panels; nothing if that is not there."""
        try:
            (answer,) = call("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                             "org.freedesktop.DBus.Properties", "Get",
                             GLib.Variant("(ss)", ("org.kde.StatusNotifierWatcher", question)))
        except GLib.Error:
            return None
        return answer

    def tray_items(self):
        """The bus names of all icons in the tray; some trays add a path to them."""
        return [re.split("[@/]", item)[0]
                for item in self.ask_tray("RegisteredStatusNotifierItems") or []]

    def tray_item(self):
        """The bus name of the newest icon, if the tray has one."""
        items = self.tray_items()
        return items[-1] if items else None

    def wait_tray_item(self):
        return wait_until(self.tray_item, "the icon in the tray")

    def menu(self):
        """The rows of the tray menu from top to bottom, as it shows them when opened."""
        item = self.wait_tray_item()
        (path,) = call(item, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                       GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", "Menu")))
        call(item, path, "com.canonical.dbusmenu", "AboutToShow", GLib.Variant("(i)", (0,)))
        _, (_, _, rows) = call(item, path, "com.canonical.dbusmenu", "GetLayout",
                               GLib.Variant("(iias)", (0, -1, [])))
        return [MenuRow(item, path, identifier, properties) for identifier, properties, _ in rows]

    def menu_row(self, label):
        return wait_until(lambda: [row for row in self.menu() if row.label == label],
                          f"menu row {label!r}")[0]

    def hand_token_to_tray_icon(self, token):
        """As panels do before the click or the menu row of which they tell next."""
        call(self.wait_tray_item(), "/StatusNotifierItem", "org.kde.StatusNotifierItem",
             "ProvideXdgActivationToken", GLib.Variant("(s)", (token,)))

    def click_tray_icon(self):
        call(self.wait_tray_item(), "/StatusNotifierItem", "org.kde.StatusNotifierItem",
             "Activate", GLib.Variant("(ii)", (1, 1)))


class MenuRow:
    def __init__(self, item, path, identifier, properties):
        self.item, self.path, self.identifier = item, path, identifier
        self.label = properties.get("label", "")
        self.is_separator = properties.get("type") == "separator"
        self.enabled = properties.get("enabled", True)
        self.checkable = properties.get("toggle-type") == "checkmark"
        self.checked = properties.get("toggle-state") == 1

    def click(self):
        call(self.item, self.path, "com.canonical.dbusmenu", "Event",
             GLib.Variant("(isvu)", (self.identifier, "clicked", GLib.Variant("s", ""), 0)))


def binaries_from(arguments):
    """The folder of the programs, named as the first argument of a journey."""
    if len(arguments) < 2 or not os.path.isdir(arguments[1]):
        sys.exit(f"usage: {arguments[0]} FOLDER_OF_THE_PROGRAMS [TEST...]")
    return pathlib.Path(arguments.pop(1)).resolve()
