"""Calls on the session bus."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402


connection = None


def bus():
    """A connection that is good now: the bus may have ended and be there again."""
    global connection
    if connection is None or connection.is_closed():
        address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SESSION, None)
        connection = Gio.DBusConnection.new_for_address_sync(
            address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
    return connection


def call(name, path, interface, method, arguments=None, timeout=5000):
    answer = bus().call_sync(name, path, interface, method, arguments, None,
                             Gio.DBusCallFlags.NONE, timeout, None)
    return answer.unpack()


def has_owner(name):
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                "NameHasOwner", GLib.Variant("(s)", (name,)))[0]


def process_of(name):
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]
