"""Stopping for real, on a machine of its own: what is listed ends, and nothing else does."""

import os
import signal
import subprocess
import sys

from machine_case import NOBODY, MachineCase, main
from process_case import wait_until

STUBBORN = f"{sys.executable} -c 'import signal, time; signal.signal(signal.SIGTERM, signal.SIG_IGN); print(1, flush=True); time.sleep(1000)'"


class Stopping(MachineCase):
    def serve(self, port):
        return f"{sys.executable} -m http.server --bind 127.0.0.1 {port}"

    def stubborn_server(self, port, pid_file):
        """A shell command that runs a server which ignores SIGTERM."""
        code = "import signal; signal.signal(signal.SIGTERM, signal.SIG_IGN); import runpy; runpy.run_module('http.server', run_name='__main__')"
        return f"{sys.executable} -c \"{code}\" --bind 127.0.0.1 {port} & echo $! > {self.folder / pid_file}"

    def alive(self, *pids):
        running = self.pids_of_ps()
        return [pid for pid in pids if pid in running]

    def ask(self, *words):
        """The command at a terminal of its own, once it asks; the terminal's other end and the process."""
        controller, terminal = os.openpty()
        self.addCleanup(os.close, controller)
        process = subprocess.Popen(
            ["nsenter", f"--target={self.first}", "--mount", "--net", "--pid", "setsid", "--ctty", "--wait", self.program, *words],
            env=self.environment, cwd="/", stdin=terminal, stderr=terminal, stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        os.close(terminal)
        asked = b""
        while b"[y/N]" not in asked:
            asked += os.read(controller, 1024)
        return controller, process

    def answer(self, asking, keys):
        controller, process = asking
        os.write(controller, keys)
        output = process.stdout.read()
        return process.wait(timeout=20), output


class Idle(Stopping):
    def idle_machine(self):
        """Servers to stop beside everything that must be left alone."""
        agent = self.script("agent.sh", f"""
            {self.serve(4101)} & echo $! > {self.folder}/of-agent
            sleep 1001 &
            echo $$ > {self.folder}/agent
            wait
        """)
        database = self.script("database.py", "import socket, time\ns = socket.socket(); s.bind(('127.0.0.1', 4103)); s.listen()\ntime.sleep(1000)")
        client = self.script("client.py", "import socket, time\ns = socket.create_connection(('127.0.0.1', 4104))\ntime.sleep(1000)")
        self.machine(f"""
            {self.stand_in("claude")} {agent} &
            {self.serve(4102)} & echo $! > {self.folder}/server
            bash -c 'exec -a postgres {sys.executable} {database}' & echo $! > {self.folder}/database
            {self.serve(4104)} & echo $! > {self.folder}/connected
            setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups {self.serve(4105)} & echo $! > {self.folder}/others
            sleep 1000 & echo $! > {self.folder}/sleeper
            until ss -Hltn | grep -q :4104; do :; done
            {sys.executable} {client} & echo $! > {self.folder}/client
        """)
        self.wait_listening(5)
        wait_until(lambda: ":4104" in self.inside("ss", "-Htn", "state", "established").stdout, "the client")
        return {name: self.pid_from(name) for name in
                ("agent", "of-agent", "server", "database", "connected", "others", "sleeper", "client")}

    def test_what_is_listed_is_stopped_and_nothing_else(self):
        pids = self.idle_machine()
        plan = self.document_inside("idle", "--older-than", "0s")
        self.assertEqual({row["pid"] for row in plan["stop"]}, {pids["of-agent"], pids["server"]})
        self.assertEqual({row["pid"]: row["protected"] for row in plan["skipped"]},
                         {pids["database"]: "Protected by default: Databases", pids["connected"]: "Clients are connected"})
        self.brindle_inside("idle", "--older-than", "1h", "--stop", "--yes", code=1)
        self.brindle_inside("idle", "--older-than", "0s", "--stop", "--dry-run")
        unasked = self.brindle_inside("idle", "--older-than", "0s", "--stop", code=1)
        self.assertRegex(unasked.stderr, r"^brindle: nothing was stopped: .*--yes.*\n$")
        self.assertEqual(len(self.alive(*pids.values())), len(pids))
        stopped = self.brindle_inside("idle", "--older-than", "0s", "--stop", "--yes")
        self.assertIn("Free again: ports 4101, 4102.", stopped.stdout)
        self.assertEqual(stopped.stdout.count(": stopped\n"), 2)
        left = [pid for name, pid in pids.items() if name not in ("of-agent", "server")]
        self.assertEqual(self.alive(*pids.values()), left)
        again = self.brindle_inside("idle", "--older-than", "0s", "--stop", "--yes", code=1)
        self.assertIn("Nothing idle to stop.", again.stdout)

    def test_only_force_ends_what_ignores_the_request(self):
        self.machine(f"""
            {self.stubborn_server(4100, "stubborn")}
            {self.serve(4200)} & echo $! > {self.folder}/willing
        """)
        stubborn, willing = self.pid_from("stubborn"), self.pid_from("willing")
        self.wait_listening(2)
        stopped = self.brindle_inside("idle", "--older-than", "0s", "--stop", "--yes", code=1)
        self.assertRegex(stopped.stdout, rf"(?m)^{stubborn} .*: still runs$")
        self.assertRegex(stopped.stdout, rf"(?m)^{willing} .*: stopped$")
        self.assertIn("Free again: port 4200.\n", stopped.stdout)
        self.assertRegex(stopped.stderr, r"^brindle: some processes still run.*--force.*\n$")
        self.assertEqual(self.alive(stubborn, willing), [stubborn])
        forced = self.brindle_inside("idle", "--older-than", "0s", "--stop", "--yes", "--force")
        self.assertIn("Free again: port 4100.\n", forced.stdout)
        self.assertEqual(self.alive(stubborn), [])


class Trees(Stopping):
    def test_a_port_stands_for_the_tree_of_its_listener(self):
        parent = self.script("parent.sh", f"""
            {STUBBORN} > {self.folder}/deaf & echo $! > {self.folder}/child
            exec {self.serve(4100)}
        """)
        self.machine(f"""
            /bin/sh {parent} & echo $! > {self.folder}/parent
            {self.serve(4200)} & echo $! > {self.folder}/other
        """)
        self.wait_listening(2)
        wait_until(lambda: (self.folder / "deaf").read_text(), "the deaf child")
        parent, child, other = (self.pid_from(name) for name in ("parent", "child", "other"))
        stopped = self.brindle_inside("stop", ":4100", "--yes", code=1)
        self.assertRegex(stopped.stdout, rf"(?m)^{parent} .*: stopped$")
        self.assertRegex(stopped.stdout, rf"(?m)^{child} .*: still runs$")
        self.assertIn("Free again: port 4100.\n", stopped.stdout)
        self.assertEqual(self.alive(parent, child, other), [child, other])
        self.brindle_inside("stop", str(child), "--yes", "--force")
        self.assertEqual(self.alive(child, other), [other])

    def test_a_session_is_quit_with_all_of_its_members(self):
        agent = self.script("agent.sh", f"""
            export CLAUDECODE=1 CLAUDE_PID=$$
            {self.stubborn_server(4100, "stubborn")}
            ( setsid {self.serve(4200)} & echo $! > {self.folder}/detached )
            echo $$ > {self.folder}/agent
            wait
        """)
        self.machine(f"{self.stand_in('claude')} {agent} &")
        self.wait_listening(2)
        agent, stubborn, detached = (self.pid_from(name) for name in ("agent", "stubborn", "detached"))
        stopped = self.brindle_inside("quit", str(agent), "--yes", code=1)
        self.assertEqual(self.alive(agent, stubborn, detached), [stubborn], stopped.stdout)
        self.assertIn("Free again: port 4200.\n", stopped.stdout)
        # The session is over, so what is left of it is a process of its own.
        gone = self.brindle_inside("quit", str(agent), "--yes", "--force", code=1)
        self.assertIn(f"no agent session has the pid {agent}", gone.stderr)
        self.assertEqual([each["pid"] for each in self.document_inside("ghosts")["leftBehind"]], [stubborn])
        self.brindle_inside("ghosts", "--stop", "--yes", "--force")
        self.assertEqual(self.alive(stubborn), [])

    def test_what_a_session_has_started_as_another_user_is_left_alone(self):
        others = self.script("others.sh", "sleep 1001 & echo $! > $1; wait")
        agent = self.script("agent.sh", f"""
            sleep 1000 & echo $! > {self.folder}/own
            setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups /bin/sh {others} {self.folder}/nobody/below & echo $! > {self.folder}/others
            echo $$ > {self.folder}/agent
            wait
        """)
        self.machine(f"{self.stand_in('goose')} {agent} &")
        own, others, below, agent = (self.pid_from(name) for name in ("own", "others", "nobody/below", "agent"))
        stopped = self.brindle_inside("quit", str(agent), "--yes")
        for pid in (others, below):
            self.assertRegex(stopped.stdout, rf"(?m)^ *{pid} .*  Owned by another user  ")
        self.assertEqual(self.alive(agent, own, others, below), [others, below])

    def test_the_persons_own_rules_hold(self):
        self.machine(f"{self.serve(4100)} & echo $! > {self.folder}/server")
        self.wait_listening(1)
        server = self.pid_from("server")
        self.state.mkdir(exist_ok=True)
        (self.state / "settings.json").write_text('{"protect": {"ports": [4100]}}')
        for words in (("stop", ":4100"), ("stop", str(server)), ("idle", "--older-than", "0s", "--stop")):
            refused = self.brindle_inside(*words, "--yes", "--force", code=1)
            self.assertIn("Protected by your rule", refused.stdout)
            self.assertEqual(self.alive(server), [server])
        (self.state / "settings.json").write_text('{"protect": {"ports": [4101]}}')
        self.brindle_inside("stop", ":4100", "--yes")
        self.assertEqual(self.alive(server), [])

    def test_nobody_stops_the_processes_of_others(self):
        self.machine(f"{self.serve(4100)} & echo $! > {self.folder}/server")
        self.wait_listening(1)
        server = self.pid_from("server")
        by_pid = self.brindle_inside("stop", str(server), "--yes", "--force", user=NOBODY, code=1)
        self.assertIn("Owned by another user", by_pid.stdout)
        self.assertIn("Nothing to stop.", by_pid.stdout)
        self.brindle_inside("stop", ":4100", "--yes", "--force", user=NOBODY, code=1)
        self.assertEqual(self.alive(server), [server])


class BetweenPlanAndAnswer(Stopping):
    def two_sleepers(self):
        parent = self.script("parent.sh", f"""
            sleep 1000 & echo $! > {self.folder}/child
            sleep 1001 &
            wait
        """)
        self.machine(f"/bin/bash {parent} & echo $! > {self.folder}/parent")
        return self.pid_from("parent"), self.pid_from("child")

    def end(self, pid):
        self.inside("kill", "-KILL", pid)
        wait_until(lambda: not self.alive(pid), f"the end of {pid}")

    def test_what_has_ended_meanwhile_is_told_as_such(self):
        parent, child = self.two_sleepers()
        asking = self.ask("stop", str(parent))
        self.end(child)
        code, output = self.answer(asking, b"y\n")
        self.assertEqual(code, 0, output)
        self.assertRegex(output, rf"(?m)^{parent} .*: stopped$")
        self.assertRegex(output, rf"(?m)^{child} .*: had ended already$")

    def test_nothing_left_to_stop_is_a_negative_answer(self):
        parent, child = self.two_sleepers()
        asking = self.ask("stop", str(child))
        self.end(child)
        code, output = self.answer(asking, b"y\n")
        self.assertEqual(code, 1, output)
        self.assertEqual(self.alive(parent), [parent])

    def test_whoever_got_the_pid_meanwhile_is_not_touched(self):
        _, child = self.two_sleepers()
        asking = self.ask("stop", str(child), "--force")
        self.end(child)
        script = self.script("again.sh", f"echo {child - 1} > /proc/sys/kernel/ns_last_pid; sleep 1002 > /dev/null 2>&1 & echo $!")
        self.assertEqual(self.inside("/bin/sh", script).stdout, f"{child}\n")
        # The kernel dates starts in hundredths of a second.
        code, output = self.answer(asking, b"y\n")
        self.assertEqual(code, 1, output)
        self.assertIn("had ended already", output)
        self.assertEqual(self.alive(child), [child])

    def test_the_end_of_the_keyboard_and_ctrl_c_stop_nothing(self):
        parent, child = self.two_sleepers()
        for keys, expected in ((b"\x04", 1), (b"\x03", -signal.SIGINT)):
            code, _ = self.answer(self.ask("stop", str(parent)), keys)
            self.assertEqual(code, expected)
            self.assertEqual(self.alive(parent, child), [parent, child])


if __name__ == "__main__":
    main("__main__")
