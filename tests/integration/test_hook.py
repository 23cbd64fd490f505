"""`brindle hook` and `brindle notify` as agents run them."""
import fcntl
import os
import re
import shutil
import signal
import subprocess
import time
import unittest

from hook_case import NOBODY, STOP, HookCase, as_nobody
from namespaces import can_unshare
from watched_process import WAIT_SECONDS

CODEX = ('{"type":"agent-turn-complete","thread-id":"b5f6c1c2-1111-2222-3333-444455556666","turn-id":"12345",'
         '"cwd":"/Users/example/project","client":"codex-tui","input-messages":["Rename `foo` to `bar`."],'
         '"last-assistant-message":null}')


class Events(HookCase):
    def test_a_stop_is_queued(self):
        self.assert_silent(self.hook())
        (event,) = self.lines()
        self.assertEqual((event["agent"], event["kind"], event["sessionID"], event["cwd"]),
                         ("Claude Code", "finished", "835f", "/home/u/shop"))
        self.assertLess(abs(time.mktime(time.strptime(event["time"], "%Y-%m-%dT%H:%M:%SZ")) - time.timezone -
                            time.time()), WAIT_SECONDS)
        self.assertEqual((self.state / "agent-events.jsonl").stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.state.stat().st_mode & 0o777, 0o700)

    def test_a_document_of_codex_is_queued_without_any_stream(self):
        self.assert_silent(self.brindle("notify", CODEX, stdin=subprocess.DEVNULL))
        (event,) = self.lines()
        self.assertEqual((event["agent"], event["kind"], event["sessionID"]),
                         ("Codex", "finished", "b5f6c1c2-1111-2222-3333-444455556666"))

    def test_hooks_of_many_agents_at_once_lose_nothing(self):
        running = [subprocess.Popen([self.program, "hook"], env=self.env, stdin=subprocess.PIPE) for _ in range(20)]
        for number, process in enumerate(running):
            process.stdin.write(STOP.replace("835f", str(number)).encode())
            process.stdin.close()
        self.assertEqual([process.wait(WAIT_SECONDS) for process in running], [0] * 20)
        self.assertEqual({event["sessionID"] for event in self.lines()}, {str(number) for number in range(20)})

    def test_a_payload_in_pieces_is_one_payload(self):
        with subprocess.Popen([self.program, "hook"], env=self.env, stdin=subprocess.PIPE) as process:
            for at in range(0, len(STOP), 20):
                process.stdin.write(STOP[at:at + 20].encode())
                process.stdin.flush()
            process.stdin.close()
            self.assertEqual(process.wait(WAIT_SECONDS), 0)
        self.assertEqual(len(self.lines()), 1)


class Owners(HookCase):
    """A script that is called like an agent starts the hook, as an agent would."""

    def run_agent(self, name, text, **env):
        process = subprocess.Popen([str(self.script(name, text))], env={**self.env, "BRINDLE": self.program, **env},
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, start_new_session=True)
        self.addCleanup(process.communicate)
        self.addCleanup(os.killpg, process.pid, signal.SIGKILL)
        return process, process.stdout.readline().decode().strip()

    def test_event_and_records_name_the_agent_that_started_the_hook(self):
        # From a file: a shell that writes the payload would be one more child for a moment.
        payload = self.state.parent / "payload.json"
        payload.write_text(STOP)
        agent, child = self.run_agent(
            "claude", f"""/bin/sleep 600 &
            child=$!
            sh -c '"$BRINDLE" hook < "$1"; :' - '{payload}'
            echo $child
            read line
            kill $child""")
        self.assertEqual([event["pid"] for event in self.lines()], [agent.pid])
        owned = {record["pid"]: (record["agentPid"], record["agent"]) for record in self.lines("ownership.jsonl")}
        self.assertEqual(owned, {int(child): (agent.pid, "Claude Code")})

    def test_the_pid_that_claude_names_is_taken_when_it_is_an_ancestor(self):
        agent, _ = self.run_agent("odd-name", f"""echo '{STOP}' | CLAUDE_PID=$$ "$BRINDLE" hook; echo done; read line""")
        self.assertEqual([event["pid"] for event in self.lines()], [agent.pid])

    def test_a_pid_of_nobody_is_not_taken(self):
        agent, _ = self.run_agent("claude", f"""echo '{STOP}' | "$BRINDLE" hook; echo done; read line""",
                                  CLAUDE_PID="2147483000")
        self.assertEqual([event["pid"] for event in self.lines()], [agent.pid])

    def test_codex_below_claude_is_its_own_agent(self):
        inner = self.script("codex", f"""echo $$; "$BRINDLE" notify '{CODEX}'""")
        agent, pid = self.run_agent("claude", f"CLAUDE_PID=$$ {inner}; read line")
        end = time.monotonic() + WAIT_SECONDS
        while not self.lines() and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual([event["pid"] for event in self.lines()], [int(pid)])


