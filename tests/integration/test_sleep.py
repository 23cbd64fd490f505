"""`brindle sleep off`, `on` and `status` over a real bus and login manager."""

import os
import pathlib
import signal
import subprocess
import sys

import private_system
from command_case import NO_HELPER, CommandCase
from private_system import Client, wait_until


class SleepOff(CommandCase):
    def test_a_signal_lets_go_and_shows_in_the_exit_status(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT):
            with self.subTest(signal=number.name):
                process = self.start_off()
                process.signal(number)
                self.assertEqual(process.wait(), 128 + number)
                self.assert_not_held()
                self.assertEqual(process.lines, ["Sleep is off for 4h; Ctrl-C switches it back on.", "Sleep is on."])

    def test_a_kill_lets_go_within_moments(self):
        process = self.start_off()
        process.signal(signal.SIGKILL)
        self.assertLess(self.system.wait_lock(False), 1.0)
        self.helper.wait_line("reason connectionLost")

    def test_the_end_of_the_time_is_success_and_leaves_nothing_expired(self):
        for _ in range(2):
            result = self.brindle("sleep", "off", "--for", "1s")
            self.assert_ran(result, 0, "Sleep is off for 1s; Ctrl-C switches it back on.\nSleep is on.\n")
            self.assert_not_held()

    def test_an_ignored_hangup_stays_ignored(self):
        process = self.system.start(["sh", "-c", f"trap '' HUP; exec {self.program} sleep off"])
        process.wait_line("^Sleep is off")
        process.signal(signal.SIGHUP)
        process.signal(signal.SIGTERM)
        self.assertEqual(process.wait(), 128 + signal.SIGTERM)

    def test_the_hold_goes_on_when_nobody_reads_its_output(self):
        reading, writing = os.pipe()
        os.close(reading)
        process = subprocess.Popen([self.program, "sleep", "off"], env=self.env, stdout=writing, stderr=writing)
        os.close(writing)
        self.system.wait_lock(True)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assert_not_held()

    def test_a_new_helper_is_asked_at_once_for_the_time_that_is_left(self):
        process = self.start_off("--for", "1h")
        self.restart_helper()
        self.system.wait_lock(True)
        process.wait_line("^brindle: sleep is on, asking again soon: the helper has ended$")
        self.assertLessEqual(Client(self.system).status().remaining, 3600)
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assert_not_held()

    def test_a_helper_that_is_told_to_end_is_not_started_again_at_once(self):
        process = self.start_off()
        self.helper.signal(signal.SIGTERM)
        self.assertEqual(self.helper.wait(), 0)
        process.wait_line("asking again soon")
        self.assert_not_held()
        self.assertIsNone(self.system.owner(self.system.helper_name))
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)

    def test_it_ends_in_order_when_the_bus_has_gone(self):
        process = self.start_off()
        self.system.bus.signal(signal.SIGKILL)
        self.system.bus.wait()
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assertNotIn("Sleep is on.", process.lines)

    def test_letting_go_does_not_wait_for_a_helper_that_hangs(self):
        process = self.start_off()
        self.helper.signal(signal.SIGSTOP)
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assertEqual(process.lines[-1], "brindle: let go without an answer: the helper has not answered")
        self.helper.signal(signal.SIGCONT)
        self.system.wait_lock(False)

    def test_a_second_signal_does_not_wait_at_all(self):
        process = self.start_off()
        self.helper.signal(signal.SIGSTOP)
        process.signal(signal.SIGINT)
        process.signal(signal.SIGTERM)
        self.assertEqual(process.wait(), 128 + signal.SIGTERM)
        self.helper.signal(signal.SIGCONT)
        self.system.wait_lock(False)

    def test_a_second_holder_learns_that_it_shares(self):
        self.start_off()
        second = self.start("sleep", "off")
        second.wait_line("Somebody else holds it off too")
        self.assert_held()

    def test_the_login_manager_may_restart_meanwhile(self):
        process = self.start_off()
        self.system.kill_logind()
        self.system.start_logind()
        self.system.wait_lock(True)
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.system.wait_lock(False)

    def test_a_login_manager_that_is_down_is_a_failure_in_one_line(self):
        self.system.kill_logind()
        self.assert_one_line(self.brindle("sleep", "off"), 2, "^brindle: sleep stays on: logind failed$")

    def test_wrong_usage_is_one_line(self):
        for words, pattern in [
                (["--for", "4"], "expected a duration such as 90s, 45m, 4h or 1h30m"),
                (["--for", "13h"], "--for: expected 12h at most, got"),
                (["--for"], "--for: expected DURATION"),
                (["now"], 'unexpected argument "now"'),
                (["--json"], "unknown option --json")]:
            with self.subTest(words=words):
                self.assert_one_line(self.brindle("sleep", "off", *words), 2, "^brindle: sleep: .*" + pattern)
        self.assert_one_line(self.brindle("sleep", "on", "--for", "4h"), 2, "--for goes with off only")


