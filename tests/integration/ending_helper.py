"""A stand-in for the helper in the moment in which it ends itself. Arguments: its bus name, path and interface, and how
many requests come too early for the next one; or "late": the first one is turned away only after the second has come.
"""

import sys

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, PATH, INTERFACE = sys.argv[1:4]


class EndingHelper(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, PATH)
        self.late = sys.argv[4] == "late"
        self.too_early = 0 if self.late else int(sys.argv[4])
        self.kept = []

    @dbus.service.method(INTERFACE, in_signature="bd", out_signature="bs", async_callbacks=("answer", "fail"))
    def SetSleepDisabled(self, disabled, _duration, answer, fail):
        print("asked", "off" if disabled else "on", flush=True)
        ending = dbus.DBusException("ask again", name="org.freedesktop.DBus.Error.NoReply")
        if self.late:
            self.late = False
            self.kept.append(lambda: fail(ending))
            return
        while self.kept:
            self.kept.pop()()
        if self.too_early > 0:
            self.too_early -= 1
            fail(ending)
        else:
            answer(True, "Sleep disabled" if disabled else "Sleep on")


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
system_bus = dbus.SystemBus()
ending = EndingHelper(system_bus)
owned = dbus.service.BusName(NAME, system_bus, do_not_queue=True)
print("ready", flush=True)
GLib.MainLoop().run()
