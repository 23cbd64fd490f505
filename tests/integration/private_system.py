"""A private system bus with a login manager and the helper, for tests, demonstrations and measurements.

As root everything is real: the calling process moves into a mount namespace of its own whose /run is empty, and
there run dbus-daemon under the rules of a system bus, systemd-logind and, on request, polkitd. Nothing outside can see
it, any number can run side by side, and whatever was started dies with the process that started it. A plain user gets
the same bus with a stand-in for the login manager, which says what it is (System.login_manager).

    with System() as system:
        system.start_logind()
        system.start_helper()
        client = Client(system)
        client.set_sleep_disabled(True, 3600)
        assert system.helper_locks()
"""

import collections
import ctypes
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from watched_process import WAIT_SECONDS, Process, die_with_parent, wait_until  # noqa: F401

ROOT = pathlib.Path(__file__).resolve().parents[2]
LOGIND = "/lib/systemd/systemd-logind"
POLKITD = "/usr/lib/polkit-1/polkitd"
LOCK_WHAT = "sleep:handle-lid-switch"
LOCK_WHO = "Brindle"
LOCK_WHY = "Coding agents are working"
STAND_IN_INTERFACE = "app.brindle.StandIn"
NOBODY = 65534

Lock = collections.namedtuple("Lock", "what who why mode uid pid")
Reply = collections.namedtuple("Reply", "ok message")
Status = collections.namedtuple("Status", "sleep_disabled remaining version")


class Unavailable(Exception):
    """This machine or this user cannot have a private system; the text says why."""


def build_dir():
    """BRINDLE_BUILD_DIR, or whichever build has the newest helper."""
    if "BRINDLE_BUILD_DIR" in os.environ:
        return pathlib.Path(os.environ["BRINDLE_BUILD_DIR"])
    programs = list((ROOT / "build").glob("*/bin/BrindleHelper"))
    if not programs:
        raise Unavailable("BrindleHelper is not built")
    return max(programs, key=lambda program: program.stat().st_mtime).parents[1]


def app_id():
    text = (build_dir() / "generated" / "generated" / "identity_config.h").read_text()
    return re.search(r'BRINDLE_APP_ID "([^"]+)"', text).group(1)


def is_root():
    return os.geteuid() == 0


_in_namespace = False


def enter_namespace():
    """Gives this process a mount namespace with an empty /run; once a process."""
    global _in_namespace
    if _in_namespace:
        return
    libc = ctypes.CDLL(None, use_errno=True)
    clone_newns, ms_rec, ms_private = 0x00020000, 0x4000, 1 << 18
    if libc.unshare(clone_newns) != 0:
        raise Unavailable("unshare: " + os.strerror(ctypes.get_errno()))
    if libc.mount(b"none", b"/", None, ms_rec | ms_private, None) != 0:
        raise Unavailable("make / private: " + os.strerror(ctypes.get_errno()))
    if libc.mount(b"tmpfs", b"/run", b"tmpfs", 0, b"mode=0755") != 0:
        raise Unavailable("mount /run: " + os.strerror(ctypes.get_errno()))
    _in_namespace = True


def check_available():
    """Raises Unavailable when no private system is possible here."""
    if shutil.which("dbus-daemon") is None:
        raise Unavailable("dbus-daemon is not installed")
    try:
        import dbus  # noqa: F401
    except ImportError:
        raise Unavailable("dbus-python is not installed for this python") from None
    build_dir()
    if is_root():
        if not os.path.exists(LOGIND):
            raise Unavailable(LOGIND + " is not installed")
        enter_namespace()


BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>{type}</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  {servicedir}
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/><deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/><allow receive_type="method_return"/>
    <allow receive_type="error"/><allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus"/>
  </policy>
  {policies}
  <limit name="max_connections_per_user">8192</limit>
  <limit name="max_completed_connections">8192</limit>
  <limit name="max_incomplete_connections">1024</limit>
