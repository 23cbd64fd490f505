"""A stand-in for the login manager, for users who cannot run the real one.

It knows inhibitor locks and nothing else: Inhibit hands out the writing end of a pipe, and a lock is gone when every
copy of that end is closed, as with the real one. It cannot suspend, has no sessions and asks nobody for permission. It
can be told to fail in ways in which the real one fails too rarely for a test.
"""

import os

import dbus
import dbus.lowlevel
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

MANAGER = "org.freedesktop.login1.Manager"
CONTROL = "app.brindle.StandIn"


class Manager(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/login1")
        self.bus = bus
        self.locks = {}
        self.refuses = False

    @dbus.service.method(MANAGER, in_signature="ssss", out_signature="h", sender_keyword="sender")
    def Inhibit(self, what, who, why, mode, sender=None):
        if self.refuses:
            raise dbus.DBusException("the machine is suspending", name="org.freedesktop.login1.OperationInProgress")
        if mode not in ("block", "delay"):
            raise dbus.DBusException("invalid mode", name="org.freedesktop.DBus.Error.InvalidArgs")
        reading, writing = os.pipe2(os.O_CLOEXEC | os.O_NONBLOCK)
        user = self.bus.get_unix_user(sender)
        process = self.bus.call_blocking("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                         "GetConnectionUnixProcessID", "s", (sender,))
        self.locks[reading] = (what, who, why, mode, dbus.UInt32(user), dbus.UInt32(process))
        GLib.io_add_watch(reading, GLib.IO_HUP, self._closed)
        handed_out = dbus.types.UnixFd(writing)
        os.close(writing)
        return handed_out

    def _closed(self, reading, _condition):
        self.locks.pop(reading, None)
        os.close(reading)
        return False

    @dbus.service.method(MANAGER, out_signature="a(ssssuu)")
    def ListInhibitors(self):
        return dbus.Array(list(self.locks.values()), signature="(ssssuu)")

    @dbus.service.signal(MANAGER, signature="b")
    def PrepareForSleep(self, falling_asleep):
        pass

    @dbus.service.method(CONTROL, in_signature="b")
    def RefuseLocks(self, refuses):
        self.refuses = bool(refuses)

    @dbus.service.method(CONTROL)
    def ForgetLocks(self):
        self.locks.clear()

    @dbus.service.method(CONTROL, in_signature="b")
    def EmitPrepareForSleep(self, falling_asleep):
        self.PrepareForSleep(falling_asleep)


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    name = dbus.service.BusName("org.freedesktop.login1", bus, do_not_queue=True)
    manager = Manager(bus)
    print("a stand-in for the login manager is up", flush=True)
    GLib.MainLoop().run()
    del name, manager


if __name__ == "__main__":
    main()
