"""A caller that attaches descriptors to calls that take none. Arguments: the bus's address, and the name, path and
interface to call.

It ends when the bus has passed everything on, or has refused it.
"""

import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

CALLS = 16
DESCRIPTORS = 16

address, name, path, interface = sys.argv[1:]
flags = Gio.DBusConnectionFlags
connection = Gio.DBusConnection.new_for_address_sync(
    address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
for _ in range(CALLS):
    call = Gio.DBusMessage.new_method_call(name, path, interface, "Heartbeat")
    descriptors = Gio.UnixFDList.new()
    for _ in range(DESCRIPTORS):
        descriptors.append(0)
    call.set_unix_fd_list(descriptors)
    call.set_flags(Gio.DBusMessageFlags.NO_REPLY_EXPECTED)
    connection.send_message(call, Gio.DBusSendMessageFlags.NONE)
# Answered only after everything before it.
connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", None,
                     GLib.VariantType("(s)"), Gio.DBusCallFlags.NONE, -1, None)
print(f"sent {CALLS} calls with {DESCRIPTORS} descriptors each", flush=True)