</busconfig>
"""


class System:
    """A bus and what runs on it; ends all of it when it is left."""

    def __init__(self, activation=False):
        """With `activation` the bus starts the helper when somebody calls it."""
        check_available()
        self.app_id = app_id()
        self.helper_name = self.app_id + ".helper"
        self.object_path = "/" + self.app_id.replace(".", "/") + "/helper"
        self.interface = self.app_id + ".Helper1"
        self.real = is_root()
        self.login_manager = "systemd-logind" if self.real else "a stand-in for the login manager"
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="brindle-system-", dir="/run" if self.real else None))
        self.folder.chmod(0o755)
        self.address = f"unix:path={self.folder}/bus"
        self.env = {"DBUS_SYSTEM_BUS_ADDRESS": self.address, "PATH": os.environ.get("PATH", "/usr/bin:/bin")}
        self.processes = []
        self.mounts = []
        self.helper = None
        self.logind = None
        self._lock_watch = None
        self._markers = 0
        self._connection = None
        self._start_bus(activation)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        if self._connection is not None:
            self._connection.close()
            self._connection = None
        for process in reversed(self.processes):
            process.stop()
        self.processes.clear()
        for mount in reversed(self.mounts):
            subprocess.run(["umount", mount], check=True)
        self.mounts.clear()
        shutil.rmtree(self.folder, ignore_errors=True)

    def _start_bus(self, activation):
        policies = f"<include>{build_dir()}/packaging/linux/{self.helper_name}.conf</include>"
        if self.real:
            policies += "<includedir>/usr/share/dbus-1/system.d</includedir>"
            # An activated process is the bus's child and must own its name as root, so no helper program is needed.
        else:
            policies += '<policy context="default"><allow own="*"/><allow send_destination="*"/></policy>'
        servicedir = ""
        if activation:
            services = self.folder / "services"
            services.mkdir()
            (services / f"{self.helper_name}.service").write_text(
                f"[D-BUS Service]\nName={self.helper_name}\nExec={build_dir()}/bin/BrindleHelper\nUser=root\n")
            servicedir = f"<servicedir>{services}</servicedir>"
        configuration = self.folder / "bus.conf"
        # Of type "session", because a bus of type "system" activates only through its set-user-id helper program.
        configuration.write_text(BUS_CONFIGURATION.format(
            type="session" if activation else "system", socket=f"{self.folder}/bus", servicedir=servicedir,
            policies=policies))
        bus = self.start(["dbus-daemon", f"--config-file={configuration}", "--nofork", "--nopidfile", "--print-address"])
        bus.wait_line("unix:")
        self.bus = bus

    def start(self, command, env=None, user=None, stdin=subprocess.DEVNULL):
        """Any program on this system's bus; it is ended with the system."""
        process = Process(command, {**self.env, **(env or {})}, user=user, stdin=stdin)
        self.processes.append(process)
        return process

    def connection(self):
        """This process's own connection, for looking at the system; it is not a client of the helper."""
        import dbus.bus
        if self._connection is None:
            self._connection = dbus.bus.BusConnection(self.address)
        return self._connection

    def owner(self, name):
        import dbus
        try:
            return str(self.connection().get_name_owner(name))
        except dbus.DBusException:
            return None

    def start_logind(self, stand_in=False):
        """The login manager; with `stand_in` the one that can be told to fail (see stand_in())."""
        if self.real and not stand_in:
            for folder in ("systemd/inhibit", "systemd/seats", "systemd/users", "systemd/sessions"):
                os.makedirs("/run/" + folder, exist_ok=True)
            self.logind = self.start([LOGIND])
        else:
            self.login_manager = "a stand-in for the login manager"
            self.logind = self.start([sys.executable, pathlib.Path(__file__).with_name("stand_in_logind.py")])
        wait_until(lambda: self.owner("org.freedesktop.login1"), f"{self.login_manager} is up: {self.logind.lines}")
        return self.logind

    def kill_logind(self):
        """SIGKILL; its name is gone from the bus afterwards."""
        self.logind.signal(signal.SIGKILL)
        self.logind.wait()
        wait_until(lambda: not self.owner("org.freedesktop.login1"), "the login manager's name is gone")

    def forget_locks(self):
        """Takes the login manager's memory of its locks away; only while it is down."""
        assert not self.logind.running()
        if self.real:
            shutil.rmtree("/run/systemd/inhibit")

    def stand_in(self, member, signature="", *arguments):
        """Tells the stand-in to misbehave: RefuseLocks(b), ForgetLocks(), EmitPrepareForSleep(b)."""
        self.connection().call_blocking("org.freedesktop.login1", "/org/freedesktop/login1", STAND_IN_INTERFACE, member,
                                        signature, arguments, timeout=WAIT_SECONDS)

    def start_polkit(self, rule):
        """polkitd that knows the helper's action and decides about it by one JavaScript rule."""
        if not (self.real and os.path.exists(POLKITD)):
            raise Unavailable("polkitd is not there")
        actions, rules = self.folder / "actions", self.folder / "rules"
        shutil.copytree("/usr/share/polkit-1/actions", actions)
        shutil.copy(build_dir() / "packaging" / "linux" / f"{self.helper_name}.policy", actions)
        rules.mkdir()
        (rules / "50-test.rules").write_text(rule)
        for source, target in ((actions, "/usr/share/polkit-1/actions"), (rules, "/etc/polkit-1/rules.d")):
            for path in (source, *source.iterdir()):
                path.chmod(0o755 if path.is_dir() else 0o644)
            subprocess.run(["mount", "--bind", source, target], check=True)
            self.mounts.append(target)
        polkit = self.start([POLKITD, "--no-debug"])
        wait_until(lambda: self.owner("org.freedesktop.PolicyKit1"), "polkitd is up")
        return polkit

    def start_helper(self, env=None, wrapper=()):
        """Starts BrindleHelper, behind the words of `wrapper` if any, and waits until it owns its name."""
        self.helper = self.start([*wrapper, build_dir() / "bin" / "BrindleHelper"], env=env)
        wait_until(lambda: self.owner(self.helper_name) or not self.helper.running(), "the helper is up")
        assert self.helper.running(), self.helper.lines
        return self.helper

    def list_inhibitors(self):
        """Every lock, as the login manager lists them."""
        manager = self.connection().get_object("org.freedesktop.login1", "/org/freedesktop/login1", introspect=False)
        rows = manager.ListInhibitors(dbus_interface="org.freedesktop.login1.Manager")
        return [Lock(*map(str, row[:4]), int(row[4]), int(row[5])) for row in rows]

    def helper_locks(self):
        return [lock for lock in self.list_inhibitors() if lock.who == LOCK_WHO]

    def watch_locks(self):
        """From now on lock_requests() tells."""
        self._lock_watch = self.start([sys.executable, "-B", pathlib.Path(__file__).with_name("lock_watch.py"),
                                       self.address])
        self._lock_watch.wait_line("^ready$")

    def lock_requests(self):
        """Every lock that anybody has asked for since watch_locks(), held or not: what it locks, who, why and how."""
        import dbus.lowlevel
        self._markers += 1
        marker = dbus.lowlevel.SignalMessage("/", "app.brindle.LockWatch", "Marker")
        marker.append(self._markers, signature="u")
        self.connection().send_message(marker)
        self.connection().flush()
        self._lock_watch.wait_line(f"^marker {self._markers}$")  # it has seen everything before the marker
        return [line for line in self._lock_watch.lines if line.startswith("lock ")]

    def wait_lock(self, held, seconds=WAIT_SECONDS):
        """Waits until the helper's lock is held, or is not; answers how long that took, in seconds."""
        start = time.monotonic()
        wait_until(lambda: bool(self.helper_locks()) == held, f"the lock is {'held' if held else 'gone'}", seconds)
        return time.monotonic() - start


