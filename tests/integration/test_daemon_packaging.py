"""The files that tell the system about the helper."""

import configparser
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

import private_system

ALLOWED_EXPOSURE = 1.0


def folder():
    return private_system.build_dir() / "packaging" / "linux"


@unittest.skipIf(shutil.which("systemd-analyze") is None, "SKIPPED: systemd-analyze is not installed")
class Unit(unittest.TestCase):
    def setUp(self):
        self.name = private_system.app_id() + ".helper"
        self.unit = folder() / f"{self.name}.service"

    def test_is_exposed_as_little_as_it_can_be(self):
        report = subprocess.run(["systemd-analyze", "security", "--offline=true", "--no-pager", str(self.unit)],
                                capture_output=True, text=True, check=True).stdout
        level = float(re.search(r"Overall exposure level for .*: ([0-9.]+)", report).group(1))
        self.assertLessEqual(level, ALLOWED_EXPOSURE, report)

    def test_is_understood_by_the_service_manager(self):
        with tempfile.TemporaryDirectory() as place:
            text = self.unit.read_text(encoding="ascii")
            program = private_system.build_dir() / "bin" / "BrindleHelper"
            installed, count = re.subn(r"(?m)^ExecStart=.*$", f"ExecStart={program}", text)
            self.assertEqual(count, 1)
            copy = private_system.pathlib.Path(place) / self.unit.name
            copy.write_text(installed, encoding="ascii")
            result = subprocess.run(["systemd-analyze", "verify", "--man=no", "--recursive-errors=no", str(copy)],
                                    capture_output=True, text=True, check=False)
            complaints = [line for line in result.stderr.splitlines() if self.unit.name in line]
            self.assertEqual(complaints, [], result.stderr)

    def test_starts_again_only_after_a_failure(self):
        self.assertIn("\nRestart=on-failure\n", self.unit.read_text(encoding="ascii"))

    def test_is_ended_after_a_minute_without_a_sign_of_life(self):
        self.assertIn("\nWatchdogSec=60\n", self.unit.read_text(encoding="ascii"))


class Names(unittest.TestCase):
    def setUp(self):
        self.name = private_system.app_id() + ".helper"

    def test_the_bus_starts_the_unit_for_the_name(self):
        activation = configparser.ConfigParser()
        activation.optionxform = str
        activation.read(folder() / "system-services" / f"{self.name}.service")
        service = activation["D-BUS Service"]
        self.assertEqual((service["Name"], service["User"]), (self.name, "root"))
        self.assertTrue((folder() / service["SystemdService"]).exists())

    def test_the_bus_lets_root_own_the_name_and_everybody_send_to_the_one_interface(self):
        policies = {}
        for policy in xml.parse(folder() / f"{self.name}.conf").getroot().iter("policy"):
            policies[policy.get("user") or policy.get("context")] = [rule.attrib for rule in policy]
        self.assertEqual(policies, {
            "root": [{"own": self.name}],
            "default": [{"send_destination": self.name, "send_interface": private_system.app_id() + ".Helper1"}]})

    def test_polkit_lets_whoever_sits_there_and_asks_everybody_else(self):
        action = xml.parse(folder() / f"{self.name}.policy").getroot().find("action")
        self.assertEqual(action.get("id"), self.name + ".disable-sleep")
        self.assertEqual({default.tag: default.text for default in action.find("defaults")},
                         {"allow_any": "auth_admin", "allow_inactive": "auth_admin", "allow_active": "yes"})


if __name__ == "__main__":
    private_system.main(__name__)
