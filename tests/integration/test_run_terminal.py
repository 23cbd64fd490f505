"""`brindle sleep off` and `brindle run` as a person uses them: keys, job control and the shell's view of it."""

import signal

import private_system
from command_case import CommandCase


class OnATerminal(CommandCase):
    def setUp(self):
        super().setUp()
        self.screen = self.terminal()

    def status(self, expected):
        """What the shell says about the command that has just ended."""
        self.screen.wait_for("ready> ")
        self.screen.run("echo status=$?")
        self.screen.wait_for(f"status={expected}\r\n")

    def test_ctrl_c_ends_sleep_off_in_order(self):
        self.screen.run(f"{self.program} sleep off --for 2h")
        self.screen.wait_for(r"Sleep is off for 2h; Ctrl-C switches it back on\.\r\n")
        self.assert_held()
        self.screen.type("\x03")
        self.screen.wait_for(r"\^C\r\nSleep is on\.\r\n")
        self.assert_not_held()
        self.status(130)

    def test_ctrl_c_reaches_the_command_once(self):
        script = "n=0; trap 'n=$((n+1))' INT; echo go; read line; echo interrupts=$n; exit 8"
        self.screen.run(f'{self.program} run -- bash -c "{script.replace("$", chr(92) + "$")}"')
        self.screen.wait_for("go\r\n")
        self.assert_held()
        self.screen.type("\x03")
        self.screen.wait_for(r"\^C")
        self.screen.type("\n")
        self.screen.wait_for("interrupts=1\r\n")
        self.status(8)
        self.assert_not_held()

    def test_ctrl_c_that_kills_the_command_is_seen_by_the_shell(self):
        self.screen.run(f"{self.program} run -- sh -c 'echo go; exec sleep 100'")
        self.screen.wait_for("go\r\n")
        self.screen.type("\x03")
        self.status(130)
        self.assert_not_held()

    def test_the_job_stops_and_goes_on_as_a_whole(self):
        self.screen.run(f"{self.program} run -- cat")
        self.screen.type("one\n")
        self.screen.wait_for("one\r\none\r\n")
        self.screen.type("\x1a")
        self.screen.wait_for("Stopped")
        self.status(128 + signal.SIGTSTP)
        self.screen.wait_for("ready> ")
        self.screen.run("fg")
        self.screen.wait_for("cat\r\n")
        self.screen.type("two\n")
        self.screen.wait_for("two\r\ntwo\r\n")
        self.assert_held()
        self.screen.type("\x04")
        self.status(0)
        self.assert_not_held()

    def test_a_command_that_stops_itself_stops_the_job(self):
        self.screen.run(f"{self.program} run -- sh -c 'kill -STOP $$; echo again; exit 6'")
        self.screen.wait_for("Stopped")
        self.screen.wait_for("ready> ")
        self.screen.run("fg")
        self.screen.wait_for("again\r\n")
        self.status(6)

    def test_a_job_in_the_background_goes_on_when_told(self):
        self.screen.run(f"{self.program} run -- sh -c 'kill -STOP $$; exit 6' &")
        self.screen.wait_for("ready> ")
        self.screen.run("while ! jobs | grep -q Stopped; do sleep 0.02; done; echo it has; echo stopped")
        self.screen.wait_for("it has\r\nstopped\r\n")
        self.screen.run("bg > /dev/null; wait %1; echo status=$?")
        self.screen.wait_for("status=6\r\n")

    def test_the_command_keeps_its_terminal(self):
        self.screen.run(f"{self.program} run -- sh -c 'test -t 0 && test -t 1 && test -t 2 && tty'")
        self.screen.wait_for(r"/dev/pts/\d+\r\n")
        self.status(0)

    def test_a_terminal_that_hangs_up_ends_both(self):
        self.screen.run(f"{self.program} run -- sh -c 'echo go; exec sleep 100'")
        self.screen.wait_for("go\r\n")
        self.assert_held()
        self.screen.close()
        self.screen = self.terminal()
        self.system.wait_lock(False)


if __name__ == "__main__":
    private_system.main("__main__")
