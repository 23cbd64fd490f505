"""Reports of processes that hide, are of another machine in the same one, or carry whatever bytes they like."""

import os
import sys

from machine_case import NOBODY, MachineCase, main
from process_case import wait_until

PORT, OTHER_PORT = 4100, 4200


class HiddenProcesses(MachineCase):
    """Another user's process table, mounted with `hidepid`."""

    def hiding_machine(self, hidepid):
        agent = self.script("agent.sh", f"""
            export CLAUDECODE=1 CLAUDE_PID=$$
            {self.server_line(PORT, "server")}
            echo $$ > {self.folder}/nobody/agent
            wait
        """)
        (self.folder / "server").touch()
        os.chown(self.folder / "server", NOBODY, NOBODY)
        self.machine(f"""
            mount -t proc -o hidepid={hidepid} proc /proc || touch {self.folder}/refused
            {self.server_line(OTHER_PORT, "other")}
            setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups {self.stand_in("claude")} {agent} &
        """)
        if (self.folder / "refused").exists():
            self.skipTest(f"skipped: this kernel has no hidepid={hidepid}")
        self.wait_listening(2)
        self.agent, self.server = self.pid_from("nobody/agent"), self.pid_from("server")
        self.other = self.pid_from("other")

    def check_reports(self):
        before = self.pids_of_ps(user=NOBODY)
        snapshot = self.snapshot_inside(user=NOBODY)
        after = self.pids_of_ps(user=NOBODY)
        self.assertEqual(before & after, set(snapshot) & after)
        self.assertEqual({each["uid"] for each in snapshot.values()}, {NOBODY})
        self.assertEqual(snapshot[self.server]["ppid"], self.agent)
        self.assertEqual(snapshot[self.server]["ports"], [PORT])
        self.assertNotIn(self.other, snapshot)
        self.assertEqual(self.rows_inside(user=NOBODY), [(PORT, self.server)])
        shown = self.brindle_inside("ports", user=NOBODY)
        self.assertRegex(shown.stderr, r"^brindle: 1 listening port .*\n$")
        agents = self.document_inside("agents", user=NOBODY)
        self.assertEqual([(each["pid"], each["ports"]) for each in agents["sessions"]], [(self.agent, [PORT])])
        self.assertEqual(agents["leftBehind"], [])
        refused = self.brindle_inside("stop", f":{OTHER_PORT}", "--yes", user=NOBODY, code=1)
        self.assertIn(f"nothing that can be seen listens on port {OTHER_PORT}", refused.stderr)
        # The superuser is hidden nothing.
        self.assertEqual(self.rows_inside(), [(PORT, self.server), (OTHER_PORT, self.other)])

    def check_ghost(self):
        """The parent of what is left behind cannot be seen."""
        self.assertEqual(self.inside("kill", "-KILL", self.agent).returncode, 0)
        wait_until(lambda: self.agent not in self.pids_of_ps(), "the agent's end")
        ghosts = self.document_inside("ghosts", user=NOBODY)
        self.assertEqual([each["pid"] for each in ghosts["leftBehind"]], [self.server])
        stopped = self.brindle_inside("ghosts", "--stop", "--yes", user=NOBODY)
        self.assertIn(f"Free again: port {PORT}.", stopped.stdout)
        self.assertEqual(self.rows_inside(), [(OTHER_PORT, self.other)])

    def check(self, hidepid):
        self.hiding_machine(hidepid)
        self.check_reports()
        self.check_ghost()

    def test_processes_whose_folders_may_not_be_entered(self):
        self.check(1)

    def test_processes_that_are_not_listed(self):
        self.check(2)

    def test_processes_that_may_not_be_traced(self):
        self.check(4)


