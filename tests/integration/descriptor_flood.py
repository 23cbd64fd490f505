"""A stranger who attaches descriptors to messages that have no use for them. Arguments: the bus's address, and either
the name, path and interface of a service, which is called sixteen times; or one connection's unique name, which gets
signals without end.

The calls end when the bus has passed everything on, or has refused it.
"""

import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

CALLS = 16
DESCRIPTORS = 16


def send(connection, message):
    descriptors = Gio.UnixFDList.new()
    for _ in range(DESCRIPTORS):
        descriptors.append(0)
    message.set_unix_fd_list(descriptors)
    connection.send_message(message, Gio.DBusSendMessageFlags.NONE)


def call(connection, name, path, interface):
    for _ in range(CALLS):
        message = Gio.DBusMessage.new_method_call(name, path, interface, "Heartbeat")
        message.set_flags(Gio.DBusMessageFlags.NO_REPLY_EXPECTED)
        send(connection, message)
    # Answered only after everything before it.
    connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", None,
                         GLib.VariantType("(s)"), Gio.DBusCallFlags.NONE, -1, None)
    print(f"sent {CALLS} calls with {DESCRIPTORS} descriptors each", flush=True)


def signal(connection, receiver):
    print("ready", flush=True)
    while True:
        for _ in range(8):
            message = Gio.DBusMessage.new_signal("/flood", "app.brindle.Flood", "Signal")
            message.set_destination(receiver)
            send(connection, message)
        connection.flush_sync(None)


def main():
    flags = Gio.DBusConnectionFlags
    connection = Gio.DBusConnection.new_for_address_sync(
        sys.argv[1], flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
    (call if len(sys.argv) > 3 else signal)(connection, *sys.argv[2:])


if __name__ == "__main__":
    main()
