"""`brindle run` over a real bus and login manager: the hold, and the command as if brindle were not there."""

import os
import signal
import subprocess
import sys

import private_system
from command_case import NO_HELPER, CommandCase
from private_system import WAIT_SECONDS, wait_until

# Says when it is ready, then waits until its standard input ends.
UNTIL_CLOSED = "echo ready; read line; exit 5"


class Run(CommandCase):
    def start_run(self, script, *options):
        process = self.start("run", *options, "--", "sh", "-c", script, stdin=subprocess.PIPE)
        process.wait_line("^ready$")
        return process

    def test_sleep_is_off_while_the_command_runs(self):
        process = self.start_run(UNTIL_CLOSED)
        self.assert_held()
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)
        self.assert_not_held()

    def test_the_hold_is_there_before_the_command_and_after_its_last_moment(self):
        status = f"{self.program} sleep status"
        self.assert_ran(self.brindle("run", "--", "sh", "-c", f"{status} > /dev/null && exit 40"), 40)

    def test_the_command_need_not_follow_two_dashes(self):
        self.assert_ran(self.brindle("run", "--for", "1h", "echo", "--for", "-x"), 0, "--for -x\n")

    def test_streams_pass_through(self):
        result = self.brindle("run", "--", "sh", "-c", "cat; echo aside >&2", input="one\ntwo\n")
        self.assert_ran(result, 0, "one\ntwo\n", "aside\n")

    def test_every_exit_status_is_passed_on(self):
        for status in (0, 1, 2, 77, 130, 255):
            self.assert_ran(self.brindle("run", "--", "sh", "-c", f"exit {status}"), status)

    def test_a_command_that_a_signal_killed_is_seen_as_such(self):
        for number in (signal.SIGTERM, signal.SIGKILL, signal.SIGSEGV, signal.SIGPIPE, signal.SIGINT, signal.SIGUSR1):
            with self.subTest(signal=number.name):
                result = self.brindle("run", "--", "sh", "-c", f"kill -{number.value} $$")
                self.assert_ran(result, -number)
                self.assert_not_held()

    def test_a_shell_sees_128_and_the_signal(self):
        script = f"{self.program} run -- sh -c 'kill -TERM $$'; echo $?"
        result = subprocess.run(["sh", "-c", script], env=self.env, capture_output=True, text=True, check=True)
        self.assertEqual(result.stdout, "143\n")

    def test_a_missing_command_is_127_and_one_that_cannot_be_executed_126(self):
        self.assert_one_line(self.brindle("run", "--", "no-such-program"), 127,
                             "^brindle: run: no-such-program: No such file or directory$")
        self.assert_one_line(self.brindle("run", "--", "/etc/passwd"), 126,
                             "^brindle: run: /etc/passwd: Permission denied$")
        self.assert_not_held()

    def test_signals_from_processes_reach_the_command(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT, signal.SIGUSR1, signal.SIGUSR2):
            with self.subTest(signal=number.name):
                # A shell starts no background job here, so its trap runs at once; read is what it interrupts.
                process = self.start_run(f"trap 'echo caught; exit 9' {number.name[3:]}; {UNTIL_CLOSED}")
                process.signal(number)
                self.assertEqual(process.wait(), 9)
                self.assertEqual(process.lines, ["ready", "caught"])
                self.assert_not_held()

    def test_a_command_that_ignores_a_signal_goes_on_held(self):
        process = self.start_run(f"trap '' INT TERM; {UNTIL_CLOSED}")
        process.signal(signal.SIGINT)
        process.signal(signal.SIGTERM)
        self.assertEqual(self.brindle("sleep", "status").returncode, 0)
        self.assertTrue(process.running())
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)
        self.assert_not_held()

    def test_a_kill_of_brindle_lets_go_and_spares_the_command(self):
        process = self.start_run("echo $$; " + UNTIL_CLOSED)
        command = int(process.lines[0])
        process.signal(signal.SIGKILL)
        self.assertLess(self.system.wait_lock(False), 1.0)
        os.kill(command, 0)
        process.popen.stdin.close()
        process.wait()

    def test_a_new_helper_is_asked_again_and_the_command_never_notices(self):
        process = self.start_run(UNTIL_CLOSED)
        self.restart_helper()
        self.system.wait_lock(True)
        process.wait_line("^brindle: sleep is off again$")
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)
        self.assertEqual(process.lines[1:], ["brindle: sleep is on, asking again soon: the helper has ended",
                                             "brindle: sleep is off again"])
        self.assert_not_held()

    def test_the_command_goes_on_when_the_time_is_over(self):
        process = self.start_run(UNTIL_CLOSED, "--for", "1s")
        process.wait_line("^brindle: the time is over, sleep is on; the command goes on$")
        self.assert_not_held()
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)


