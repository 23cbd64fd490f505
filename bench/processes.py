#!/usr/bin/env python3
"""How long do the reports take beside the tools that people use today, on a machine with 2,000 processes more?

Budgets: `ports --json` at most 0.8 of `ss -ltnp` and 0.4 of `lsof -nP -iTCP -sTCP:LISTEN`, `agents --json` at most 1.2
of `ps -eo pid,ppid,user,rss,args`. Every tool runs in turn on the same processes, and medians are compared. Exit 1
when a budget is missed, 77 when a tool is not installed.

Usage: bench/processes.py [BUILD_FOLDER] [PROCESSES]
"""

import os
import shutil
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import time

BUILD = sys.argv[1] if len(sys.argv) > 1 else "build/release"
COUNT = int(sys.argv[2]) if len(sys.argv) > 2 else 2000
DESCRIPTORS = 12
LISTENERS = 200
RUNS = 15


def idle_process(listens):
    """A forked copy of this program that holds descriptors, and perhaps a listening socket, until it is ended."""
    pid = os.fork()
    if pid:
        return pid
    held = [os.open("/dev/null", os.O_RDONLY) for _ in range(DESCRIPTORS - 4)]
    if listens:
        held.append(socket.create_server(("127.0.0.1", 0)))
    while True:
        signal.pause()


def measure(commands, environment):
    times = {name: [] for name in commands}
    for _ in range(RUNS):
        for name, words in commands.items():
            start = time.perf_counter()
            result = subprocess.run(words, env=environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
            times[name].append(time.perf_counter() - start)
            if not result.stdout:
                sys.exit(f"{name} printed nothing")
    return {name: statistics.median(each) * 1000 for name, each in times.items()}


def main():
    missing = [tool for tool in ("ss", "lsof", "ps") if not shutil.which(tool)]
    if missing:
        print("skipped: not installed: " + ", ".join(missing))
        sys.exit(77)
    brindle = os.path.join(BUILD, "bin", "brindle")
    folder = tempfile.mkdtemp(prefix="brindle-bench-")
    environment = {**os.environ, "BRINDLE_DATA_DIR": folder}
    pids = []
    try:
        for each in range(COUNT):
            pids.append(idle_process(each % (COUNT // LISTENERS or 1) == 0))
        time.sleep(1)
        medians = measure(
            {
                "ports": [brindle, "ports", "--json"],
                "ss": ["ss", "-ltnp"],
                "lsof": ["lsof", "-nP", "-iTCP", "-sTCP:LISTEN"],
                "agents": [brindle, "agents", "--json"],
                "ps": ["ps", "-eo", "pid,ppid,user,rss,args"],
            },
            environment,
        )
    finally:
        for pid in pids:
            os.kill(pid, signal.SIGKILL)
        for pid in pids:
            os.waitpid(pid, 0)
        shutil.rmtree(folder, ignore_errors=True)
    failed = False
    for name, median in medians.items():
        print(f"{name:8} {median:8.1f} ms")
    for ours, theirs, budget in (("ports", "ss", 0.8), ("ports", "lsof", 0.4), ("agents", "ps", 1.2)):
        ratio = medians[ours] / medians[theirs]
        verdict = "ok" if ratio <= budget else "over budget"
        failed = failed or ratio > budget
        print(f"{ours} / {theirs}: {ratio:.2f} of at most {budget} {verdict}")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
