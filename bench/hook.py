#!/usr/bin/env python3
"""How long does an agent wait for `brindle hook`, and how long for the same written for Node?

The whole process from its start to its end, with a payload of 1 KB, below an agent with ten children: less than 3 ms
(median of 300 runs), and less than a tenth of the script's. Runs alternate, so that both see the same machine. Exit 1
when a budget is missed; without Node the ratio is left out.

Usage: bench/hook.py [BUILD_FOLDER]     (build/release when not given)
"""
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
RUNS, PEER_EVERY, CHILDREN = 300, 10, 10
MAXIMUM_MS, MAXIMUM_RATIO = 3.0, 0.1
INSIDE = "--inside"


def milliseconds(command, payload, environment):
    with open(payload, "rb") as stream:
        began = time.perf_counter()
        process = subprocess.Popen(command, stdin=stream, env=environment, stdout=subprocess.DEVNULL)
        status = process.wait()
        span = (time.perf_counter() - began) * 1000
    if status != 0:
        raise SystemExit(f"hook: {command[0]} ended with {status}")
    return span


def measure(program):
    """Runs below a process that is called claude, as hooks do."""
    node = shutil.which("node")
    children = [subprocess.Popen(["sleep", "600"]) for _ in range(CHILDREN)]
    try:
        with tempfile.TemporaryDirectory(prefix="brindle-bench-") as folder:
            state = os.path.join(folder, "state")
            environment = {"HOME": folder, "BRINDLE_DATA_DIR": state, "PATH": os.environ["PATH"]}
            payload = os.path.join(folder, "payload.json")
            document = {"session_id": "835f", "cwd": "/home/u/shop", "hook_event_name": "Stop", "x": ""}
            document["x"] = "x" * (1024 - len(json.dumps(document)))
            pathlib.Path(payload).write_text(json.dumps(document), encoding="ascii")
            ours, peer = [], []
            for run in range(RUNS):
                ours.append(milliseconds([program, "hook"], payload, environment))
                if node and run % PEER_EVERY == 0:
                    peer.append(milliseconds([node, str(ROOT / "bench/hook_peer.mjs")], payload, environment))
            lines = pathlib.Path(state, "agent-events.jsonl").read_text(encoding="utf-8").splitlines()
            owned = pathlib.Path(state, "ownership.jsonl").read_text(encoding="utf-8").splitlines()
    finally:
        for child in children:
            child.kill()
            child.wait()
    # What is measured must have been done: every event is there, with its agent, and so are the agent's children.
    if len(lines) != RUNS or json.loads(lines[-1]).get("pid") != os.getpid() or len(owned) != CHILDREN:
        raise SystemExit(f"hook: {len(lines)} of {RUNS} events and {len(owned)} of {CHILDREN} children were recorded")
    return statistics.median(ours), statistics.median(peer) if peer else None


def main():
    if len(sys.argv) > 2 and sys.argv[1] == INSIDE:
        ours, peer = measure(sys.argv[2])
        print(f"brindle hook         {ours:8.2f} ms  budget {MAXIMUM_MS:g}")
        if peer is None:
            print("the same in Node          - ms  Node is not installed")
        else:
            print(f"the same in Node     {peer:8.2f} ms  ratio {ours / peer:.3f}, budget {MAXIMUM_RATIO:g}")
        return 1 if ours > MAXIMUM_MS or (peer and ours > MAXIMUM_RATIO * peer) else 0
    build = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "build/release"
    program = str((build / "bin/brindle").resolve())
    with tempfile.TemporaryDirectory(prefix="brindle-bench-") as folder:
        agent = os.path.join(folder, "claude")
        os.symlink(os.path.realpath(__file__), agent)
        return subprocess.run([sys.executable, agent, INSIDE, program], check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