class Inheritance(CommandCase):
    def test_ignored_signals_stay_ignored_and_others_do_not(self):
        def ignored(prefix):
            script = f"trap '' HUP USR2; exec {prefix} grep ^SigIgn: /proc/self/status"
            result = subprocess.run(["sh", "-c", script], env=self.env, capture_output=True, text=True, check=True)
            # The 31 signals of programs; two more belong to the C library, which ignores them in what it starts.
            return int(result.stdout.split()[1], 16) & 0x7FFFFFFF
        self.assertEqual(ignored(""), 1 << signal.SIGHUP - 1 | 1 << signal.SIGUSR2 - 1)
        self.assertEqual(ignored(f"{self.program} run --"), ignored(""))

    def test_no_signal_is_blocked_in_the_command(self):
        result = self.brindle("run", "--", "grep", "^SigBlk:", "/proc/self/status")
        self.assertEqual(int(result.stdout.split()[1], 16), 0)

    def test_an_ignored_hangup_reaches_neither(self):
        script = f"trap '' HUP; exec {self.program} run -- sh -c 'echo ready; read line; exit 5'"
        process = self.system.start(["sh", "-c", script], stdin=subprocess.PIPE)
        process.wait_line("^ready$")
        process.signal(signal.SIGHUP)
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)

    def test_descriptors_are_handed_down_and_none_of_our_own(self):
        reading, writing = os.pipe()
        script = "import os; print(sorted(int(fd) for fd in os.listdir('/proc/self/fd')))"
        result = subprocess.run([self.program, "run", "--", sys.executable, "-c", script], env=self.env,
                                stdin=subprocess.DEVNULL, capture_output=True, text=True, pass_fds=[writing], check=True)
        os.close(reading)
        os.close(writing)
        # One more is the folder that is being listed.
        listed = eval(result.stdout)
        self.assertEqual(set(listed[:4]) - {writing}, {0, 1, 2} | (set(listed[:4]) - {0, 1, 2, writing}))
        self.assertIn(writing, listed)
        self.assertEqual(len(listed), 5)

    def test_a_closed_stream_is_closed_for_the_command_too(self):
        script = f"exec {self.program} run -- sh -c 'ls -l /proc/self/fd | grep -c \" 0 -> \"' <&-"
        result = subprocess.run(["sh", "-c", script], env=self.env, capture_output=True, text=True)
        # ls takes the free number for the folder it lists, so it must be that and nothing of ours.
        listing = subprocess.run(["sh", "-c", f"exec {self.program} run -- readlink /proc/self/fd/0 <&-"], env=self.env,
                                 capture_output=True, text=True)
        self.assertEqual((listing.stdout, listing.returncode), ("", 1), result.stdout)

    def test_the_environment_and_folder_are_handed_down(self):
        result = self.brindle("run", "--", "sh", "-c", "echo $PWD $MARK", cwd="/", env={**self.env, "MARK": "here"})
        self.assertEqual(result.stdout, "/ here\n")


class NoHelper(CommandCase):
    starts_helper = False

    def test_the_command_is_not_run(self):
        self.assert_one_line(self.brindle("run", "--", "echo", "ran"), 2, NO_HELPER)

    def test_best_effort_runs_it_and_says_that_nothing_is_held(self):
        result = self.brindle("run", "--best-effort", "--", "sh", "-c", "echo ran; exit 3")
        self.assertEqual((result.returncode, result.stdout), (3, "ran\n"))
        self.assertRegex(result.stderr, r"^brindle: no helper to talk to: .*; the command runs without a hold\n$")

    def test_best_effort_needs_no_bus(self):
        env = {**self.env, "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.system.folder}/no-bus"}
        result = self.brindle("run", "--best-effort", "--", "echo", "ran", env=env)
        self.assertEqual((result.returncode, result.stdout), (0, "ran\n"))
        self.assertEqual(result.stderr.count("\n"), 1)

    def test_wrong_usage_is_one_line(self):
        self.assert_one_line(self.brindle("run"), 2, "^brindle: run: expected a command$")
        self.assert_one_line(self.brindle("run", "--"), 2, "^brindle: run: expected a command$")
        self.assert_one_line(self.brindle("run", "--fro", "4h", "true"), 2, "^brindle: run: unknown option --fro$")
        self.assert_one_line(self.brindle("run", "--for", "4", "--", "true"), 2, "expected a duration such as")


if __name__ == "__main__":
    private_system.main("__main__")
