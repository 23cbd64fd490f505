"""What the reports say about real agents, servers and what they leave behind."""

import json
import os
import re
import shutil
import signal
import subprocess
import unittest

from namespaces import can_unshare
from process_case import BRINDLE, ProcessCase, free_port, is_listening, wait_until


class Sessions(ProcessCase):
    def test_an_agent_and_its_servers_are_one_session(self):
        port, orphan_port = free_port(), free_port()
        agent = self.agent(
            "export CLAUDECODE=1 CLAUDE_PID=$SELF\n"
            + self.server_line(port, "server")
            + "\n( setsid sh -c '"
            + f"echo $$ > {self.folder}/orphan; exec python3 -m http.server --bind 127.0.0.1 {orphan_port}"
            + "' & )"
        )
        server, orphan = self.pid_from("server"), self.pid_from("orphan")
        wait_until(lambda: is_listening(port) and is_listening(orphan_port), "both servers")
        session = self.session(agent.pid)
        self.assertIsNotNone(session)
        self.assertEqual(session["agent"], "Claude Code")
        self.assertEqual(session["project"], "shop")
        self.assertEqual(session["ports"], sorted([port, orphan_port]))
        self.assertEqual({row["pid"] for row in session["started"]}, {server, orphan})
        self.assertIsNone(self.left_behind(orphan))

    def test_agents_are_known_by_their_programs_names(self):
        for name, shown in (("codex", "Codex"), ("opencode.exe", "opencode"), ("goose", "goose"), ("amp", "Amp")):
            agent = self.agent("sleep 60 & ", name=name)
            wait_until(lambda: self.session(agent.pid), name)
            self.assertEqual(self.session(agent.pid)["agent"], shown)

    @unittest.skipUnless(shutil.which("node"), "skipped: there is no node")
    def test_a_node_server_below_an_agent_is_a_dev_server(self):
        port = free_port()
        script = self.project / "server.js"
        script.write_text(f"require('http').createServer((q, r) => r.end()).listen({port}, '127.0.0.1')")
        agent = self.agent(f"node {script} & echo $! > {self.folder}/server")
        server = self.pid_from("server")
        wait_until(lambda: is_listening(port), "the server")
        row = [each for each in self.session(agent.pid)["started"] if each["pid"] == server][0]
        self.assertEqual((row["kind"], row["ports"]), ("devServer", [port]))
        self.assertEqual(self.listener(port)["project"], "shop")