class SleepOnAndStatus(CommandCase):
    def test_status_tells_the_remaining_time_while_sleep_is_off(self):
        self.start_off("--for", "2h")
        result = self.brindle("sleep", "status")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertRegex(result.stdout, r"^Sleep is off for another (2h|1h59m\d+s)\.\n$")

    def test_status_is_negative_while_sleep_is_on(self):
        self.assert_ran(self.brindle("sleep", "status"), 1, "Sleep is on.\n")

    def test_asking_for_the_status_ends_no_hold(self):
        self.start_off()
        for _ in range(3):
            self.assertEqual(self.brindle("sleep", "status").returncode, 0)
        self.assert_held()
        self.assertEqual(self.system.helper_locks()[0].pid, self.helper.pid)

    def test_on_ends_the_hold_of_somebody_else(self):
        client = Client(self.system)
        client.set_sleep_disabled(True)
        self.assert_held()
        self.assert_ran(self.brindle("sleep", "on"), 0, "Sleep is on.\n")
        self.assert_not_held()
        self.assertFalse(client.heartbeat())


class Strangers(CommandCase):
    watches_locks = True

    def test_another_user_is_refused_in_one_line(self):
        if not self.system.real:
            self.skipTest("only root can be another user")
        for words in (["sleep", "off"], ["sleep", "on"], ["run", "--", "true"]):
            process = self.start(*words, user=private_system.NOBODY)
            self.assertEqual(process.wait(), 2)
            self.assertEqual(len(process.lines), 1, process.lines)
            self.assertRegex(process.lines[0], "^brindle: the helper refuses: ")
        self.assert_never_held()


class StartedByTheBus(CommandCase):
    activation = True
    starts_helper = False

    def test_status_does_not_start_the_helper(self):
        self.assert_ran(self.brindle("sleep", "status"), 1, "Sleep is on.\n")
        self.assertIsNone(self.system.owner(self.system.helper_name))

    def test_off_starts_the_helper(self):
        process = self.start_off()
        self.assertIsNotNone(self.system.owner(self.system.helper_name))
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assert_not_held()

    def test_a_helper_that_was_killed_is_started_again_by_the_next_request(self):
        first = self.start_off()
        helper = self.system.helper_locks()[0].pid
        os.kill(helper, signal.SIGKILL)
        first.wait_line("asking again soon")
        self.start_off()
        wait_until(lambda: sum("Sleep is off" in line for line in first.lines) == 2, "the first one holds again")


class EndingHelper(CommandCase):
    starts_helper = False

    def start_ending(self, too_early):
        script = pathlib.Path(__file__).with_name("ending_helper.py")
        ending = self.system.start([sys.executable, "-B", script, self.system.helper_name, self.system.object_path,
                                    self.system.interface, str(too_early)])
        ending.wait_line("^ready$")
        return ending

    def test_a_request_in_the_moment_of_the_idle_exit_is_made_again(self):
        ending = self.start_ending(1)
        process = self.start("sleep", "off")
        process.wait_line("^Sleep is off for 4h")
        wait_until(lambda: ending.lines == ["ready", "asked off", "asked off"], "it was asked twice")
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assertEqual(process.lines[1:], ["Sleep is on."])

    def test_a_helper_that_keeps_ending_is_asked_twice_and_no_more(self):
        ending = self.start_ending(9)
        self.assert_one_line(self.brindle("sleep", "off"), 2, "^brindle: no helper to talk to: ask again$")
        # What is asked now comes behind everything that the first one has asked.
        self.brindle("sleep", "on")
        ending.wait_line("^asked on$")
        self.assertEqual(ending.lines, ["ready", "asked off", "asked off", "asked on"])

    def test_a_request_that_was_withdrawn_meanwhile_is_not_made_again(self):
        ending = self.start_ending("late")
        process = self.start("sleep", "off")
        ending.wait_line("^asked off$")
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        # What is asked now comes behind everything that the first one has asked.
        self.brindle("sleep", "on")
        wait_until(lambda: ending.lines.count("asked on") == 2, "the second one has asked")
        self.assertEqual(ending.lines, ["ready", "asked off", "asked on", "asked on"])

    def test_letting_go_is_asked_for_once(self):
        ending = self.start_ending(9)
        self.assertEqual(self.brindle("sleep", "on").returncode, 2)
        self.brindle("sleep", "off")
        wait_until(lambda: ending.lines.count("asked off") == 2, "the next one has asked")
        self.assertEqual(ending.lines, ["ready", "asked on", "asked off", "asked off"])


class NoHelper(CommandCase):
    starts_helper = False

    def test_every_request_says_so_in_one_line(self):
        for words in (["off"], ["on"], ["status"]):
            with self.subTest(words=words):
                self.assert_one_line(self.brindle("sleep", *words), 2, NO_HELPER)

    def test_no_bus_at_all_is_one_line_too(self):
        env = {**self.env, "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.system.folder}/no-bus"}
        for words in (["off"], ["on"], ["status"]):
            with self.subTest(words=words):
                self.assert_one_line(self.brindle("sleep", *words, env=env), 2,
                                     "^brindle: no helper to talk to: connect to the system bus: No such file")


if __name__ == "__main__":
    private_system.main("__main__")