class Silence(HookCase):
    """Nothing that goes wrong is told to the agent, and nothing blocks it."""

    def test_payloads_that_are_none(self):
        for payload in (b"", b"not JSON", b"\0\xff\xfe\x80" * 100, b"[" * 100000, b"null", STOP[:-1].encode(),
                        b'{"hook_event_name":"Stop","x":"' + b"x" * (2 << 20) + b'"}'):
            self.assert_silent(self.hook(input=payload))
        self.assertEqual(self.lines(), [])

    def test_a_payload_of_one_mebibyte_is_taken_and_one_byte_more_refused(self):
        start = STOP[:-1].encode() + b',"x":"'
        taken = 0
        for size in ((1 << 20) - 1, 1 << 20, (1 << 20) + 1):
            payload = start + b"x" * (size - len(start) - 2) + b'"}'
            self.assertEqual(len(payload), size)
            self.assert_silent(self.hook(input=payload))
            taken += size <= 1 << 20
            self.assertEqual(len(self.lines()), taken, size)
        result = self.hook("--verbose", input=payload)
        self.assertEqual((result.returncode, result.stdout), (0, b""))
        self.assertIn(b"brindle: the payload has more than 1048576 bytes\n", result.stderr)

    def test_arguments_of_notify_that_are_none(self):
        for words in ([], [""], ["not JSON"], ["[]"], ["--help"], ["--unknown", "{"], ["-h"], [CODEX, "--other"]):
            self.assert_silent(self.brindle("notify", *words))
        self.assertEqual(self.lines(), [])

    def test_options_of_any_kind(self):
        for words in (["--help"], ["--unknown"], ["-h", "--json"], ["words", "--"], ["--no-color"], ["\xff"]):
            self.assert_silent(self.hook(*words))
        self.assertEqual(len(self.lines()), 6)

    def test_streams_that_are_closed(self):
        self.assert_silent(self.hook(stdin=None, preexec_fn=lambda: os.close(0)))
        shell = f"""echo '{STOP}' | "$0" hook >&- 2>&-"""
        self.assertEqual(subprocess.run(["sh", "-c", shell, self.program], env=self.env).returncode, 0)
        self.assertEqual(len(self.lines()), 1)

    def test_an_input_that_is_a_folder(self):
        folder = os.open(self.home, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        self.assert_silent(self.hook(stdin=folder))

    def test_problems_are_told_on_request(self):
        result = self.hook("--verbose", input=b"not JSON")
        self.assertEqual((result.returncode, result.stdout), (0, b""))
        self.assertIn(b"brindle: the payload is no event that is recorded\n", result.stderr)
        result = self.brindle("notify", "--verbose")
        self.assertEqual((result.returncode, result.stderr),
                         (0, b"brindle: expected a JSON document as the last argument\n"))

    def test_a_lock_that_is_a_folder_or_a_link(self):
        self.state.mkdir(mode=0o700)
        (self.state / "agent-events.lock").mkdir()
        self.assert_silent(self.hook())
        (self.state / "agent-events.lock").rmdir()
        (self.state / "agent-events.lock").symlink_to(self.home / "elsewhere")
        self.assert_silent(self.hook())
        self.assertFalse((self.home / "elsewhere").exists())
        self.assertEqual(self.lines(), [])

    def test_an_events_file_that_is_a_pipe(self):
        self.state.mkdir(mode=0o700)
        os.mkfifo(self.state / "agent-events.jsonl")
        self.assert_silent(self.hook())

    def test_no_home(self):
        self.assert_silent(self.hook(env={"BRINDLE_DATA_DIR": "", "HOME": "/nonexistent/home"}, preexec_fn=as_nobody))

    @unittest.skipUnless(os.geteuid() == 0, "needs a second user")
    def test_a_folder_of_somebody_else(self):
        self.state.mkdir()
        os.chown(self.state, NOBODY, NOBODY)
        self.assert_silent(self.hook())
        self.assertEqual(list(self.state.iterdir()), [])

    def test_a_folder_that_takes_no_files(self):
        self.home.chmod(0o755)
        self.state.mkdir()
        if os.geteuid() == 0:
            os.chown(self.state, NOBODY, NOBODY)
        self.state.chmod(0o500)
        self.assert_silent(self.hook(preexec_fn=as_nobody))
        self.assertEqual(list(self.state.iterdir()), [])

    @unittest.skipUnless(can_unshare("--mount"), "needs the right to mount")
    def test_a_full_disk_loses_the_event_and_leaves_whole_lines(self):
        self.state.mkdir(mode=0o700)
        script = """mount --make-rprivate / && mount -t tmpfs -o size=8k,mode=0700 none "$1" || exit 77
        i=0; while [ $i -lt 200 ]; do echo "$3" | "$2" hook || exit 1; i=$((i + 1)); done
        cat "$1/agent-events.jsonl" >&3"""
        read, write = os.pipe()
        result = subprocess.run(["unshare", "-m", "sh", "-c", script.replace(">&3", f">&{write}"), "-",
                                 str(self.state), self.program, STOP], env=self.env, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, pass_fds=[write], timeout=WAIT_SECONDS * 4)
        os.close(write)
        with open(read, "rb") as file:
            content = file.read()
        if result.returncode == 77:
            self.skipTest("mounting is not allowed here")
        self.assert_silent(result)
        self.assertGreater(len(content), 1000)
        self.assertLess(content.count(b"\n"), 200)
        self.assertTrue(content.endswith(b"}\n"))


class Start(HookCase):
    @unittest.skipUnless(shutil.which("readelf"), "readelf is not installed")
    def test_no_library_is_loaded_that_the_hook_never_asks_for(self):
        listed = subprocess.run(["readelf", "-d", self.program], stdout=subprocess.PIPE, check=True).stdout.decode()
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", listed)
        self.assertTrue(any(name.startswith("libc.so") for name in needed), needed)
        if any(name.startswith(("libasan", "libtsan")) for name in needed):
            self.skipTest("built with a sanitizer, and linked otherwise")
        self.assertFalse([name for name in needed if name.startswith("libsystemd")],
                         "system/late_libsystemd_linux.cpp lacks a function")


class Patience(HookCase):
    """An agent is let go after five seconds, whatever stands in the way."""

    def test_a_lock_that_is_never_let_go(self):
        self.state.mkdir(mode=0o700)
        with open(self.state / "agent-events.lock", "w", encoding="ascii") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            began = time.monotonic()
            self.assert_silent(self.hook())
            self.assertGreater(time.monotonic() - began, 4)

    def test_an_input_that_never_ends(self):
        with subprocess.Popen([self.program, "hook"], env=self.env, stdin=subprocess.PIPE) as process:
            self.assertEqual(process.wait(WAIT_SECONDS), 0)


if __name__ == "__main__":
    unittest.main()
