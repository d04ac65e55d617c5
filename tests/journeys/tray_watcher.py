#!/usr/bin/python3
"""The smallest tray: a StatusNotifierWatcher that accepts icons and lists them.

Runs until it is ended. Ending and starting it again is a panel that restarts.
"""

from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"
INTERFACE = """
<node>
  <interface name="org.kde.StatusNotifierWatcher">
    <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
    <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
    <signal name="StatusNotifierHostRegistered"/>
  </interface>
</node>
"""

items = []


def on_call(connection, sender, _path, _interface, method, parameters, invocation):
    if method == "RegisterStatusNotifierItem":
        (service,) = parameters.unpack()
        # An item names its bus name or, on itself, only the path of its object.
        items.append(sender if service.startswith("/") else service)
        connection.emit_signal(None, PATH, NAME, "StatusNotifierItemRegistered",
                               GLib.Variant("(s)", (service,)))
    invocation.return_value(None)


def on_get(_connection, _sender, _path, _interface, name):
    return {
        "RegisteredStatusNotifierItems": GLib.Variant("as", items),
        "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
        "ProtocolVersion": GLib.Variant("i", 0),
    }[name]


def on_bus(connection, _name):
    interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
    connection.register_object(PATH, interface, on_call, on_get, None)


loop = GLib.MainLoop()
Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, on_bus,
                 lambda connection, _name: connection.emit_signal(
                     None, PATH, NAME, "StatusNotifierHostRegistered", None),
                 lambda *_: loop.quit())
loop.run()
