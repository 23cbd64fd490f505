"""A client of `brindle mcp` that sees every byte: frames or lines on the way in, exactly what comes on the way out."""
import json
import os
import select
import subprocess
import tempfile

BUILD = os.environ.get("BRINDLE_BUILD_DIR") or os.path.join(os.path.dirname(__file__), "../../build/dev")
BRINDLE = os.path.join(BUILD, "bin", "brindle")
DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../data/mcp")
SNAPSHOT = os.path.join(DATA, "snapshot.json")
SNAPSHOT_NOW = 1772352000
SNAPSHOT_USER = 1000


def recorded(snapshot=SNAPSHOT):
    return ["--snapshot", snapshot, "--now", str(SNAPSHOT_NOW), "--uid", str(SNAPSHOT_USER), "--rules", "linux"]


class Client:
    """One running server. Replies are read with a deadline; nothing sleeps."""

    def __init__(self, *options, snapshot=SNAPSHOT, environment=None):
        self.home = tempfile.TemporaryDirectory(prefix="brindle-mcp-")
        self.state = os.path.join(self.home.name, "state")
        # What clients give: no TMPDIR, no XDG variables.
        variables = {"HOME": self.home.name, "PATH": "/usr/bin:/bin", "BRINDLE_DATA_DIR": self.state}
        variables.update(environment or {})
        arguments = recorded(snapshot) if snapshot else []
        self.process = subprocess.Popen([BRINDLE, "mcp", *arguments, *options], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=variables, bufsize=0)
        self.buffer = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            if stream and not stream.closed:
                stream.close()
        self.process.kill()
        self.process.wait()
        self.home.cleanup()

    def send(self, data):
        self.process.stdin.write(data)

    def send_line(self, message):
        self.send(json.dumps(message).encode() + b"\n")

    def send_frame(self, message):
        body = json.dumps(message).encode()
        self.send(b"Content-Length: %d\r\n\r\n" % len(body) + body)

    def more(self, seconds=10):
        """Some bytes of the output; empty at its end or when none came in time."""
        ready, _, _ = select.select([self.process.stdout], [], [], seconds)
        data = os.read(self.process.stdout.fileno(), 1 << 20) if ready else b""
        self.buffer += data
        return data

    def take(self, count):
        while len(self.buffer) < count:
            if not self.more():
                raise AssertionError(f"wanted {count} bytes, got {self.buffer!r}")
        taken, self.buffer = self.buffer[:count], self.buffer[count:]
        return taken

    def take_until(self, end):
        while end not in self.buffer:
            if not self.more():
                raise AssertionError(f"wanted {end!r}, got {self.buffer!r}")
        return self.take(self.buffer.index(end) + len(end))

    def read_frame(self):
        """A framed reply, header checked."""
        header = self.take_until(b"\r\n\r\n")
        name, _, value = header.partition(b": ")
        if name != b"Content-Length":
            raise AssertionError(f"no frame: {header!r}")
        return json.loads(self.take(int(value)))

    def read_framed_line(self):
        """A framed reply and the line feed behind it."""
        reply = self.read_frame()
        end = self.take(1)
        if end != b"\n":
            raise AssertionError(f"no line feed behind the frame: {end!r}")
        return reply

    def read_line(self):
        """A bare reply."""
        line = self.take_until(b"\n")
        if not line.startswith(b"{"):
            raise AssertionError(f"no bare line: {line!r}")
        return json.loads(line)

    def ask(self, method, params=None, id=1):
        """Asks framed; the whole reply."""
        message = {"jsonrpc": "2.0", "id": id, "method": method}
        if params is not None:
            message["params"] = params
        self.send_frame(message)
        return self.read_frame()

    def tool(self, name, **arguments):
        """The text of a tool's result, and whether it is an error."""
        result = self.ask("tools/call", {"name": name, "arguments": arguments})["result"]
        return result["content"][0]["text"], result["isError"]

    def quiet(self):
        """Whether nothing more has come: asks once more and sees that only that is answered."""
        self.send_frame({"jsonrpc": "2.0", "id": "quiet", "method": "ping"})
        return self.read_frame() == {"jsonrpc": "2.0", "id": "quiet", "result": {}} and not self.buffer

    def finish(self):
        """Ends the input; the exit status, what else came out, and the remarks."""
        if not self.process.stdin.closed:
            self.process.stdin.close()
        while self.more():
            pass
        rest, self.buffer = self.buffer, b""
        remarks = self.process.stderr.read().decode()
        return self.process.wait(10), rest, remarks
