"""Start, end and restarts of the daemon, of the login manager and of the bus."""

import os
import shutil
import signal
import unittest

import private_system
from daemon_case import INHIBIT, DaemonCase, Listener


class Start(DaemonCase):
    def test_every_start_switches_sleep_back_on_before_the_service_is_there(self):
        self.log_line("helper started, turning sleep back on$")
        self.log_line(r"close\(no lock\) exit 0 reason helperStart$")
        self.assertEqual(self.client().status(), (False, 0.0, 1))

    def test_a_second_instance_says_that_the_name_is_taken_and_ends_with_one(self):
        client = self.client()
        self.hold(client)
        second = self.system.start([private_system.build_dir() / "bin" / "BrindleHelper"])
        self.assertEqual(second.wait(), 1)
        self.assertIn(f"BrindleHelper: own the bus name {self.system.helper_name}: File exists", second.lines)
        self.assertTrue(client.heartbeat(), "the first serves on")
        self.assert_held()

    def test_without_a_bus_it_says_so_and_ends_with_one(self):
        lost = self.system.start([private_system.build_dir() / "bin" / "BrindleHelper"],
                                 env={"DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nonexistent/bus"})
        self.assertEqual(lost.wait(), 1)
        self.assertEqual(lost.lines, ["BrindleHelper: connect to the system bus: No such file or directory"])

    def test_arguments_are_not_read(self):
        self.helper.signal(signal.SIGTERM)
        self.helper.wait()
        other = self.system.start([private_system.build_dir() / "bin" / "BrindleHelper", "--help", "--version"])
        other.wait_line("exit 0 reason helperStart")
        self.wait_until(lambda: self.system.owner(self.system.helper_name), "it serves")

    @unittest.skipUnless(private_system.is_root(), "SKIPPED: only root can start it as somebody else")
    def test_the_bus_lets_nobody_but_root_own_the_name(self):
        self.helper.signal(signal.SIGTERM)
        self.helper.wait()
        other = self.system.start([private_system.build_dir() / "bin" / "BrindleHelper"], user=private_system.NOBODY)
        self.assertEqual(other.wait(), 1)
        self.assertIn(f"BrindleHelper: own the bus name {self.system.helper_name}: Permission denied", other.lines)


class End(DaemonCase):
    def test_sigterm_gives_sleep_back_and_ends_with_zero(self):
        client = self.client()
        self.hold(client)
        self.helper.signal(signal.SIGTERM)
        self.assertEqual(self.helper.wait(), 0)
        self.assert_not_held()
        self.log_line("SIGTERM, turning sleep back on$")
        self.assertEqual(self.log_count("reason uninstall"), 1)
        self.log_line(rf"close\({INHIBIT}\) exit 0 reason uninstall")

    def test_sigterm_also_ends_it_while_sleep_is_on(self):
        self.helper.signal(signal.SIGTERM)
        self.assertEqual(self.helper.wait(), 0)
        self.log_line("exit 0 reason uninstall")

    def test_a_killed_daemon_holds_nothing(self):
        client = self.client()
        self.hold(client)
        self.helper.signal(signal.SIGKILL)
        self.assertLess(self.system.wait_lock(False), 1.0)

    def test_the_next_instance_starts_from_nothing(self):
        client = self.client()
        self.hold(client)
        self.helper.signal(signal.SIGKILL)
        self.helper.wait()
        self.helper = self.system.start_helper()
        self.log_line("reason helperStart")
        self.assertEqual(client.status(), (False, 0.0, 1))
        self.hold(client)

    def test_losing_the_bus_ends_the_process_and_with_it_the_hold(self):
        client = self.client()
        self.hold(client)
        self.system.bus.signal(signal.SIGKILL)
        self.assertEqual(self.helper.wait(), 1)
        self.log_line("BrindleHelper: the system bus is gone")


class LoginManager(DaemonCase):
    def test_a_hold_survives_a_restart_of_the_login_manager(self):
        client = self.client()
        self.hold(client)
        self.system.kill_logind()
        if not self.system.real:
            self.skipTest("SKIPPED: the stand-in forgets its locks")
        self.system.start_logind()
        self.assertTrue(client.heartbeat())
        self.assert_held()
        self.assertEqual(self.log_count("has lost the lock"), 0)

    def test_a_lock_that_the_login_manager_has_forgotten_is_taken_again(self):
        client = self.client()
        self.hold(client)
        self.system.kill_logind()
        self.system.forget_locks()
        self.system.start_logind()
        self.system.wait_lock(True)
        self.assert_held()
        self.log_line("logind has lost the lock, taking it again")
        self.assertTrue(client.heartbeat())
        client.close()
        self.system.wait_lock(False)

    def test_without_a_login_manager_the_request_fails_and_holds_nothing(self):
        self.system.kill_logind()
        client = self.client()
        self.assertEqual(client.set_sleep_disabled(True), (False, "logind failed"))
        self.assertEqual(client.status(), (False, 0.0, 1))
        self.assertFalse(client.heartbeat())
        self.log_line("error: logind gave no lock: org.freedesktop.DBus.Error.")
        self.log_line(rf"{INHIBIT} exit [1-9]\d* reason request")
        self.system.start_logind()
        self.hold(client)

    def test_sleep_can_be_switched_on_without_a_login_manager(self):
        client = self.client()
        self.hold(client)
        self.system.kill_logind()
        self.assertEqual(client.set_sleep_disabled(False), (True, "Sleep on"))
        self.system.start_logind()
        self.assert_not_held()

    def test_a_login_manager_that_does_not_answer_fails_the_request_within_seconds(self):
        client = self.client()
        self.system.logind.signal(signal.SIGSTOP)
        self.addCleanup(os.kill, self.system.logind.pid, signal.SIGCONT)
        self.assertEqual(client.set_sleep_disabled(True), (False, "logind failed"))
        self.system.logind.signal(signal.SIGCONT)
        self.assertEqual(client.status(), (False, 0.0, 1))
        self.system.wait_lock(False)


