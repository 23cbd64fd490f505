"""What the tests of the daemon share: a system with a login manager and the helper, and a few checks."""

import os
import socket
import unittest

import dbus

from private_system import WAIT_SECONDS, Client, ClientProcess, System, wait_until

INHIBIT = r'Inhibit\("sleep:handle-lid-switch", "Brindle", "Coding agents are working", "block"\)'


class Listener:
    """A datagram socket on which the daemon is expected to speak."""

    def __init__(self, case, path):
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        case.addCleanup(self.socket.close)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        self.socket.bind(path)
        case.addCleanup(os.unlink, path)

    def receive(self, seconds=WAIT_SECONDS):
        self.socket.settimeout(seconds)
        return self.socket.recv(65536).decode()


class DaemonCase(unittest.TestCase):
    """A running helper for each test; a class may choose the stand-in, or the bus that starts the helper itself."""

    stand_in = False
    activation = False
    starts_helper = True
    watches_locks = False

    def setUp(self):
        self.system = System(activation=self.activation)
        self.addCleanup(self.system.close)
        self.system.start_logind(stand_in=self.stand_in)
        if self.watches_locks:
            self.system.watch_locks()
        if self.starts_helper:
            self.helper = self.system.start_helper()

    def client(self):
        client = Client(self.system)
        self.addCleanup(client.close)
        return client

    def client_process(self, user=None):
        return ClientProcess(self.system, user)

    def assert_held(self):
        """The lock is there, exactly once, with the words that people read in the system's list."""
        locks = self.system.helper_locks()
        self.assertEqual([(lock.what, lock.why, lock.mode) for lock in locks],
                         [("sleep:handle-lid-switch", "Coding agents are working", "block")])
        return locks[0]

    def assert_not_held(self):
        """No lock, or none any more: the login manager sees a moment after the helper that a descriptor was closed."""
        wait_until(lambda: not self.system.helper_locks(), "no lock of the helper")

    def assert_never_held(self):
        """No lock was asked for since the start; only where the class watches them. A lock that came and went fails."""
        self.assertEqual(self.system.lock_requests(), [])

    def hold(self, client, seconds=3600.0):
        self.assertEqual(client.set_sleep_disabled(True, seconds), (True, "Sleep disabled"))
        self.assert_held()

    def log_line(self, pattern):
        return self.helper.wait_line(pattern)

    def log_count(self, text):
        return sum(text in line for line in self.helper.lines)

    def assert_error(self, name, call, *arguments):
        with self.assertRaises(dbus.DBusException) as caught:
            call(*arguments)
        self.assertEqual(caught.exception.get_dbus_name(), name)
        return caught.exception.get_dbus_message()

    def wait_until(self, predicate, what):
        return wait_until(predicate, what)
