#!/usr/bin/env python3
"""How long from starting `brindle mcp` to its reply to `initialize`, and how much memory does it then hold?

Some clients start the program twice, and all of them wait for it: less than 5 ms (median of 100 starts), less than
8 MB resident after a report. Exit 1 when a figure misses its budget.

Usage: bench/mcp_start.py [BUILD_FOLDER]     (build/release when not given)
"""
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
STARTS, MAXIMUM_MS, MAXIMUM_MB = 100, 5.0, 8.0
INITIALIZE = b'{"jsonrpc":"2.0","id":0,"method":"initialize","params":{}}\n'
AGENTS = b'{"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"agents"}}\n'


def main():
    build = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "build/release"
    with tempfile.TemporaryDirectory(prefix="brindle-bench-") as home:
        median, resident = measure(build, home)
    print(f"start to initialize  {median:8.2f} ms  budget {MAXIMUM_MS:g}")
    print(f"resident             {resident:8.2f} MB  budget {MAXIMUM_MB:g}")
    return 1 if median > MAXIMUM_MS or resident > MAXIMUM_MB else 0


def measure(build, home):
    """The median start in milliseconds, and the most memory in megabytes."""
    snapshot = ROOT / "tests/data/mcp/snapshot.json"
    command = [build / "bin/brindle", "mcp", "--framing=lines", "--snapshot", snapshot, "--now", "1772352000",
               "--uid", "1000", "--rules", "linux"]
    environment = {"HOME": home, "BRINDLE_DATA_DIR": os.path.join(home, "state"), "PATH": os.environ["PATH"]}
    spans, resident = [], 0.0
    for _ in range(STARTS):
        began = time.perf_counter()
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              env=environment) as process:
            process.stdin.write(INITIALIZE)
            process.stdin.flush()
            if b'"protocolVersion":"2024-11-05"' not in process.stdout.readline():
                raise SystemExit("mcp_start: no reply to initialize")
            spans.append((time.perf_counter() - began) * 1000)
            process.stdin.write(AGENTS)
            process.stdin.flush()
            process.stdout.readline()
            status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
            resident = max(resident, int(re.search(r"VmRSS:\s+(\d+)", status).group(1)) * 1024 / 1e6)
            process.stdin.close()
    return statistics.median(spans), resident


if __name__ == "__main__":
    sys.exit(main())
