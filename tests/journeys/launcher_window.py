#!/usr/bin/python3
"""The window of another program, which covers the screen and starts programs, as a panel's menu does.

Writes "pressed" for each key that is pressed in it. For each line that it reads it writes one with a
token, by which the desktop knows that what is started was asked for here; an empty one where the
desktop gives no tokens.
"""

import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gio, GLib, Gtk  # noqa: E402

COLOUR = b"window { background: rgb(255, 0, 255); }"


def say(text):
    print(text, flush=True)


class Launcher(Gtk.Window):
    def __init__(self):
        super().__init__(title="Launcher")
        colour = Gtk.CssProvider()
        colour.load_from_data(COLOUR)
        self.get_style_context().add_provider(colour, Gtk.STYLE_PROVIDER_PRIORITY_APPLICATION)
        self.set_decorated(False)
        self.set_default_size(1280, 800)
        self.maximize()
        self.connect("key-press-event", lambda *_: say("pressed"))
        self.connect("destroy", Gtk.main_quit)
        # GTK would buffer lines of which it was told only once.
        GLib.io_add_watch(GLib.IOChannel.unix_new(sys.stdin.fileno()), GLib.PRIORITY_DEFAULT,
                          GLib.IOCondition.IN | GLib.IOCondition.HUP, self.answer)
        self.show()

    def answer(self, channel, _condition):
        if not channel.readline():
            Gtk.main_quit()
            return False
        program = Gio.AppInfo.create_from_commandline(
            "plenaura", "Plenaura", Gio.AppInfoCreateFlags.SUPPORTS_STARTUP_NOTIFICATION)
        context = self.get_display().get_app_launch_context()
        say(context.get_startup_notify_id(program, []) or "")
        return True


if __name__ == "__main__":
    Launcher()
    Gtk.main()
