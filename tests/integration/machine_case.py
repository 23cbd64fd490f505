"""A machine of its own for a test: process table, network and mounts that hold only what the test starts there."""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

from namespaces import can_unshare
from process_case import BRINDLE, ProcessCase, wait_until

NOBODY = 65534
NEEDED = ("unshare", "nsenter", "setpriv", "prlimit", "ip", "ss", "ps")


def missing():
    """Why there can be no machine of its own here; nothing where there can."""
    if os.geteuid() != 0:
        return "a machine of its own takes root"
    absent = [program for program in NEEDED if shutil.which(program) is None]
    if absent:
        return "there is no " + ", ".join(absent)
    if not can_unshare("--mount", "--net", "--pid", "--fork"):
        return "no namespaces can be made"
    return None


@unittest.skipIf(missing(), f"skipped: {missing()}")
class MachineCase(ProcessCase):
    def setUp(self):
        super().setUp()
        # What other users run must be in reach of them.
        self.folder.chmod(0o755)
        self.program = shutil.copy(BRINDLE, self.folder / "brindle")
        home = self.folder / "nobody"
        home.mkdir()
        os.chown(home, NOBODY, NOBODY)

    def script(self, name, text):
        path = self.folder / name
        path.write_text(text)
        path.chmod(0o755)
        return path

    def stand_in(self, name):
        """A program called `name` that runs shell scripts."""
        return shutil.copy("/bin/bash", self.folder / name)

    def machine(self, text):
        """Starts the machine with a script as its first process, and waits until that has come to its end, where it
        goes on sleeping. Pids that it writes down are those inside."""
        # Who ignores the end of children has none that wait for it; shells do not hand that down.
        sleeper = ("import signal; signal.signal(signal.SIGCHLD, signal.SIG_IGN); "
                   f'open("{self.folder}/ready", "w").close(); signal.sigwait([signal.SIGUSR1])')
        end = f"exec {sys.executable} -c '{sleeper}'"
        first = self.script("first", f"ip link set lo up\n{text}\n{end}")
        outer = subprocess.Popen(
            ["unshare", "--mount", "--net", "--pid", "--fork", "--mount-proc", "--kill-child", "/bin/sh", first],
            env=self.environment, cwd=self.project, stdin=subprocess.DEVNULL)
        self.addCleanup(outer.wait)
        self.addCleanup(outer.kill)
        wait_until(lambda: (self.folder / "ready").exists() or outer.poll() is not None, "the machine")
        self.assertIsNone(outer.poll(), "the machine has ended")
        children = pathlib.Path(f"/proc/{outer.pid}/task/{outer.pid}/children").read_text()
        self.first = int(children)

    def server_line(self, port, pid_file):
        # The distribution's Python, since other users may not enter the folder of another one.
        return super().server_line(port, pid_file).replace("python3", sys.executable, 1)

    def pid_from(self, pid_file):
        path = self.folder / pid_file
        wait_until(lambda: path.exists() and path.read_text().strip(), pid_file)
        return int(path.read_text())

    def inside(self, *words, user=None, network=None, typed=""):
        """Runs a program in the machine, as another user or in the network of one of its processes; `typed` is what it
        reads."""
        other = ["setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups"] if user else []
        if network:
            other = ["nsenter", f"--net=/proc/{network}/ns/net", *other]
        environment = {**self.environment, "BRINDLE_DATA_DIR": str(self.folder / "nobody")} if user else self.environment
        return subprocess.run(
            ["nsenter", f"--target={self.first}", "--mount", "--net", "--pid", *other, *map(str, words)], env=environment,
            cwd="/", capture_output=True, text=True, timeout=120, input=typed)

    def brindle_inside(self, *words, code=0, **place):
        result = self.inside(self.program, *words, **place)
        self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        return result

    def document_inside(self, *words, **place):
        return json.loads(self.brindle_inside(*words, "--json", **place).stdout)

    def snapshot_inside(self, **place):
        return {each["pid"]: each for each in json.loads(self.brindle_inside("snapshot", **place).stdout)}

    def pids_of_ps(self, **place):
        return {int(pid) for pid in self.inside("ps", "-e", "-o", "pid=", **place).stdout.split()}

    def rows_inside(self, **place):
        """Port and pid of each row of `ports`."""
        return [(row["port"], row["pid"]) for row in self.document_inside("ports", **place)["listeners"]]

    def wait_listening(self, count, **place):
        wait_until(lambda: len(self.inside("ss", "-Hltn", **place).stdout.splitlines()) == count, f"{count} listeners")


def main(tests):
    """Runs a test program: 77 when all of it was skipped, which CTest reports as such."""
    result = unittest.main(module=tests, verbosity=2, exit=False).result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.testsRun == len(result.skipped) else 0)
