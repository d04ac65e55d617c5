"""What a person has besides accessible actions: a pointer, a keyboard, and a screen reader."""

import subprocess

import driver
from gi.repository import Atspi, GLib
from waiting import wait_until


# The pointer.

def is_framed(node):
    """Whether its window knows of its title bar, without which all its places are too high."""
    while node and node.get_role() != Atspi.Role.FRAME:
        node = node.get_parent()
    return not node or Atspi.Component.get_extents(node, Atspi.CoordType.SCREEN).y > 0


def place_of(node):
    """Where it is, once it stays there: a new window is still moved by the window manager."""
    wait_until(lambda: is_framed(node), "a title bar")
    seen = []

    def stays():
        place = Atspi.Component.get_extents(node, Atspi.CoordType.SCREEN)
        seen.append((place.x, place.y, place.width, place.height))
        return len(seen) > 3 and len(set(seen[-4:])) == 1
    wait_until(stays, "it to stay in its place")
    return Atspi.Component.get_extents(node, Atspi.CoordType.SCREEN)


def move_to(node):
    place = place_of(node)
    # A pointer that is there already would not be a move.
    move(place.x - 1, place.y - 1)
    move(place.x + place.width // 2, place.y + place.height // 2)


def move(x, y):
    subprocess.run(["xdotool", "mousemove", "--sync", str(x), str(y)], check=True)


def click(node):
    move_to(node)
    click_here()


def click_here():
    subprocess.run(["xdotool", "click", "1"], check=True)


# The keyboard. Its keys go to whatever window has it.

def press(*keys):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True)


def enter(text):
    """Types a text of plain characters."""
    subprocess.run(["xdotool", "type", "--clearmodifiers", "--delay", "8", text], check=True)


class Keyboard:
    """Walks through the windows of a program with the Tab key, and sees where it is."""

    LONGEST_WALK = 30

    def __init__(self, program, title="Plenaura"):
        self.program = program
        self.turn_to(title)

    def turn_to(self, title):
        """Gives another window the keyboard, as Alt+Tab does."""
        self.program.manage_window("-a", title)
        self.wait_window(title)

    def wait_window(self, title):
        self.program.wait_active(title)

    def here(self):
        """Role and name of what has the keyboard."""
        window = self.program.active_window()
        focused = None
        for node in driver.descendants(window) if window else ():
            try:
                # A tile has the keyboard as well while one of its buttons has it: the last counts.
                if node.get_state_set().contains(Atspi.StateType.FOCUSED):
                    focused = node.get_role_name(), node.get_name()
            except GLib.Error:
                continue
        return focused

    def wait_here(self, role, name):
        wait_until(lambda: self.here() == (role, name), f"the keyboard on {role} {name!r}")

    def step(self, key="Tab"):
        """Presses the key and returns where it led to."""
        before = self.here()
        press(key)

        def elsewhere():
            here = self.here()
            return here if here != before else None
        return wait_until(elsewhere, f"{key} to lead on from {before}")

    def walk_to(self, role, name, key="Tab"):
        """Steps on until there, and returns the way."""
        way = [self.here()]
        while way[-1] != (role, name):
            if len(way) > self.LONGEST_WALK:
                raise AssertionError(f"{key} never reaches {role} {name!r}: {way}")
            way.append(self.step(key))
        return way

    def use(self, role, name, key="space"):
        """Walks to a control and presses it."""
        self.walk_to(role, name)
        press(key)


# The screen reader.

class ScreenReader:
    """Hears what a screen reader would read out unasked: notifications that appear."""

    def __init__(self, program):
        self.program = program
        self.heard = []
        self.listener = Atspi.EventListener.new(self.on_event)
        self.listener.register("object:state-changed:showing")

    def end(self):
        self.listener.deregister("object:state-changed:showing")

    def on_event(self, event, *_):
        try:
            if event.detail1 and event.source.get_role_name() == "notification" \
                    and event.source.get_process_id() == self.program.process.child.pid:
                self.heard += [node.get_name() for node in driver.descendants(event.source)
                               if node.get_role_name() == "label"]
        except GLib.Error:
            pass  # It went away while we listened.

    def listen(self):
        while GLib.MainContext.default().iteration(False):
            pass
        return self.heard

    def wait_heard(self, text):
        wait_until(lambda: text in self.listen(), f"{text!r} to be read out")


def all_texts(program):
    """All that assistive technology can read of the program, shown or not."""
    for node in driver.descendants(program.application()):
        try:
            yield from (node.get_name(), node.get_description(), *node.get_attributes().values())
            for relation in node.get_relation_set():
                yield str(relation.get_relation_type())
            if "Text" in node.get_interfaces():
                yield Atspi.Text.get_text(node, 0, -1)
        except GLib.Error:
            continue