class OtherNetworks(MachineCase):
    def test_a_listener_of_another_network_is_no_row_of_this_one(self):
        agent = self.script("agent.sh", f"""
            {self.server_line(PORT, "here")}
            unshare --net /bin/sh -c 'ip link set lo up; echo $$ > {self.folder}/there; exec {sys.executable} -m http.server --bind 127.0.0.1 {PORT}' &
            echo $$ > {self.folder}/agent
            wait
        """)
        self.machine(f"{self.stand_in('claude')} {agent} 2>/dev/null &")
        here, there, agent = self.pid_from("here"), self.pid_from("there"), self.pid_from("agent")
        self.wait_listening(1)
        self.wait_listening(1, network=there)
        self.assertEqual(self.rows_inside(), [(PORT, here)])
        self.assertEqual(self.rows_inside(network=there), [(PORT, there)])
        session, = self.document_inside("agents")["sessions"]
        self.assertEqual((session["pid"], session["ports"]), (agent, [PORT]))
        self.assertEqual({row["pid"]: row["ports"] for row in session["started"]}, {here: [PORT], there: []})
        self.assertEqual(self.brindle_inside("ports").stderr, "")
        self.brindle_inside("stop", f":{PORT}", "--yes")
        self.assertNotIn(here, self.pids_of_ps())
        self.assertEqual(self.rows_inside(network=there), [(PORT, there)])
        self.brindle_inside("stop", f":{PORT}", "--yes", code=1)


class Containers(MachineCase):
    def test_a_living_agent_in_a_container_leaves_nothing_behind(self):
        """Its pid in the variables of what it starts is the container's, and nothing has it out here."""
        agent = self.script("agent.sh", f"""
            export CLAUDECODE=1 CLAUDE_PID=$$
            ( setsid sleep 1001 & )
            sleep 1002 &
            echo $$ > {self.folder}/inner
            wait
        """)
        container = self.script("container.sh", f"""
            echo 5000 > /proc/sys/kernel/ns_last_pid
            {self.stand_in("claude")} {agent} &
            until [ $(pgrep -c '^sleep$') = 2 ]; do :; done
            touch {self.folder}/started
            exec {self.stand_in("tini")} -c 'while :; do sleep 1000; done'
        """)
        self.machine(f"unshare --pid --fork --mount-proc /bin/bash {container} &")
        wait_until(lambda: (self.folder / "started").exists(), "the container")
        inner = self.pid_from("inner")
        self.assertGreater(inner, 5000)
        self.assertNotIn(inner, self.pids_of_ps())
        session, = self.document_inside("agents")["sessions"]
        self.assertEqual(session["agent"], "Claude Code")
        found = {each["commandLine"]: each["pid"] for each in self.snapshot_inside().values()}
        wait_until(lambda: self.parent_name(found["sleep 1001"]) == "tini", "the container's adoption")
        self.assertEqual(self.brindle_inside("ghosts", code=1).stdout, "Nothing was left behind.\n")
        self.inside("kill", "-KILL", session["pid"])
        wait_until(lambda: session["pid"] not in self.snapshot_inside(), "the agent's end")
        left = self.document_inside("agents")["leftBehind"]
        self.assertEqual({each["pid"] for each in left}, {found["sleep 1001"], found["sleep 1002"]})

    def test_in_a_sandbox_of_a_living_agent_nothing_is_left_behind(self):
        """The agent itself is outside, where the reports in the sandbox do not see it."""
        sandbox = self.script("sandbox.sh", f"""
            sleep 1001 &
            {self.program} ghosts > {self.folder}/ghosts 2>&1
            {self.program} ghosts --stop --yes > {self.folder}/stopped 2>&1
            touch {self.folder}/started
            wait
        """)
        agent = self.script("agent.sh", f"""
            export CLAUDECODE=1 CLAUDE_PID=$$ CLAUDE_CODE_SESSION_ID=some
            echo 5000 > /proc/sys/kernel/ns_last_pid
            unshare --pid --fork --mount-proc /bin/sh {sandbox} &
            wait
        """)
        self.machine(f"{self.stand_in('claude')} {agent} &")
        wait_until(lambda: (self.folder / "started").exists(), "the sandbox")
        self.assertEqual((self.folder / "ghosts").read_text(), "Nothing was left behind.\n")
        self.assertEqual((self.folder / "stopped").read_text(), "Nothing to stop.\n")
        self.assertIn("sleep 1001", [each["commandLine"] for each in self.snapshot_inside().values()])

    def parent_name(self, pid):
        snapshot = self.snapshot_inside()
        return snapshot[snapshot[pid]["ppid"]]["name"]


