"""Requests over the bus, and what the end of a client does."""

import math
import os
import random
import signal

import dbus

import private_system
from daemon_case import INHIBIT, DaemonCase
from private_system import WAIT_SECONDS


def descriptor_count(pid):
    return len(os.listdir(f"/proc/{pid}/fd"))


def is_instrumented(pid):
    """Whether a sanitizer, which keeps what was given back, is part of the program."""
    with open(f"/proc/{pid}/maps", encoding="utf-8") as maps:
        return any("libasan" in line or "libtsan" in line for line in maps)


def changed_kilobytes(pid):
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as rollup:
        return next(int(line.split()[1]) for line in rollup if line.startswith("Private_Dirty:"))


class Requests(DaemonCase):
    watches_locks = True

    def test_a_hold_that_came_and_went_is_none_that_never_was(self):
        client = self.client()
        self.assert_never_held()
        self.hold(client)
        client.set_sleep_disabled(False)
        self.system.wait_lock(False)
        with self.assertRaisesRegex(AssertionError, "lock sleep:handle-lid-switch Brindle"):
            self.assert_never_held()

    def test_a_hold_is_a_lock_from_the_request_to_its_end(self):
        client = self.client()
        self.assert_never_held()
        self.hold(client)
        self.assertEqual(self.assert_held().pid, self.helper.pid)
        self.assertTrue(client.heartbeat())
        self.assertEqual(client.set_sleep_disabled(False), (True, "Sleep on"))
        self.assert_not_held()
        self.assertFalse(client.heartbeat())
        self.log_line(f"{INHIBIT} exit 0 reason request")
        self.log_line(rf"close\({INHIBIT}\) exit 0 reason turnedOff")

    def test_a_second_disable_takes_no_second_lock_and_keeps_the_deadline(self):
        client = self.client()
        self.hold(client, 600)
        self.assertEqual(client.set_sleep_disabled(True, 7200), (True, "Sleep already disabled"))
        self.assert_held()
        self.assertLessEqual(client.status().remaining, 600)

    def test_enabling_works_while_sleep_is_on(self):
        self.assertEqual(self.client().set_sleep_disabled(False), (True, "Sleep on"))

    def test_status_tells_state_remaining_time_and_version(self):
        client = self.client()
        self.assertEqual(client.status(), (False, 0.0, 1))
        self.hold(client, 600)
        status = client.status()
        self.assertTrue(status.sleep_disabled)
        self.assertTrue(590 < status.remaining <= 600, status)

    def test_any_duration_is_clamped(self):
        cases = [(math.nan, 60), (-math.inf, 60), (-1.0, 60), (0.0, 60), (1e300, 43200), (math.inf, 43200)]
        for asked, given in cases:
            with self.subTest(asked=asked):
                client = self.client()
                self.hold(client, asked)
                self.assertTrue(given - 10 < client.status().remaining <= given)
                client.set_sleep_disabled(False)

    def test_wrong_arguments_are_answered_with_an_error_and_change_nothing(self):
        client = self.client()
        invalid = "org.freedesktop.DBus.Error.InvalidArgs"
        for signature, arguments in (("", ()), ("b", (True,)), ("bs", (True, "3600")), ("bi", (True, 3600)),
                                     ("db", (3600.0, True)), ("bdd", (True, 1.0, 1.0)), ("(bd)", ((True, 60.0),))):
            with self.subTest(signature=signature):
                self.assert_error(invalid, client.call, "SetSleepDisabled", signature, *arguments)
        self.assert_error(invalid, client.call, "Heartbeat", "b", True)
        self.assert_error(invalid, client.call, "Status", "s", "now")
        self.assert_error("org.freedesktop.DBus.Error.UnknownMethod", client.call, "Reboot")
        self.assert_never_held()
        self.assertEqual(client.status(), (False, 0.0, 1))

    def test_no_call_whatever_it_is_harms_the_daemon(self):
        chance = random.Random(20)
        values = {"b": True, "d": 1e308, "s": "\u00e4" * 1000, "x": -2**63, "u": 2**32 - 1, "as": ["a"] * 500,
                  "a{sv}": {"a": 1}, "v": "text", "y": 255, "o": "/a/b", "g": "bd"}
        client = self.client()
        answered = 0
        for _ in range(500):
            parts = chance.choices(sorted(values), k=chance.randrange(6))
            if parts == ["b", "d"]:
                continue  # a request like any other
            member = chance.choice(["SetSleepDisabled", "Heartbeat", "Status", "Introspect", "Set", "X" * 255])
            try:
                client.call(member, "".join(parts), *(values[part] for part in parts))
                answered += 1
            except dbus.DBusException as error:
                self.assertIn(error.get_dbus_name().rsplit(".", 1)[1], ("InvalidArgs", "UnknownMethod"))
        self.assertGreater(answered, 5)
        self.assertTrue(self.helper.running())
        self.assertEqual(client.status(), (False, 0.0, 1))

    def test_calls_of_one_client_are_answered_in_their_order(self):
        client = self.client()
        replies = [client.set_sleep_disabled(number % 2 == 0).message for number in range(200)]
        self.assertEqual(replies, ["Sleep disabled", "Sleep on"] * 100)


