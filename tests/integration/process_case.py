"""Real process trees with stand-ins for agents: programs that are called like one and run a given shell script."""

import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import unittest

BUILD = pathlib.Path(os.environ.get("BRINDLE_BUILD_DIR", "build/dev"))
BRINDLE = str(BUILD / "bin" / "brindle")
PATIENCE = 20.0

SERVER = "import http.server,sys; http.server.HTTPServer(('127.0.0.1', int(sys.argv[1])), http.server.SimpleHTTPRequestHandler).serve_forever()"


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def is_listening(port):
    with socket.socket() as probe:
        probe.settimeout(1)
        return probe.connect_ex(("127.0.0.1", port)) == 0


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        if condition():
            return
        time.sleep(0.02)
    raise AssertionError(f"never came: {what}")


class ProcessCase(unittest.TestCase):
    """Every process that a test starts is ended by its pid when the test is over."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="brindle-processes-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.state = self.folder / "state"
        self.project = self.folder / "shop"
        self.project.mkdir()
        (self.project / "package.json").write_text('{"name": "shop"}')
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(self.folder / "home"),
            "BRINDLE_DATA_DIR": str(self.state),
        }
        self.pids = []
        self.addCleanup(self.end_all)

    def end_all(self):
        for pid in self.pids:
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass

    def agent(self, script, name="claude", variables=None):
        """Starts a stand-in agent that runs `script`; `$SELF` in it is the agent's pid."""
        program = self.folder / name
        if not program.exists():
            shutil.copy("/bin/bash", program)
        process = subprocess.Popen(
            [str(program), "-c", f"SELF=$$\n{script}\nwait"],
            cwd=self.project,
            env={**self.environment, **(variables or {})},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        self.pids.append(process.pid)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def server_line(self, port, pid_file):
        """A shell command that runs a server in the background and writes down its pid."""
        return f"python3 -c \"{SERVER}\" {port} & echo $! > {self.folder / pid_file}"

    def pid_from(self, pid_file):
        path = self.folder / pid_file
        wait_until(lambda: path.exists() and path.read_text().strip(), pid_file)
        pid = int(path.read_text())
        self.pids.append(pid)
        return pid

    def brindle(self, *words, code=None):
        result = subprocess.run(
            [BRINDLE, *words], env=self.environment, cwd=self.folder, capture_output=True, text=True, timeout=60,
            stdin=subprocess.DEVNULL)
        if code is not None:
            self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        return result

    def document(self, *words):
        result = self.brindle(*words, "--json")
        self.assertIn(result.returncode, (0, 1), result.stderr)
        return json.loads(result.stdout)

    def listener(self, port):
        rows = [row for row in self.document("ports")["listeners"] if row["port"] == port]
        return rows[0] if rows else None

    def session(self, pid):
        rows = [row for row in self.document("agents")["sessions"] if row["pid"] == pid]
        return rows[0] if rows else None

    def left_behind(self, pid):
        rows = [row for row in self.document("agents")["leftBehind"] if row["pid"] == pid]
        return rows[0] if rows else None
