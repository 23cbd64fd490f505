"""`ports` beside `ss` and `snapshot` beside `ps`: the same listeners and owners, the same processes."""

import json
import re
import shutil
import subprocess
import sys
import time
import unittest

from machine_case import NOBODY, MachineCase, main
from process_case import ProcessCase, free_port, is_listening, wait_until


def sockets_of_ss(listing):
    """Port and holders' pids of each listening socket in what `ss -Hltnp` printed; no holders where it cannot tell."""
    return [(int(line.split()[3].rpartition(":")[2]), frozenset(int(pid) for pid in re.findall(r"pid=(\d+)", line)))
            for line in listing.splitlines()]


def topmost(holders, parents):
    """Of those that share a socket, the ones that do not hang below another one of them."""
    return {pid for pid in holders if parents.get(pid) not in holders}


class ThisMachine(ProcessCase):
    """Other programs come and go meanwhile, so what both looks at the peer have in common is compared."""

    def listen(self):
        ports = [free_port() for _ in range(3)]
        self.agent("\n".join(self.server_line(port, f"server{port}") for port in ports), name="bash-stand-in")
        for port in ports:
            self.pid_from(f"server{port}")
            wait_until(lambda: is_listening(port), "a server")
        return ports

    def sockets(self):
        return sockets_of_ss(subprocess.run(["ss", "-Hltnp"], capture_output=True, text=True, check=True).stdout)

    @unittest.skipUnless(shutil.which("ss"), "skipped: there is no ss")
    def test_ports_names_the_listeners_that_ss_names(self):
        ports = self.listen()
        before = self.sockets()
        rows = {(row["port"], row["pid"]) for row in self.document("ports")["listeners"]}
        after = self.sockets()
        parents = {pid: process[0] for pid, process in self.processes().items()}
        lasting = [socket for socket in before if socket in after and socket[1]]
        self.assertLessEqual(set(ports), {port for port, _ in lasting})
        for port, holders in lasting:
            self.assertTrue(rows & {(port, pid) for pid in topmost(holders, parents)}, f"port {port} of {holders}: {rows}")
        seen = {(port, pid) for port, holders in before + after for pid in holders}
        for row in rows:
            self.assertIn(row, seen)

    def processes(self):
        """Parent, user, earliest and latest start of each process that is no kernel thread and has not ended."""
        began = time.time()
        listing = subprocess.run(["ps", "-eo", "pid=,ppid=,uid=,etimes=,stat=,args="], capture_output=True, text=True, check=True)
        ended = time.time()
        found = {}
        for line in listing.stdout.splitlines():
            pid, parent, user, age, state, name = line.split(None, 5)
            kernel = name == "[kthreadd]" or (parent == "2" and name.startswith("["))
            if not state.startswith("Z") and not kernel:
                # Ages are whole seconds, and the system's clocks may be adjusted a little against each other.
                found[int(pid)] = (int(parent), int(user), began - int(age) - 2, ended - int(age) + 2)
        return found

    def test_the_snapshot_agrees_with_ps(self):
        agent = self.agent("sleep 1000 & sleep 1000 &")
        before = self.processes()
        ours = {each["pid"]: each for each in json.loads(self.brindle("snapshot", code=0).stdout)}
        after = self.processes()
        lasting = [pid for pid in before if pid in after and before[pid][:2] == after[pid][:2]]
        self.assertIn(agent.pid, lasting)
        for pid in lasting:
            self.assertIn(pid, ours)
            self.assertEqual((ours[pid]["ppid"], ours[pid]["uid"]), before[pid][:2])
            earliest, latest = before[pid][2:]
            self.assertTrue(earliest <= ours[pid]["start"] <= latest, f"start of {pid}")
        self.assertEqual((ours[agent.pid]["agentName"], ours[agent.pid]["cwd"]), ("Claude Code", str(self.project)))