class EndOfClients(DaemonCase):
    watches_locks = True

    def test_a_killed_client_gives_sleep_back_at_once(self):
        client = self.client_process()
        self.assertEqual(client.ask("off 3600"), "1 Sleep disabled")
        self.assert_held()
        client.signal(signal.SIGKILL)
        self.assertLess(self.system.wait_lock(False), 1.0)
        self.log_line("reason connectionLost")

    def test_a_client_that_leaves_gives_sleep_back(self):
        client = self.client()
        self.hold(client)
        client.close()
        self.system.wait_lock(False)
        self.log_line("reason connectionLost")

    def test_either_of_two_clients_ends_the_hold(self):
        first, second = self.client(), self.client()
        self.hold(first)
        self.assertEqual(second.set_sleep_disabled(True), (True, "Sleep already disabled"))
        second.close()
        self.system.wait_lock(False)
        self.assertFalse(first.heartbeat())
        self.hold(first)

    def test_a_client_that_only_beat_counts_as_a_connection(self):
        first, second = self.client(), self.client()
        self.hold(first)
        self.assertTrue(second.heartbeat())
        second.close()
        self.system.wait_lock(False)

    def test_asking_for_the_status_ends_no_hold(self):
        first = self.client()
        self.hold(first)
        for _ in range(20):
            asker = self.client()
            self.assertTrue(asker.status().sleep_disabled)
            asker.close()
        self.wait_until(lambda: not self.system.connection().name_has_owner(asker.unique_name), "the asker is gone")
        self.assertTrue(first.heartbeat())
        self.assert_held()
        self.assertEqual(self.log_count("connectionLost"), 0)

    def test_a_hold_asked_for_by_a_client_that_is_gone_never_begins(self):
        client = self.client()
        self.helper.signal(signal.SIGSTOP)
        message = self.call_without_waiting(client, "SetSleepDisabled", "bd", True, 3600.0)
        self.assertIsNotNone(message)
        client.close()
        self.wait_until(lambda: not self.system.connection().name_has_owner(client.unique_name), "the client is gone")
        self.helper.signal(signal.SIGCONT)
        self.assertEqual(self.client().status(), (False, 0.0, 1))
        self.assert_never_held()
        self.assertEqual(self.log_count("exit 0 reason request"), 0)

    def call_without_waiting(self, client, member, signature, *arguments):
        import dbus.lowlevel
        message = dbus.lowlevel.MethodCallMessage(self.system.helper_name, self.system.object_path,
                                                  self.system.interface, member)
        message.append(*arguments, signature=signature)
        client.connection.send_message(message)
        client.connection.flush()
        return message

    def test_a_client_that_vanishes_right_after_its_call_leaves_no_hold(self):
        for _ in range(50):
            client = self.client()
            self.call_without_waiting(client, "SetSleepDisabled", "bd", True, 3600.0)
            client.close()
        self.wait_until(lambda: not self.client().status().sleep_disabled, "the last hold is gone")
        self.system.wait_lock(False)

    def test_a_thousand_clients_leave_nothing_behind(self):
        def generation(count):
            clients = [private_system.Client(self.system) for _ in range(count)]
            for number, client in enumerate(clients):
                client.set_sleep_disabled(True) if number % 2 else client.heartbeat()
            for client in clients:
                client.close()
            self.system.wait_lock(False, WAIT_SECONDS)
            names = [client.unique_name for client in clients]
            self.wait_until(lambda: not any(map(self.system.connection().name_has_owner, names[-3:])), "all are gone")
            self.assertEqual(self.client().status().version, 1)

        for _ in range(5):
            generation(100)  # what it needs once it has now, and its heap has settled
        descriptors, memory = descriptor_count(self.helper.pid), changed_kilobytes(self.helper.pid)
        for _ in range(10):
            generation(100)
        self.assertEqual(descriptor_count(self.helper.pid), descriptors)
        if not is_instrumented(self.helper.pid):
            self.assertLess(changed_kilobytes(self.helper.pid) - memory, 128)

    def test_there_are_at_most_384_clients_and_room_again_when_one_goes(self):
        holder = self.client()
        self.hold(holder)
        others = [self.client() for _ in range(383)]
        for client in others:
            self.assertTrue(client.heartbeat())
        late = self.client()
        limit = "org.freedesktop.DBus.Error.LimitsExceeded"
        self.assertEqual(self.assert_error(limit, late.heartbeat), "too many clients")
        self.assertTrue(holder.heartbeat(), "the hold is not touched")
        self.assert_held()
        others[0].close()
        self.system.wait_lock(False)
        self.assertEqual(late.set_sleep_disabled(True), (True, "Sleep disabled"))


if __name__ == "__main__":
    private_system.main(__name__)
