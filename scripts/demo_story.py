"""The story of a hold, told live; scripts/demo builds what it needs and runs it.

Every line says what was seen, after it was seen: locks as the login manager lists them, answers as the helper gives
them, exit statuses as the system reports them. The first thing that is not as promised ends the story with status 1.
"""

import pathlib
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "integration"))

import private_system
from private_system import ClientProcess, System

START = time.monotonic()
MOMENTS = 1.0  # what "at once" may take at most, in seconds


class Story:
    def __init__(self, system):
        self.system = system
        self.program = str(private_system.build_dir() / "bin" / "brindle")
        self.observations = 0

    def saw(self, text, truth):
        """Tells what was seen, and ends the story when it is not what was promised."""
        self.observations += 1
        mark = "ok" if truth else "NOT AS PROMISED"
        print(f"  {time.monotonic() - START:5.2f} s  {text}  [{mark}]", flush=True)
        if not truth:
            sys.exit(1)

    def lock_appears(self):
        self.system.wait_lock(True)
        locks = self.system.helper_locks()
        shown = "; ".join(f"{lock.what} by {lock.who} ({lock.why}), mode {lock.mode}" for lock in locks)
        self.saw(f"{self.manager()} lists: {shown}",
                 [(lock.what, lock.mode) for lock in locks] == [(private_system.LOCK_WHAT, "block")])

    def lock_is_gone(self):
        taken = self.system.wait_lock(False)
        self.saw(f"{self.manager()} lists no lock of ours any more, {taken * 1000:.1f} ms later", taken < MOMENTS)

    def manager(self):
        return "logind" if self.system.real else "the stand-in"

    def status(self):
        return subprocess.run([self.program, "sleep", "status"], env=self.system.env, capture_output=True, text=True)

    def sleep_is_on(self):
        result = self.status()
        self.saw(f"'brindle sleep status' says: {result.stdout.strip()}",
                 (result.returncode, result.stdout) == (1, "Sleep is on.\n"))


def beginning(story):
    print("\nThe helper starts, and sleep is on:")
    story.system.start_helper()
    line = story.system.helper.wait_line("helper started, turning sleep back on")
    story.saw(f"its log says: {line.group(0)}", True)
    story.sleep_is_on()
    story.saw(f"{story.manager()} lists no lock of ours", story.system.helper_locks() == [])


def killed_client(story):
    print("\nA program asks for an hour without sleep, and is killed:")
    client = ClientProcess(story.system)
    answer = client.ask("off 3600")
    story.saw(f"the helper answers: {answer}", answer.endswith("Sleep disabled"))
    story.lock_appears()
    answer = client.ask("off 7200")
    story.saw(f"asked again, it answers: {answer}", answer.endswith("Sleep already disabled"))
    result = story.status()
    story.saw(f"'brindle sleep status' says: {result.stdout.strip()}",
              result.returncode == 0 and ("59m" in result.stdout or "another 1h." in result.stdout))
    client.signal(signal.SIGKILL)
    story.lock_is_gone()
    line = story.system.helper.wait_line(".*reason connectionLost")
    story.saw(f"the helper's log says: {line.group(0).split(': ', 1)[-1]}", True)


def ended_helper(story):
    print("\n'brindle sleep off' holds, and the helper is told to end:")
    holder = story.system.start([story.program, "sleep", "off", "--for", "2h"])
    story.saw(f"it says: {holder.wait_line('^Sleep is off.*').group(0)}", True)
    story.lock_appears()
    story.system.helper.signal(signal.SIGTERM)
    story.lock_is_gone()
    status = story.system.helper.wait()
    story.saw(f"the helper has ended with status {status}", status == 0)
    story.saw(f"the holder says: {holder.wait_line('.*asking again soon.*').group(0)}", True)
    print("\nA new helper comes, and the holder finds it; then Ctrl-C:")
    story.system.start_helper()
    story.lock_appears()
    holder.signal(signal.SIGINT)
    status = holder.wait()
    story.saw(f"the holder has ended with status {status}", status == 130)
    story.lock_is_gone()


def around_a_command(story):
    print("\n'brindle run -- COMMAND' holds as long as the command runs:")
    command = story.system.start([story.program, "run", "--", "sh", "-c", "echo working; read line; exit 7"],
                                 stdin=subprocess.PIPE)
    command.wait_line("^working$")
    story.lock_appears()
    command.popen.stdin.close()
    status = command.wait()
    story.saw(f"the command's own exit status came through: {status}", status == 7)
    story.lock_is_gone()
    story.sleep_is_on()


def main():
    try:
        system = System()
    except private_system.Unavailable as reason:
        print(f"demo: cannot run here: {reason}", file=sys.stderr)
        sys.exit(2)
    with system:
        system.start_logind()
        where = "the real one, on a bus and a /run of its own" if system.real else \
            "NOT the real one, which only root can start; it knows locks and nothing else"
        print(f"Login manager: {system.login_manager} ({where})")
        story = Story(system)
        for chapter in (beginning, killed_client, ended_helper, around_a_command):
            chapter(story)
        seconds = time.monotonic() - START
        print(f"\n{story.observations} observations in {seconds:.1f} s, all as promised: sleep always came back.")


if __name__ == "__main__":
    try:
        main()
    except AssertionError as missing:
        print(f"  NOT AS PROMISED: {missing}")
        sys.exit(1)