class FailingLoginManager(DaemonCase):
    stand_in = True

    def test_a_refused_lock_is_a_failed_request(self):
        client = self.client()
        self.system.stand_in("RefuseLocks", "b", True)
        self.assertEqual(client.set_sleep_disabled(True), (False, "logind failed"))
        self.log_line("logind gave no lock: org.freedesktop.login1.OperationInProgress: the machine is suspending")
        self.system.stand_in("RefuseLocks", "b", False)
        self.hold(client)

    def test_a_lock_lost_during_a_suspend_is_taken_again_after_it(self):
        client = self.client()
        self.hold(client)
        self.system.stand_in("RefuseLocks", "b", True)
        self.system.stand_in("ForgetLocks")
        self.system.stand_in("EmitPrepareForSleep", "b", True)
        self.assertTrue(client.heartbeat())
        self.assertEqual(self.log_count("has lost the lock"), 0, "falling asleep is no time to look")
        self.system.stand_in("RefuseLocks", "b", False)
        self.system.stand_in("EmitPrepareForSleep", "b", False)
        self.system.wait_lock(True)
        self.assert_held()

    def test_a_lock_that_is_refused_once_is_tried_again_by_itself(self):
        client = self.client()
        self.hold(client)
        self.system.stand_in("RefuseLocks", "b", True)
        self.system.stand_in("ForgetLocks")
        self.system.stand_in("EmitPrepareForSleep", "b", False)
        self.log_line("logind gave no lock: org.freedesktop.login1.OperationInProgress")
        self.assert_not_held()
        self.system.stand_in("RefuseLocks", "b", False)
        self.system.wait_lock(True)


class ServiceManager(DaemonCase):
    starts_helper = False

    def test_hears_that_the_daemon_is_ready_only_once_it_can_be_called(self):
        path = str(self.system.folder / "notify")
        listener = Listener(self, path)
        self.helper = self.system.start([private_system.build_dir() / "bin" / "BrindleHelper"],
                                        env={"NOTIFY_SOCKET": path})
        self.assertEqual(listener.receive(), "READY=1")
        self.assertEqual(self.client().status(), (False, 0.0, 1))

    @unittest.skipIf(shutil.which("setpriv") is None or not private_system.is_root(),
                     "SKIPPED: only root with setpriv can take rights away")
    def test_may_take_every_right_away_that_its_unit_takes(self):
        self.helper = self.system.start_helper(wrapper=[
            "setpriv", "--bounding-set=-all", "--inh-caps=-all", "--securebits=+noroot,+noroot_locked",
            "--no-new-privs"])
        with open(f"/proc/{self.helper.pid}/status", encoding="ascii") as status:
            self.assertIn("CapEff:\t0000000000000000\n", status.readlines())
        client = self.client()
        self.hold(client)
        self.assertEqual(client.set_sleep_disabled(False), (True, "Sleep on"))


@unittest.skipUnless(private_system.is_root(), "SKIPPED: only root can have a journal of its own")
class Journal(DaemonCase):
    starts_helper = False

    def test_gets_the_log_under_the_helpers_name_with_its_levels(self):
        listener = Listener(self, "/run/systemd/journal/socket")
        self.helper = self.system.start_helper()
        self.assertEqual(self.entry(listener), ("helper started, turning sleep back on", "6"))
        self.assertEqual(self.entry(listener), ("close(no lock) exit 0 reason helperStart", "6"))
        self.system.kill_logind()
        self.client().set_sleep_disabled(True)
        text, level = self.entry(listener)
        self.assertTrue(text.startswith("logind gave no lock: org.freedesktop.DBus.Error."), text)
        self.assertEqual(level, "3")
        self.assertEqual(self.helper.lines, [], "nothing is said twice")

    def entry(self, listener):
        fields = dict(line.split("=", 1) for line in listener.receive().splitlines())
        self.assertEqual(fields.pop("SYSLOG_IDENTIFIER"), self.system.helper_name)
        return fields["MESSAGE"], fields["PRIORITY"]


class Activation(DaemonCase):
    activation = True
    starts_helper = False

    def test_the_first_call_starts_it(self):
        self.assertIsNone(self.system.owner(self.system.helper_name))
        client = self.client()
        self.hold(client)
        pid = int(self.system.connection().call_blocking(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetConnectionUnixProcessID", "s",
            (self.system.helper_name,)))
        self.addCleanup(self.kill_if_running, pid)
        self.assertEqual(self.assert_held().pid, pid)
        os.kill(pid, signal.SIGTERM)
        self.system.wait_lock(False)

    @staticmethod
    def kill_if_running(pid):
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass


if __name__ == "__main__":
    private_system.main(__name__)
