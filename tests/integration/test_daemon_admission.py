"""Who may use the helper. All of it needs root, who alone can be other people."""

import pathlib
import pwd
import resource
import signal
import sys
import unittest

import private_system
from daemon_case import DaemonCase
from private_system import NOBODY

FLOOD = pathlib.Path(__file__).with_name("descriptor_flood.py")
REFUSAL = "error org.freedesktop.DBus.Error.AccessDenied not authorised for {}.disable-sleep"


def other_users(count):
    """That many users who are not root; the bus knows nobody whom the system does not know."""
    users = sorted({entry.pw_uid for entry in pwd.getpwall()} - {0})[:count]
    assert len(users) == count, users
    return users


@unittest.skipUnless(private_system.is_root(), "SKIPPED: only root can start a client as somebody else")
class Strangers(DaemonCase):
    watches_locks = True

    def setUp(self):
        super().setUp()
        self.refusal = REFUSAL.format(self.system.helper_name)

    def start_polkit(self, condition):
        try:
            self.system.start_polkit(
                f'polkit.addRule(function(action, subject) {{ if (action.id == "{self.system.helper_name}.disable-sleep")'
                f" {{ {condition} }} }});")
        except private_system.Unavailable as reason:
            self.skipTest(f"SKIPPED: {reason}")

    def test_are_refused_every_request_where_there_is_no_polkit(self):
        stranger = self.client_process(NOBODY)
        for request in ("off 3600", "on", "heartbeat", "status"):
            with self.subTest(request=request):
                self.assertEqual(stranger.ask(request), self.refusal)
        self.assert_never_held()

    def test_end_nobodys_hold_by_asking_and_leaving(self):
        client = self.client()
        self.hold(client)
        stranger = self.client_process(NOBODY)
        self.assertEqual(stranger.ask("on"), self.refusal)
        stranger.signal(signal.SIGKILL)
        stranger.wait()
        self.assertTrue(client.heartbeat())
        self.assert_held()

    def test_end_nobodys_hold_by_saying_that_its_client_is_gone(self):
        client = self.client()
        self.hold(client)
        stranger = self.client_process(NOBODY)
        helper = self.system.owner(self.system.helper_name)
        self.assertEqual(stranger.ask(f"forge {helper} {client.unique_name}"), self.refusal, "it came after the signal")
        self.assertTrue(client.heartbeat())
        self.assert_held()
        self.assertEqual(self.log_count("connectionLost"), 0)

    def test_are_admitted_when_polkit_authorises_them(self):
        self.start_polkit('if (subject.user == "nobody") return polkit.Result.YES;')
        stranger = self.client_process(NOBODY)
        self.assertEqual(stranger.ask("status"), "0 0.0 1")
        self.assertEqual(stranger.ask("off 3600"), "1 Sleep disabled")
        self.assert_held()
        self.assertEqual(stranger.ask("heartbeat"), "1")
        stranger.signal(signal.SIGKILL)
        self.system.wait_lock(False)
        self.log_line("reason connectionLost")

    def test_are_refused_when_polkit_refuses_them(self):
        self.start_polkit("return polkit.Result.NO;")
        stranger = self.client_process(NOBODY)
        self.assertEqual(stranger.ask("off 3600"), self.refusal)
        self.assert_never_held()

    def test_are_refused_by_the_shipped_defaults_outside_a_session(self):
        self.start_polkit("return polkit.Result.NOT_HANDLED;")
        stranger = self.client_process(NOBODY)
        self.assertEqual(stranger.ask("off 3600"), self.refusal)
        self.assert_never_held()

    def test_are_asked_about_again_after_a_refusal(self):
        stranger = self.client_process(NOBODY)
        self.assertEqual(stranger.ask("off 3600"), self.refusal)
        self.start_polkit("return polkit.Result.YES;")
        self.assertEqual(stranger.ask("off 3600"), "1 Sleep disabled")

    def test_do_not_keep_others_waiting_while_polkit_thinks(self):
        self.start_polkit("return polkit.Result.YES;")
        polkit = self.system.processes[-1]
        polkit.signal(signal.SIGSTOP)
        stranger = self.client_process(NOBODY)
        stranger.popen.stdin.write("off 3600\n")
        stranger.popen.stdin.flush()
        client = self.client()
        self.assertEqual(client.status(), (False, 0.0, 1))
        self.hold(client)
        client.set_sleep_disabled(False)
        polkit.signal(signal.SIGCONT)
        stranger.wait_line("^1 Sleep disabled$")
        self.assert_held()

    def test_hold_nothing_when_they_go_before_polkit_has_answered(self):
        self.start_polkit("return polkit.Result.YES;")
        polkit = self.system.processes[-1]
        polkit.signal(signal.SIGSTOP)
        stranger = self.client_process(NOBODY)
        stranger.popen.stdin.write("off 3600\n")
        stranger.popen.stdin.flush()
        # A call of ours that is answered afterwards shows that the stranger's has arrived.
        self.wait_until(lambda: self.client().status(), "the helper answers")
        stranger.signal(signal.SIGKILL)
        stranger.wait()
        polkit.signal(signal.SIGCONT)
        other = self.client_process(NOBODY)
        self.assertEqual(other.ask("status"), "0 0.0 1", "polkit has answered everything before this")
        self.assert_never_held()
        self.assertEqual(self.log_count("reason request"), 0)

    def test_may_have_sixteen_calls_waiting_and_no_more(self):
        limit = "error org.freedesktop.DBus.Error.LimitsExceeded too many calls before admission"
        self.start_polkit("return polkit.Result.YES;")
        polkit = self.system.processes[-1]
        polkit.signal(signal.SIGSTOP)
        greedy, modest = self.client_process(NOBODY), self.client_process(NOBODY)
        self.assertEqual(greedy.ask("burst 16"), limit)
        modest.popen.stdin.write("burst 15\n")
        modest.popen.stdin.flush()
        polkit.signal(signal.SIGCONT)
        modest.wait_line("^0$")

    def test_cannot_fill_the_daemons_table_of_open_files(self):
        self.start_polkit("return polkit.Result.YES;")
        self.system.processes[-1].signal(signal.SIGSTOP)
        client = self.client()
        self.hold(client)
        limit, _ = resource.prlimit(self.helper.pid, resource.RLIMIT_NOFILE)
        resource.prlimit(self.helper.pid, resource.RLIMIT_NOFILE, (128, 128))
        self.assertGreater(limit, 128, "a limit as low as this one is no test")
        flood = self.system.start([sys.executable, "-B", FLOOD, self.system.address, self.system.helper_name,
                                   self.system.object_path, self.system.interface], user=NOBODY)
        self.assertEqual(flood.wait(), 0, flood.lines)
        self.assertEqual(flood.lines, ["sent 16 calls with 16 descriptors each"])
        self.assertTrue(client.heartbeat())
        self.assert_held()

    def test_leave_room_for_others_while_many_of_them_wait(self):
        limit = "error org.freedesktop.DBus.Error.LimitsExceeded too many clients"
        self.start_polkit("return polkit.Result.YES;")
        polkit = self.system.processes[-1]
        polkit.signal(signal.SIGSTOP)
        *users, last = other_users(5)
        crowds = [self.client_process(user) for user in users]
        for crowd in crowds:
            self.assertEqual(crowd.ask("crowd 16"), limit, "sixteen of one user")
        late = self.client_process(last)
        self.assertEqual(late.ask("heartbeat"), limit, "sixty-four of all users")
        trusted = self.client()
        self.hold(trusted)
        trusted.set_sleep_disabled(False)
        polkit.signal(signal.SIGCONT)
        for client in (*crowds, late):
            self.wait_until(lambda: client.ask("heartbeat") == "0", "there is room again")

    def test_keep_out_no_other_user_however_many_clients_they_have(self):
        self.start_polkit("return polkit.Result.YES;")
        polkit = self.system.processes[-1]
        polkit.signal(signal.SIGSTOP)
        crowd, other = map(self.client_process, other_users(2))
        self.assertRegex(crowd.ask("crowd 64"), "too many clients$")
        other.popen.stdin.write("off 3600\n")
        other.popen.stdin.flush()
        self.wait_until(lambda: self.client().status(), "the helper answers behind it")
        polkit.signal(signal.SIGCONT)
        other.wait_line("^1 Sleep disabled$")


if __name__ == "__main__":
    private_system.main(__name__)
