"""The limits in real time. Each class is a test of its own for CTest, because each takes a minute or two."""

import signal
import threading
import time

import dbus

import private_system
from daemon_case import DaemonCase, Listener

TICK = 5.0
SLACK = 1.5


class HeartbeatLoss(DaemonCase):
    def test_a_stopped_client_loses_its_hold_after_ninety_seconds(self):
        client = self.client_process()
        start = time.monotonic()
        self.assertEqual(client.ask("off 3600"), "1 Sleep disabled")
        client.signal(signal.SIGSTOP)
        self.system.wait_lock(False, 90 + TICK + SLACK)
        silence = time.monotonic() - start
        self.assertGreater(silence, 90)
        self.log_line("exit 0 reason heartbeatLost")
        client.signal(signal.SIGCONT)
        self.assertEqual(client.ask("heartbeat"), "0")
        self.assertEqual(client.ask("off 3600"), "1 Sleep disabled")


class MaxDuration(DaemonCase):
    def test_the_shortest_hold_ends_after_sixty_seconds_and_refuses_the_next(self):
        client = self.client()
        start = time.monotonic()
        self.hold(client, 1.0)
        for _ in range(2):
            time.sleep(25)
            self.assertTrue(client.heartbeat())
        self.assert_held()
        self.system.wait_lock(False, 10 + TICK + SLACK)
        self.assertGreaterEqual(time.monotonic() - start, 60)
        self.log_line("exit 0 reason maxDuration")
        self.assertEqual(client.set_sleep_disabled(True), (False, "Max duration reached. Turn it off first."))
        self.assertEqual(client.set_sleep_disabled(False), (True, "Sleep on"))
        self.hold(client)


class IdleExit(DaemonCase):
    activation = True
    starts_helper = False

    def test_a_call_in_the_moment_of_the_idle_exit_is_not_lost(self):
        """The bus stands still while the helper decides to go and a client calls; whatever it does first when it goes
        on, the client hears the truth."""
        self.helper = self.system.start_helper()
        start = time.monotonic()
        client = self.client()
        answers = []

        def call():
            try:
                answers.append(client.set_sleep_disabled(True))
            except dbus.DBusException as error:
                answers.append(error.get_dbus_name())

        time.sleep(118 - (time.monotonic() - start))
        self.assertEqual(self.log_count("idle, exiting"), 0)
        self.system.bus.signal(signal.SIGSTOP)
        caller = threading.Thread(target=call)
        caller.start()
        self.helper.wait_line("idle, exiting$", 2 + TICK + SLACK)
        self.assertGreater(time.monotonic() - start, 119.9)
        self.system.bus.signal(signal.SIGCONT)
        caller.join(20)
        self.assertEqual(self.helper.wait(), 0)
        self.assertEqual(len(answers), 1)
        if answers[0] == "org.freedesktop.DBus.Error.NoReply":
            answers.append(client.set_sleep_disabled(True))
        self.assertEqual(answers[-1], (True, "Sleep disabled"))
        self.assertNotEqual(self.assert_held().pid, self.helper.pid, "a new instance holds it")


class Watchdog(DaemonCase):
    starts_helper = False

    def test_the_service_manager_hears_three_times_a_minute_that_the_loop_turns(self):
        path = str(self.system.folder / "notify")
        listener = Listener(self, path)
        self.helper = self.system.start_helper(env={"NOTIFY_SOCKET": path})
        self.assertEqual(listener.receive(), "READY=1")
        for _ in range(2):
            start = time.monotonic()
            self.assertEqual(listener.receive(20 + SLACK), "WATCHDOG=1")
            self.assertGreater(time.monotonic() - start, 20 - SLACK)
        self.helper.signal(signal.SIGSTOP)
        with self.assertRaises(TimeoutError):
            listener.receive(20 + SLACK)


if __name__ == "__main__":
    private_system.main(__name__)
