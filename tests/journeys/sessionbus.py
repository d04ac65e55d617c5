"""Calls on the session bus."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402


def bus():
    return Gio.bus_get_sync(Gio.BusType.SESSION, None)


def call(name, path, interface, method, arguments=None, timeout=5000):
    answer = bus().call_sync(name, path, interface, method, arguments, None,
                             Gio.DBusCallFlags.NONE, timeout, None)
    return answer.unpack()


def has_owner(name):
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                "NameHasOwner", GLib.Variant("(s)", (name,)))[0]
