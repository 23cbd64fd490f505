"""Reports of a machine with thousands of processes, and the end of them all."""

import os
import subprocess
import sys

from machine_case import MachineCase, main
from process_case import wait_until

CROWD = 5000
LISTENING = 50
# What a report may keep in memory. Measured: 14 MB.
MEMORY_BYTES = 40_000_000
RECORDS_BYTES = 512 * 1024

CROWD_SCRIPT = f"""
import os, signal, socket, sys
for each in range({CROWD}):
    if os.fork() == 0:
        if each % {CROWD // LISTENING} == 0:
            listener = socket.socket()
            listener.bind(("127.0.0.1", 0))
            listener.listen()
        signal.pause()
open(sys.argv[1], "w").write(str(os.getpid()))
signal.pause()
"""


class Crowd(MachineCase):
    def setUp(self):
        super().setUp()
        (self.folder / "crowd.py").write_text(CROWD_SCRIPT)
        agent = self.script("agent.sh", f"""
            echo $$ > {self.folder}/agent
            {sys.executable} -S -E {self.folder}/crowd.py {self.folder}/crowd &
            wait
        """)
        self.machine(f"{self.stand_in('codex')} {agent} &")
        self.crowd = self.pid_from("crowd")
        self.agent = self.pid_from("agent")
        self.wait_listening(LISTENING)

    def holders_of_ss(self):
        listing = self.inside("ss", "-Hltnp").stdout.splitlines()
        return sorted((int(line.split()[3].rpartition(":")[2]), int(line.partition("pid=")[2].partition(",")[0]))
                      for line in listing)

    def is_instrumented(self):
        """Whether a sanitizer, which takes several times the memory, is part of the program."""
        linked = subprocess.run(["ldd", self.program], capture_output=True, text=True).stdout
        return "libasan" in linked or "libtsan" in linked

    def memory_of(self, *words):
        """The most that a report had in memory at once, in bytes."""
        report = subprocess.Popen(["nsenter", f"--target={self.first}", "--mount", "--net", "--pid", self.program, *words],
                                  env=self.environment, stdout=subprocess.DEVNULL)
        _, status, usage = os.wait4(report.pid, 0)
        report.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(report.returncode, 0)
        return usage.ru_maxrss * 1024

    def test_the_reports_tell_what_runs(self):
        before = self.pids_of_ps()
        snapshot = self.snapshot_inside()
        after = self.pids_of_ps()
        self.assertGreater(len(before & after), CROWD)
        self.assertEqual(before & after, set(snapshot) & before & after)
        crowd = {pid for pid, each in snapshot.items() if each["ppid"] == self.crowd}
        self.assertEqual(len(crowd), CROWD)
        listeners = self.holders_of_ss()
        self.assertEqual(len(listeners), LISTENING)
        self.assertEqual(self.rows_inside(), listeners)
        self.assertEqual(sorted((port, pid) for pid in crowd for port in snapshot[pid]["ports"]), listeners)
        session, = self.document_inside("agents")["sessions"]
        self.assertEqual(session["pid"], self.agent)
        self.assertEqual({row["pid"] for row in session["started"]}, crowd | {self.crowd})
        self.assertEqual(session["ports"], [port for port, _ in listeners])
        status = self.document_inside("status")
        self.assertEqual((status["devServers"], status["agentSessions"], status["ghosts"]), (LISTENING, 1, 0))
        idle = self.document_inside("idle", "--older-than", "0s")
        self.assertEqual({row["pid"] for row in idle["stop"]}, {pid for _, pid in listeners})

    def test_their_memory_and_what_they_remember_are_bounded(self):
        for words in (("ports",), ("agents",), ("snapshot",), ("status",)):
            memory = self.memory_of(*words)
            if not self.is_instrumented():
                self.assertLess(memory, MEMORY_BYTES, words)
        records = self.state / "ownership.jsonl"
        self.assertGreater(records.stat().st_size, 0)
        self.assertLessEqual(records.stat().st_size, RECORDS_BYTES)

    def test_all_of_a_session_is_stopped(self):
        """They take more descriptors than a process has by default."""
        stopped = self.inside("prlimit", "--nofile=1024:", self.program, "quit", self.agent, "--yes", "--force")
        self.assertEqual(stopped.returncode, 0, stopped.stderr)
        # The agent, the parent of the crowd, and the crowd.
        self.assertEqual(stopped.stdout.count(": stopped\n") + stopped.stdout.count(": had ended already\n"), CROWD + 2)
        self.assertIn("Free again: ports ", stopped.stdout)
        wait_until(lambda: len(self.pids_of_ps()) < 10, "the end of them all")
        self.assertEqual(self.rows_inside_or_none(), [])

    def rows_inside_or_none(self):
        return [] if self.brindle_inside("ports", code=1).stdout == "Nothing listens.\n" else self.rows_inside()


if __name__ == "__main__":
    main("__main__")
