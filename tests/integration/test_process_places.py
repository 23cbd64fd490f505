"""Reports where a part of the machine cannot be seen, or is another machine in the same one."""

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

    def parent_name(self, pid):
        snapshot = self.snapshot_inside()
        return snapshot[snapshot[pid]["ppid"]]["name"]


if __name__ == "__main__":
    main("__main__")
