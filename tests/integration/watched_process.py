"""Child processes of tests: their output is collected, waits are bounded, and none outlives the test."""

import ctypes
import os
import re
import signal
import subprocess
import threading
import time

WAIT_SECONDS = 10.0


def die_with_parent():
    """In a child before exec: a killed test leaves nothing behind."""
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL)


def wait_until(predicate, what, seconds=WAIT_SECONDS):
    """The first true value of predicate(); AssertionError with `what` when there is none in time."""
    end = time.monotonic() + seconds
    while True:
        value = predicate()
        if value:
            return value
        if time.monotonic() >= end:
            raise AssertionError(f"waited {seconds:g} s in vain until {what}")
        time.sleep(0.002)


class Process:
    """A child whose output is collected line by line."""

    def __init__(self, command, env, **options):
        user = options.pop("user", None)

        def prepare():
            if user is not None:
                os.setgroups([])
                os.setgid(user)
                os.setuid(user)
            # Whatever runs in the background of a shell without job control ignores them, and would hand that down.
            for number in (signal.SIGINT, signal.SIGQUIT):
                signal.signal(number, signal.SIG_DFL)
            die_with_parent()  # after setuid, which clears it

        self.lines = []
        self.popen = subprocess.Popen(
            [str(word) for word in command], env=env, stdin=options.get("stdin", subprocess.DEVNULL),
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, bufsize=1, preexec_fn=prepare)
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.popen.stdout:
            self.lines.append(line.rstrip("\n"))

    @property
    def pid(self):
        return self.popen.pid

    def running(self):
        return self.popen.poll() is None

    def wait_line(self, pattern, seconds=WAIT_SECONDS):
        """The match in the first line that has one."""
        def find():
            return next((m for m in (re.search(pattern, line) for line in list(self.lines)) if m), None)
        return wait_until(find, f"a line matches {pattern!r}; there is {self.lines!r}", seconds)

    def signal(self, number):
        os.kill(self.pid, number)

    def wait(self, seconds=WAIT_SECONDS):
        """The exit status; negative for a signal. All output has been read when it returns."""
        try:
            status = self.popen.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"{self.popen.args[0]} has not ended after {seconds:g} s; it said {self.lines!r}") from None
        self._reader.join(seconds)
        return status

    def stop(self):
        if self.running():
            os.kill(self.pid, signal.SIGKILL)
        if self.popen.stdin:
            self.popen.stdin.close()
        self.popen.wait()
        self._reader.join(WAIT_SECONDS)
        self.popen.stdout.close()
