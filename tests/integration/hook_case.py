"""What the tests of `brindle hook`, `notify` and `setup` share: the program, a home folder, and stand-in agents."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

from private_system import Unavailable, build_dir
from watched_process import WAIT_SECONDS, die_with_parent

STOP = '{"hook_event_name":"Stop","session_id":"835f","cwd":"/home/u/shop"}'
NOBODY = 65534


def program():
    try:
        return str(build_dir() / "bin" / "brindle")
    except Unavailable as why:
        raise unittest.SkipTest(str(why))


class HookCase(unittest.TestCase):
    """A home folder with nothing in it for each test."""

    def setUp(self):
        self.program = program()
        folder = tempfile.TemporaryDirectory(prefix="brindle-hook-")
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        self.state = self.home / "state"
        self.env = {"HOME": str(self.home), "BRINDLE_DATA_DIR": str(self.state), "PATH": "/usr/bin:/bin"}

    def brindle(self, *words, input=b"", env=None, **options):
        """Runs the command to its end; input and outputs are bytes."""
        if "stdin" not in options:
            options["input"] = input
        return subprocess.run([self.program, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=WAIT_SECONDS, env={**self.env, **(env or {})},
                              preexec_fn=options.pop("preexec_fn", die_with_parent), **options)

    def hook(self, *words, input=STOP.encode(), **options):
        return self.brindle("hook", *words, input=input, **options)

    def assert_silent(self, result):
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))

    def lines(self, name="agent-events.jsonl"):
        """The records of a file of the state folder."""
        path = self.state / name
        return [json.loads(line) for line in path.read_text().splitlines()] if path.exists() else []

    def script(self, name, text):
        """A program of this name in the home folder's bin; answers its path."""
        path = self.home / "bin" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text("#!/bin/sh\n" + text)
        path.chmod(0o755)
        return path


def as_nobody():
    die_with_parent()
    if os.geteuid() == 0:
        os.setgid(NOBODY)
        os.setuid(NOBODY)


__all__ = ["HookCase", "NOBODY", "STOP", "as_nobody"]