class Client:
    """A client of the helper inside this process, with a bus connection of its own."""

    def __init__(self, system):
        import dbus.bus
        self.system = system
        self.connection = dbus.bus.BusConnection(system.address)
        self.unique_name = self.connection.get_unique_name()

    def call(self, member, signature="", *arguments, timeout=WAIT_SECONDS):
        """Any call, also one that is wrong; raises dbus.DBusException for an error reply."""
        return self.connection.call_blocking(
            self.system.helper_name, self.system.object_path, self.system.interface, member, signature, arguments,
            timeout=timeout)

    def set_sleep_disabled(self, disabled, max_duration=3600.0):
        ok, message = self.call("SetSleepDisabled", "bd", disabled, max_duration)
        return Reply(bool(ok), str(message))

    def heartbeat(self):
        return bool(self.call("Heartbeat"))

    def status(self):
        disabled, remaining, version = self.call("Status")
        return Status(bool(disabled), float(remaining), int(version))

    def close(self):
        self.connection.close()


class ClientProcess(Process):
    """A client in a process of its own, to be killed or stopped; `user` is another user's id."""

    def __init__(self, system, user=None):
        super().__init__([sys.executable, pathlib.Path(__file__).resolve(), "client", system.address, system.helper_name,
                          system.object_path, system.interface], {**os.environ, **system.env},
                         user=user, stdin=subprocess.PIPE)
        system.processes.append(self)
        self.wait_line("^ready$")

    def ask(self, request, seconds=WAIT_SECONDS):
        """"off SECONDS", "on", "heartbeat", "status" or "exit"; the reply as a line of text. "burst COUNT" sends that
        many heartbeats without waiting, and then one whose reply it waits for; "crowd COUNT" sends each of the former
        over a connection of its own. "forge RECEIVER NAME" tells the receiver alone, as if it were the bus, that the name
        has gone, and then sends a heartbeat."""
        already = len(self.lines)
        self.popen.stdin.write(request + "\n")
        self.popen.stdin.flush()
        return wait_until(lambda: self.lines[already:], f"the client answers {request!r}", seconds)[0]


