"""Two holders of one helper in real time; slow, because a hold looks after itself only every half minute."""

import signal
import time

import private_system
from command_case import CommandCase
from private_system import Client

BEAT_SECONDS = 30


class Sharing(CommandCase):
    def test_a_holder_takes_over_when_the_other_one_is_killed(self):
        first = self.start_off()
        second = self.start("sleep", "off")
        second.wait_line("^Sleep is off")
        second.signal(signal.SIGKILL)
        self.system.wait_lock(False)
        self.system.wait_lock(True, BEAT_SECONDS + 10)
        self.assertTrue(first.running())
        first.signal(signal.SIGINT)
        self.assertEqual(first.wait(), 130)
        self.assert_not_held()


class Stopped(CommandCase):
    def test_a_holder_that_stood_still_loses_its_hold_and_takes_it_back(self):
        process = self.start_off()
        process.signal(signal.SIGSTOP)
        self.system.wait_lock(False, 90 + 20)
        self.helper.wait_line("reason heartbeatLost")
        process.signal(signal.SIGCONT)
        self.system.wait_lock(True)
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        self.assert_not_held()


class Expired(CommandCase):
    def test_an_expired_hold_ends_later_ones_until_sleep_is_switched_on(self):
        client = Client(self.system)
        client.set_sleep_disabled(True, 60)
        # Shares the hold of 60 seconds and beats for it, so that it ends by its limit and not by silence.
        sharing = self.start_off()
        for _ in range(7):
            time.sleep(10)
            client.heartbeat()
        self.helper.wait_line("reason maxDuration")
        self.assertEqual(sharing.wait(BEAT_SECONDS + 10), 1)
        self.assertRegex(sharing.lines[-1], "Max duration reached. Turn it off first. 'brindle sleep on' does that$")
        self.assert_one_line(self.brindle("sleep", "off"), 1, "^brindle: sleep stays on: Max duration reached. ")
        self.assert_one_line(self.brindle("run", "--", "true"), 2, "^brindle: sleep stays on: Max duration reached. ")
        self.assertEqual(self.brindle("sleep", "on").returncode, 0)
        self.start_off().signal(signal.SIGINT)


if __name__ == "__main__":
    private_system.main("__main__")
