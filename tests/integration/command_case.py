"""What the tests of the command share: a system, and the command run in it."""

import os
import pty
import re
import select
import signal
import subprocess
import time
import unittest

from private_system import System, WAIT_SECONDS, build_dir, die_with_parent, wait_until

NO_HELPER = r"^brindle: no helper to talk to: nothing provides \S+ on the system bus; install it with '.*'$"


class CommandCase(unittest.TestCase):
    """A system for each test; a class may leave the helper out, or let the bus start it."""

    activation = False
    starts_helper = True
    watches_locks = False

    def setUp(self):
        self.system = System(activation=self.activation)
        self.addCleanup(self.system.close)
        self.system.start_logind()
        if self.watches_locks:
            self.system.watch_locks()
        if self.starts_helper:
            self.helper = self.system.start_helper()
        self.program = str(build_dir() / "bin" / "brindle")
        self.env = {**os.environ, **self.system.env}

    def brindle(self, *words, **options):
        """Runs the command to its end; the result has returncode, stdout and stderr as text."""
        options.setdefault("env", self.env)
        options.setdefault("stdin", subprocess.DEVNULL if "input" not in options else None)
        if options["stdin"] is None:
            del options["stdin"]
        return subprocess.run([self.program, *words], capture_output=True, text=True, timeout=WAIT_SECONDS,
                              preexec_fn=die_with_parent, **options)

    def start(self, *words, **options):
        """The command in the background, its two outputs in one."""
        return self.system.start([self.program, *words], **options)

    def start_off(self, *words, seconds=WAIT_SECONDS):
        """`brindle sleep off`, with the lock taken."""
        process = self.start("sleep", "off", *words)
        process.wait_line("^Sleep is off for ", seconds)
        self.assert_held()
        return process

    def assert_ran(self, result, status, stdout="", stderr=""):
        self.assertEqual((result.returncode, result.stdout, result.stderr), (status, stdout, stderr))

    def assert_one_line(self, result, status, pattern):
        """Nothing on standard output, and one line that says what is wrong."""
        self.assertEqual((result.returncode, result.stdout), (status, ""), result.stderr)
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertRegex(result.stderr.rstrip("\n"), pattern)

    def assert_held(self):
        self.assertEqual([lock.what for lock in self.system.helper_locks()], ["sleep:handle-lid-switch"])

    def assert_not_held(self):
        """The login manager sees a closed lock only when its own loop comes around."""
        self.system.wait_lock(False, seconds=1.0)

    def assert_never_held(self):
        """No lock was asked for since the start; only where the class watches them. A lock that came and went fails."""
        self.assertEqual(self.system.lock_requests(), [])

    def restart_helper(self):
        """Kills the helper and starts another one."""
        self.helper.signal(signal.SIGKILL)
        self.helper.wait()
        self.helper = self.system.start_helper()

    def terminal(self):
        """An interactive shell on a terminal of its own; ended with the test."""
        terminal = Terminal(self.env)
        self.addCleanup(terminal.close)
        return terminal


class Terminal:
    """A shell with job control, as a person has it: keys go in, the screen comes out."""

    def __init__(self, env):
        self.shown = ""
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            die_with_parent()
            os.execvpe("bash", ["bash", "--norc", "--noprofile", "--noediting", "-i"],
                       {**env, "PS1": "ready> ", "TERM": "dumb", "HISTFILE": "", "LC_ALL": "C"})
        self.wait_for("ready> ")

    def wait_for(self, pattern, seconds=WAIT_SECONDS):
        """Reads until the pattern shows in what has come since the last match; answers the match."""
        end = time.monotonic() + seconds
        while True:
            match = re.search(pattern, self.shown)
            if match:
                self.shown = self.shown[match.end():]
                return match
            left = end - time.monotonic()
            if left <= 0:
                raise AssertionError(f"{pattern!r} does not show; the screen is {self.shown!r}")
            if select.select([self.fd], [], [], left)[0]:
                self.shown += os.read(self.fd, 65536).decode()

    def type(self, keys):
        os.write(self.fd, keys.encode())

    def run(self, line):
        """Types a line and waits until the terminal has shown it."""
        self.type(line + "\n")
        self.wait_for(re.escape(line) + r"\r\n")

    def close(self):
        """Hangs up; a second time nothing happens."""
        if self.fd < 0:
            return
        os.close(self.fd)
        self.fd = -1
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)


__all__ = ["CommandCase", "NO_HELPER", "Terminal", "wait_until"]