def run_client(address, name, path, interface):
    import dbus.bus
    import dbus.lowlevel
    connection = dbus.bus.BusConnection(address)
    crowd = []
    print("ready", flush=True)
    calls = {"off": ("SetSleepDisabled", "bd", True), "on": ("SetSleepDisabled", "bd", False, 0.0),
             "heartbeat": ("Heartbeat", ""), "status": ("Status", "")}
    for line in sys.stdin:
        word, *rest = line.split()
        if word == "exit":
            return
        if word in ("burst", "crowd"):
            for _ in range(int(rest.pop())):
                crowd.append(dbus.bus.BusConnection(address) if word == "crowd" else connection)
                message = dbus.lowlevel.MethodCallMessage(name, path, interface, "Heartbeat")
                message.set_no_reply(True)
                crowd[-1].send_message(message)
                crowd[-1].get_unix_user(name)  # answered only after the bus has passed the heartbeat on
            word = "heartbeat"
        if word == "forge":
            receiver, gone = rest
            message = dbus.lowlevel.SignalMessage("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged")
            message.set_destination(receiver)
            message.append(gone, gone, "", signature="sss")
            connection.send_message(message)
            word, rest = "heartbeat", []
        member, signature, *arguments = calls[word]
        try:
            reply = connection.call_blocking(name, path, interface, member, signature,
                                             arguments + [float(number) for number in rest], timeout=WAIT_SECONDS)
            print(reply if not isinstance(reply, tuple) else " ".join(map(str, reply)), flush=True)
        except dbus.DBusException as error:
            print("error", error.get_dbus_name(), error.get_dbus_message(), flush=True)


def main(tests):
    """Runs a test program: 77 and a line when nothing can run here, which CTest reports as skipped."""
    try:
        check_available()
    except Unavailable as reason:
        print(f"SKIPPED: {reason}")
        sys.exit(77)
    import unittest
    result = unittest.main(module=tests, verbosity=2, exit=False).result
    if result.wasSuccessful() and result.testsRun == len(result.skipped):
        sys.exit(77)
    sys.exit(0 if result.wasSuccessful() else 1)


if __name__ == "__main__" and sys.argv[1:2] == ["client"]:
    run_client(*sys.argv[2:])