ODD = """
import ctypes, os, socket, sys, time
libc = ctypes.CDLL(None)
PR_SET_NAME = 15
libc.prctl(PR_SET_NAME, os.fsencode(sys.argv[2]))
words = list(sys.argv)
if words[3:] == ["no arguments"]:
    with open("/proc/self/stat") as file:
        begin, end = map(int, file.read().rpartition(")")[2].split()[45:47])
    ctypes.memset(begin, 0, end - begin)
if words[3:] == ["no folder"]:
    os.mkdir("gone")
    os.chdir("gone")
    os.rmdir(os.getcwd())
listener = socket.socket()
listener.bind(("127.0.0.1", int(words[1])))
listener.listen()
time.sleep(1000)
"""
# By port: the name, and one more argument.
ODD_PROCESSES = {
    4100: (b"a b) R 1 (", b"x"),
    4101: (b"x\ny", b"one\ntwo\r"),
    4102: (b"\x1b[31mred", b"\x1b]0;title\x07\x1b[2J"),
    4103: (b"\xff\xfe(", b"\xc3("),
    4104: (b"\xe2\x80\xaetxt", b"\xe2\x80\x8b\xf3\xa0\x81\x81"),
    4105: (b"\xc2\x9b31m", b"\xc2\x9b2J"),
    4106: (b"gone", b"no folder"),
    4107: (b"bare", b"no arguments"),
    4108: (b"long", b"y" * 100_000),
}


class OddProcesses(MachineCase):
    def setUp(self):
        super().setUp()
        odd = self.script("odd.py", ODD)
        lines = [f"{sys.executable} {odd} {port} '".encode() + name + b"' '" + argument + b"' &"
                 for port, (name, argument) in ODD_PROCESSES.items()]
        agent = self.folder / "agent.sh"
        agent.write_bytes(b"\n".join([f"cd {self.project}; echo $$ > {self.folder}/agent".encode(), *lines, b"wait"]))
        self.machine(f"{self.stand_in('codex')} {agent} &")
        self.agent = self.pid_from("agent")
        self.wait_listening(len(ODD_PROCESSES))

    def assert_harmless(self, text):
        odd = {character for character in text if not (character.isprintable() or character == "\n")}
        self.assertEqual(odd, set(), text)

    def test_documents_tell_them_as_they_are(self):
        rows = {row["port"]: row for row in self.document_inside("ports")["listeners"]}
        self.assertEqual({port: row["name"] for port, row in rows.items()},
                         {port: name.decode(errors="replace") for port, (name, _) in ODD_PROCESSES.items()})
        self.assertEqual({row["project"] for row in rows.values()}, {"shop"})
        snapshot = self.snapshot_inside()
        for port, (_, argument) in ODD_PROCESSES.items():
            process = snapshot[rows[port]["pid"]]
            self.assertEqual((process["ports"], process["ppid"]), ([port], self.agent))
            if port not in (4107, 4108):
                self.assertTrue(process["commandLine"].endswith(" " + argument.decode(errors="replace")), process)
        self.assertEqual(snapshot[rows[4107]["pid"]]["commandLine"], "")
        self.assertEqual(snapshot[rows[4106]["pid"]]["cwd"], f"{self.project}/gone")
        self.assertLess(len(snapshot[rows[4108]["pid"]]["commandLine"]), 10_000)
        session, = self.document_inside("agents")["sessions"]
        self.assertEqual(session["ports"], sorted(ODD_PROCESSES))

    def test_tables_cannot_steer_the_terminal(self):
        for words in (("ports",), ("agents",), ("status",), ("idle", "--older-than", "0s"), ("quit", str(self.agent), "--dry-run")):
            shown = self.brindle_inside(*words)
            self.assert_harmless(shown.stdout + shown.stderr)
            if words[0] != "status":
                self.assertIn("a b) R 1 (", shown.stdout)
        lines = self.brindle_inside("ports").stdout.splitlines()
        self.assertEqual(len(lines), 1 + len(ODD_PROCESSES))
        self.inside("kill", "-KILL", self.agent)
        wait_until(lambda: self.agent not in self.pids_of_ps(), "the agent's end")
        ghosts = self.brindle_inside("ghosts")
        self.assertEqual(len(ghosts.stdout.splitlines()), 1 + len(ODD_PROCESSES))
        self.assert_harmless(ghosts.stdout)
        stopped = self.brindle_inside("ghosts", "--stop", "--yes")
        self.assert_harmless(stopped.stdout)
        self.assertEqual(stopped.stdout.count(": stopped\n"), len(ODD_PROCESSES))


if __name__ == "__main__":
    main("__main__")
