"""Letting go for the battery and the heat: the real command on a made-up machine of power supplies and sensors."""

import signal
import subprocess

import private_system
from command_case import CommandCase

# The machine is asked every 15 seconds.
TICK_SECONDS = 25.0
HELD = "^Sleep is off for "
UNTIL_CLOSED = "echo ready; read line; exit 5"


class PowerCase(CommandCase):
    def setUp(self):
        if not private_system.is_root():
            self.skipTest("skipped: a machine of its own takes root")
        super().setUp()
        self.classes = self.system.folder / "class"
        for name in ("power_supply", "thermal", "devices"):
            (self.classes / name).mkdir(parents=True)

    def write(self, device, **attributes):
        folder = self.classes / "devices" / device
        if not folder.exists():
            folder.mkdir()
            # The kernel shows every device through a link.
            kind = "thermal" if device.startswith("thermal") else "power_supply"
            (self.classes / kind / device).symlink_to(f"../devices/{device}")
        for name, value in attributes.items():
            new = folder.with_name("new")
            new.write_text(f"{value}\n")
            new.rename(folder / name)  # never half written when it is read

    def battery(self, percent):
        self.write("BAT0", type="Battery", status="Discharging", present=1, capacity=percent)

    def plug(self, online):
        self.write("AC", type="Mains", online=online)

    def heat(self, degrees):
        self.write("thermal_zone0", type="cpu", temp=degrees * 1000, trip_point_0_type="hot", trip_point_0_temp=95_000,
                   trip_point_1_type="critical", trip_point_1_temp=105_000)

    def start_here(self, *words, stdin=subprocess.DEVNULL):
        """The command on the made-up machine."""
        script = f'mount --bind {self.classes} /sys/class && exec "$@"'
        return self.system.start(["unshare", "--mount", "sh", "-c", script, "sh", self.program, *words], stdin=stdin)

    def end(self, process, status=128 + signal.SIGINT):
        process.signal(signal.SIGINT)
        self.assertEqual(process.wait(), status, process.lines)
        self.assert_not_held()

    def wait_news(self, process, pattern):
        """A line that matches and has come since the last one that was waited for."""
        seen = getattr(process, "seen", 0)
        private_system.wait_until(lambda: len(process.lines) > seen, f"news; there are {process.lines}", TICK_SECONDS)
        self.assertRegex(process.lines[seen], pattern)
        process.seen = seen + 1


class AtTheStart(PowerCase):
    def check_held(self, *words):
        process = self.start_here("sleep", "off", *words)
        process.wait_line(HELD)
        self.assert_held()
        self.end(process)
        self.assertEqual(len(process.lines), 2, process.lines)

    def check_let_go(self, why, *words):
        process = self.start_here("sleep", "off", *words)
        self.wait_news(process, f"^brindle: sleep is on for now: {why}$")
        self.assertEqual(self.system.helper_locks(), [])
        self.end(process)

    def test_a_machine_that_tells_nothing_is_held(self):
        self.check_held()

    def test_on_battery_the_floor_decides(self):
        self.plug(0)
        self.battery(21)
        self.check_held()
        for percent in (20, 19):
            self.battery(percent)
            self.check_let_go(f"the battery is at {percent}%, holding again above 24% or on power")
            self.check_held("--battery-floor", str(percent - 1))

    def test_the_floor_is_the_persons(self):
        self.plug(0)
        self.battery(40)
        self.check_let_go("the battery is at 40%, holding again above 44% or on power", "--battery-floor", "40%")

    def test_on_power_an_empty_battery_is_held(self):
        self.plug(1)
        self.battery(1)
        self.check_held()

    def test_heat_decides_on_power_too(self):
        self.plug(1)
        self.battery(100)
        self.heat(94)
        self.check_held()
        self.heat(95)
        self.check_let_go(r"the machine is hot \(serious\), holding again when it has cooled")
        self.heat(104)
        self.check_let_go(r"the machine is hot \(critical\), holding again when it has cooled")

    def test_a_command_runs_without_the_hold(self):
        self.plug(0)
        self.battery(20)
        process = self.start_here("run", "--", "sh", "-c", UNTIL_CLOSED, stdin=subprocess.PIPE)
        process.wait_line("^ready$")
        self.assertEqual(process.lines[0], "brindle: sleep is on for now: the battery is at 20%, "
                                           "holding again above 24% or on power")
        self.assertEqual(self.system.helper_locks(), [])
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)


class Meanwhile(PowerCase):
    """Each change is seen at the next look at the machine, so these take their time."""

    def test_holds_are_let_go_and_taken_again_as_battery_and_heat_demand(self):
        self.plug(0)
        self.battery(21)
        usual = self.start_here("sleep", "off")
        self.wait_news(usual, HELD)
        lower = self.start_here("sleep", "off", "--battery-floor", "19")
        self.wait_news(lower, HELD)
        self.battery(19)
        self.wait_news(usual, "^brindle: sleep is on for now: the battery is at 19%, holding again above 24% or on power$")
        self.wait_news(lower, "^brindle: sleep is on for now: the battery is at 19%, holding again above 23% or on power$")
        self.assert_not_held()
        self.battery(24)
        self.wait_news(lower, HELD)
        self.assertEqual(len(usual.lines), usual.seen, "held again too early")
        self.assert_held()
        self.battery(25)
        self.wait_news(usual, HELD)
        self.heat(104)
        for process in (usual, lower):
            self.wait_news(process, r"^brindle: sleep is on for now: the machine is hot \(critical\)")
        self.assert_not_held()
        self.heat(60)
        self.wait_news(usual, HELD)
        self.wait_news(lower, HELD)
        lower.signal(signal.SIGINT)
        self.assertEqual(lower.wait(), 128 + signal.SIGINT)
        self.end(usual)

    def test_a_running_command_is_held_again_on_power(self):
        self.plug(0)
        self.battery(21)
        process = self.start_here("run", "--", "sh", "-c", UNTIL_CLOSED, stdin=subprocess.PIPE)
        self.wait_news(process, "^ready$")
        self.assert_held()
        self.battery(20)
        self.wait_news(process, "^brindle: sleep is on for now: the battery is at 20%")
        self.assert_not_held()
        self.plug(1)
        self.wait_news(process, "^brindle: sleep is off again$")
        self.assert_held()
        process.popen.stdin.close()
        self.assertEqual(process.wait(), 5)
        self.assertEqual(len(process.lines), process.seen, process.lines)
        self.assert_not_held()


if __name__ == "__main__":
    private_system.main("__main__")