class Watching(ProcessCase):
    def test_watching_repeats_the_document_and_ends_quietly_when_its_reader_goes(self):
        with subprocess.Popen([BRINDLE, "status", "--json", "--watch", "0.2"], env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as watcher:
            ends = 0
            while ends < 2:
                ends += watcher.stdout.readline() == "}\n"
            watcher.stdout.close()
            self.assertEqual(watcher.wait(timeout=20), 0)
            self.assertEqual(watcher.stderr.read(), "")


class LeftBehind(ProcessCase):
    def killed_agent_with_server(self, variables, name="claude"):
        port = free_port()
        agent = self.agent(variables + self.server_line(port, "server"), name=name)
        server = self.pid_from("server")
        wait_until(lambda: is_listening(port), "the server")
        return agent, server, port

    def kill(self, agent):
        agent.send_signal(signal.SIGKILL)
        agent.wait()

    def test_a_killed_agent_leaves_its_server_behind_by_its_owners_pid(self):
        agent, server, port = self.killed_agent_with_server("export CLAUDECODE=1 CLAUDE_PID=$SELF\n")
        self.assertIsNone(self.left_behind(server))
        self.kill(agent)
        row = self.left_behind(server)
        self.assertEqual(row["origin"], "Claude Code (exited), by its owner's pid")
        self.assertEqual(row["ports"], [port])

    def test_a_double_forked_server_is_left_behind_too(self):
        port = free_port()
        agent = self.agent(
            "export CLAUDECODE=1 CLAUDE_PID=$SELF\n( "
            + self.server_line(port, "server").replace("python3", "setsid python3")
            + " )\nsleep 1000 &"
        )
        server = self.pid_from("server")
        wait_until(lambda: is_listening(port), "the server")
        self.assertIsNone(self.left_behind(server))
        self.kill(agent)
        self.assertEqual(self.left_behind(server)["origin"], "Claude Code (exited), by its owner's pid")

    def test_an_agent_that_only_marks_its_children_is_known_by_their_environment(self):
        agent, server, _ = self.killed_agent_with_server("export GEMINI_CLI=1\n", name="gemini")
        self.kill(agent)
        self.assertEqual(self.left_behind(server)["origin"], "Gemini CLI (exited), by its environment")

    def test_a_server_without_marks_is_known_by_the_record_of_whoever_watched(self):
        agent, server, _ = self.killed_agent_with_server("", name="aider")
        with subprocess.Popen([BRINDLE, "agents", "--watch", "0.2"], env=self.environment,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as watcher:
            records = self.state / "ownership.jsonl"
            wait_until(lambda: records.exists() and f'"pid":{server},' in records.read_text(), "the record")
            watcher.send_signal(signal.SIGINT)
        self.kill(agent)
        self.assertEqual(self.left_behind(server)["origin"], "aider (exited), by Brindle's record")

    def test_a_server_without_marks_is_known_by_the_record_of_a_single_report(self):
        agent, server, _ = self.killed_agent_with_server("", name="aider")
        self.brindle("status", code=0)
        self.assertIn(f'"pid":{server},', (self.state / "ownership.jsonl").read_text())
        self.kill(agent)
        self.assertEqual(self.left_behind(server)["origin"], "aider (exited), by Brindle's record")

    def test_a_server_without_marks_is_known_by_the_record_of_a_stopping_command(self):
        agent, server, port = self.killed_agent_with_server("", name="aider")
        self.brindle("stop", f":{port}", "--dry-run", code=0)
        self.kill(agent)
        self.assertEqual(self.left_behind(server)["origin"], "aider (exited), by Brindle's record")

    def test_a_server_that_no_agent_started_is_not_left_behind(self):
        agent, server, _ = self.killed_agent_with_server("", name="not-an-agent")
        self.kill(agent)
        self.assertIsNone(self.left_behind(server))

    def test_what_was_left_behind_is_stopped_and_its_port_is_free(self):
        agent, server, port = self.killed_agent_with_server("export CLAUDECODE=1 CLAUDE_PID=$SELF\n")
        self.kill(agent)
        self.assertIsNotNone(self.left_behind(server))
        shown = self.brindle("stop", f":{port}", "--dry-run", code=0)
        self.assertIn(str(server), shown.stdout)
        self.assertTrue(is_listening(port))
        stopped = self.brindle("stop", f":{port}", "--yes", code=0)
        self.assertIn(f"Free again: port {port}.", stopped.stdout)
        self.assertFalse(is_listening(port))
        self.assertIsNone(self.left_behind(server))


class Ghosts(ProcessCase):
    @unittest.skipUnless(can_unshare("--pid", "--fork", "--mount-proc"), "skipped: a machine of its own takes root and namespaces")
    def test_stopping_ghosts_ends_what_was_left_behind_and_nothing_else(self):
        """In a process namespace of its own, since it stops everything that was left behind on the machine."""
        shutil.copy("/bin/bash", self.folder / "codex")
        script = f"""
            {self.folder}/codex -c 'CODEX_THREAD_ID=t sleep 1001 & CODEX_THREAD_ID=t sleep 1002 & wait' &
            agent=$!
            sleep 1003 &
            until [ $(pgrep -c '^sleep$') = 3 ]; do :; done
            echo before; {BRINDLE} ghosts
            kill -9 $agent; wait $agent 2>/dev/null
            echo shown; {BRINDLE} ghosts
            echo stopped; {BRINDLE} ghosts --stop --yes; echo "code $?"
            echo after; {BRINDLE} ghosts
            echo left; pgrep -a '^sleep$'
        """
        result = subprocess.run(
            ["unshare", "--pid", "--fork", "--mount-proc", "--kill-child", "/bin/bash", "-c", script],
            env=self.environment, cwd=self.folder, capture_output=True, text=True, timeout=60)
        parts = re.split(r"^(before|shown|stopped|after|left)\n", result.stdout, flags=re.M)
        text = dict(zip(parts[1::2], parts[2::2]))
        self.assertEqual(text["before"], "Nothing was left behind.\n", result.stdout + result.stderr)
        # The look before the agent's end has recorded them, and a record says more than a variable.
        self.assertEqual(len(re.findall(r"Codex \(exited\), by Brindle's record", text["shown"])), 2)
        self.assertEqual(len(re.findall(r"sleep: stopped", text["stopped"])), 2)
        self.assertIn("code 0", text["stopped"])
        self.assertEqual(text["after"], "Nothing was left behind.\n")
        self.assertRegex(text["left"], r"^\d+ sleep 1003\n$")


class Stopping(ProcessCase):
    def test_quitting_a_session_stops_everything_it_started(self):
        port = free_port()
        agent = self.agent(
            "export CLAUDECODE=1 CLAUDE_PID=$SELF\n( " + self.server_line(port, "server").replace("python3", "setsid python3")
            + " )\nsleep 1000 &"
        )
        server = self.pid_from("server")
        wait_until(lambda: is_listening(port), "the server")
        refused = self.brindle("quit", str(agent.pid), code=1)
        self.assertIn("--yes", refused.stderr)
        self.assertIsNone(agent.poll())
        self.brindle("quit", str(agent.pid), "--yes", code=0)
        self.assertFalse(is_listening(port))
        self.assertIsNotNone(agent.wait(timeout=20))
        self.assertNotIn(server, self.living())

    def living(self):
        return {each["pid"] for each in json.loads(self.brindle("snapshot", code=0).stdout)}

    def test_a_process_that_does_not_listen_is_ended_by_force_only(self):
        agent = self.agent("trap '' TERM\nsleep 1000 & echo $! > " + str(self.folder / "child"), name="codex")
        self.pid_from("child")
        self.assertIn("still runs", self.brindle("quit", str(agent.pid), "--yes", code=1).stdout)
        self.assertIsNone(agent.poll())
        self.brindle("quit", str(agent.pid), "--yes", "--force", code=0)
        self.assertEqual(agent.wait(timeout=20), -signal.SIGKILL)

    def test_the_command_never_stops_whoever_runs_it(self):
        script = f"{BRINDLE} quit $SELF --yes > {self.folder}/out; echo $? > {self.folder}/code"
        agent = self.agent(script + "\nsleep 1000")
        wait_until((self.folder / "code").exists, "the exit code")
        wait_until(lambda: (self.folder / "code").read_text(), "the exit code")
        self.assertEqual((self.folder / "code").read_text().strip(), "1")
        self.assertIn("Runs this command", (self.folder / "out").read_text())
        self.assertIsNone(agent.poll())

    def stop_at_a_terminal(self, port, answer):
        """The exit code of `stop :PORT` and what it asked, with `answer` typed at a terminal of its own."""
        controller, terminal = os.openpty()
        self.addCleanup(os.close, controller)
        process = subprocess.Popen([BRINDLE, "stop", f":{port}"], env=self.environment, stdin=terminal, stderr=terminal,
                                   stdout=subprocess.DEVNULL)
        os.close(terminal)
        asked = b""
        while b"[y/N]" not in asked:
            asked += os.read(controller, 1024)
        os.write(controller, answer)
        return process.wait(timeout=20), asked.decode()

    def test_only_who_agrees_at_the_terminal_stops_a_process(self):
        port = free_port()
        self.agent(self.server_line(port, "server"), name="bash-stand-in")
        self.pid_from("server")
        wait_until(lambda: is_listening(port), "the server")
        for answer in (b"n\n", b"\n", b"yes please\n"):
            code, asked = self.stop_at_a_terminal(port, answer)
            self.assertEqual(code, 1, answer)
            self.assertIn("Stop 1 process?", asked)
            self.assertTrue(is_listening(port), answer)
        code, _ = self.stop_at_a_terminal(port, b"Y\n")
        self.assertEqual(code, 0)
        self.assertFalse(is_listening(port))

    def test_targets_that_are_not_there_are_a_negative_answer(self):
        self.brindle("stop", f":{free_port()}", "--yes", code=1)
        self.brindle("quit", "1", "--yes", code=1)
        for words in (("stop", "x"), ("stop", ":0"), ("stop", ":65536"), ("stop", "0"), ("quit", "-1"), ("quit", "a")):
            self.brindle(*words, code=2)


class Recorded(ProcessCase):
    def test_a_recorded_snapshot_gives_the_documents_of_that_moment(self):
        port = free_port()
        agent = self.agent(self.server_line(port, "server"))
        self.pid_from("server")
        wait_until(lambda: is_listening(port), "the server")
        recorded = self.folder / "snapshot.json"
        recorded.write_text(self.brindle("snapshot", code=0).stdout)
        agent.kill()
        agent.wait()
        words = ("--snapshot", str(recorded), "--now", "2000000000", "--uid", str(os.geteuid()), "--rules", "linux")
        first, second = self.brindle("agents", "--json", *words), self.brindle("agents", "--json", *words)
        self.assertEqual(first.stdout, second.stdout)
        sessions = {row["pid"]: row for row in json.loads(first.stdout)["sessions"]}
        self.assertEqual(sessions[agent.pid]["ports"], [port])
        self.assertGreater(sessions[agent.pid]["uptimeSeconds"], 10_000_000)


if __name__ == "__main__":
    unittest.main(verbosity=2)
