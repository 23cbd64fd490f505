"""Says which locks are asked for on a bus, and repeats every marker, in the order in which the bus passes them on.

A lock that is taken and closed again shows in no list afterwards; the call that took it shows here. Argument: the bus's
address.
"""

import sys

import dbus.bus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

MARKER_INTERFACE = "app.brindle.LockWatch"
RULES = ["type='method_call',interface='org.freedesktop.login1.Manager',member='Inhibit'",
         f"type='signal',interface='{MARKER_INTERFACE}',member='Marker'"]


def seen(_connection, message):
    if message.get_member() == "Inhibit":
        print("lock", *message.get_args_list(), flush=True)
    if message.get_member() == "Marker":
        print("marker", *message.get_args_list(), flush=True)
    return dbus.lowlevel.HANDLER_RESULT_HANDLED  # a monitor that answers a call is thrown out


def main():
    bus = dbus.bus.BusConnection(sys.argv[1], mainloop=dbus.mainloop.glib.DBusGMainLoop())
    bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
                      "BecomeMonitor", "asu", (RULES, 0))
    bus.add_message_filter(seen)
    print("ready", flush=True)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