SERVERS = """
import os, signal, socket, sys, time

def listen(family, address, port, reuse=False):
    listener = socket.socket(family)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEPORT, reuse)
    if family == socket.AF_INET6:
        listener.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 1)
    listener.bind((address, port))
    listener.listen()
    listener.set_inheritable(True)
    return listener

def two_families():
    return [listen(socket.AF_INET, "127.0.0.1", 4100), listen(socket.AF_INET6, "::1", 4100)]

def with_workers():
    listener = listen(socket.AF_INET, "0.0.0.0", 4200)
    for _ in range(3):
        if os.fork() == 0:
            break
    return listener

def dropped_rights():
    listener = listen(socket.AF_INET, "127.0.0.1", 80)
    os.setgid(65534)
    os.setuid(65534)
    return listener

def inherited():
    listener = listen(socket.AF_INET6, "::", 4300)
    if os.fork() == 0:
        os.execvp("sleep", ["sleep", "1000"])
    return listener

def orphaned():
    listener = listen(socket.AF_INET, "127.0.0.1", 4400)
    if os.fork() != 0:
        os._exit(0)
    return listener

def reused():
    return listen(socket.AF_INET, "127.0.0.1", 4500, reuse=True)

def several():
    return [listen(socket.AF_INET, "127.0.0.1", port) for port in (4600, 4601, 4602)]

kept = globals()[sys.argv[1]]()
time.sleep(1000)
"""
SOCKETS = 11


class OwnMachine(MachineCase):
    """Nothing comes and goes here, so the two must agree exactly."""

    def setUp(self):
        super().setUp()
        servers = self.script("servers.py", SERVERS)
        names = ["two_families", "with_workers", "dropped_rights", "inherited", "orphaned", "reused", "reused", "several"]
        others = f"setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups {sys.executable} -m http.server 4700"
        self.machine("\n".join(f"{sys.executable} {servers} {name} &" for name in names) + f"\n{others} 2>/dev/null &")
        self.wait_listening(SOCKETS + 1)
        wait_until(lambda: self.inside("pgrep", "-c", "-f", "with_workers").stdout == "4\n", "the workers")
        wait_until(lambda: self.inside("pgrep", "-x", "sleep").stdout, "the heir")

    def processes(self):
        """What ps says of each process but itself: parent, user and start."""
        listing = self.inside("ps", "-eo", "pid=,ppid=,uid=,etimes=,comm=").stdout
        rows = [line.split(None, 4) for line in listing.splitlines()]
        return {int(pid): (int(parent), int(user), time.time() - int(age)) for pid, parent, user, age, name in rows if name != "ps"}

    def test_ports_lists_exactly_what_ss_lists(self):
        sockets = sockets_of_ss(self.inside("ss", "-Hltnp").stdout)
        self.assertEqual(len(sockets), SOCKETS + 1)
        parents = {pid: process[0] for pid, process in self.processes().items()}
        expected = set()
        for port, holders in sockets:
            holder, = topmost(holders, parents)
            expected.add((port, holder))
        self.assertEqual(len(expected), SOCKETS)  # one process holds the same port of two families
        rows = self.document_inside("ports")["listeners"]
        self.assertEqual([(row["port"], row["pid"]) for row in rows], sorted(expected))
        others = {row["port"] for row in rows if not row["ownedByCurrentUser"]}
        self.assertEqual(others, {80, 4700})
        reachable = self.brindle_inside("ports").stdout
        shown = {int(line.split()[0]) for line in reachable.splitlines() if "network" in line}
        self.assertEqual(shown, {4200, 4300, 4700})

    def test_the_snapshot_lists_exactly_what_ps_lists(self):
        theirs = self.processes()
        ours = self.snapshot_inside()
        own = {pid for pid, each in ours.items() if each["name"] == "brindle"}
        self.assertEqual(len(own), 1)
        self.assertEqual(set(ours) - own, set(theirs))
        for pid, (parent, user, start) in theirs.items():
            self.assertEqual((ours[pid]["ppid"], ours[pid]["uid"]), (parent, user))
            self.assertLess(abs(ours[pid]["start"] - start), 3, f"start of {pid}")
        stamps = "for f in /proc/[0-9]*/stat; do sed 's/ (.*) / /' $f; done"
        fields = [line.split() for line in self.inside("/bin/sh", "-c", stamps).stdout.splitlines()]
        kernels = {int(each[0]): int(each[20]) for each in fields}
        self.assertEqual({pid: ours[pid]["startTime"] for pid in theirs}, {pid: kernels[pid] for pid in theirs})


if __name__ == "__main__":
    main("__main__")
