"""The story that scripts/demo tells: it ends well, it is told quickly, and it notices what is not as promised."""

import os
import pathlib
import subprocess
import tempfile
import unittest

import private_system

STORY = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "demo_story.py"


def tell(build, user=None):
    return subprocess.run(["/usr/bin/python3", "-B", str(STORY)], env={**os.environ, "BRINDLE_BUILD_DIR": str(build)},
                          capture_output=True, text=True, timeout=60, user=user)


class Demo(unittest.TestCase):
    def test_everything_is_as_promised(self):
        result = tell(private_system.build_dir())
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)
        self.assertNotIn("NOT AS PROMISED", result.stdout)
        self.assertEqual(result.stdout.count("[ok]"), 21)
        self.assertRegex(result.stdout, "21 observations in .* s, all as promised")

    def test_a_plain_user_is_told_that_the_login_manager_is_a_stand_in(self):
        if os.geteuid() != 0:
            self.skipTest("only root can become another user")
        result = tell(private_system.build_dir(), user=private_system.NOBODY)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertRegex(result.stdout, "^Login manager: a stand-in for the login manager .NOT the real one")

    def test_a_command_that_does_not_hold_is_noticed(self):
        with tempfile.TemporaryDirectory() as folder:
            fake = pathlib.Path(folder)
            for name in ("generated", "packaging"):
                (fake / name).symlink_to(private_system.build_dir() / name)
            (fake / "bin").mkdir()
            (fake / "bin" / "BrindleHelper").symlink_to(private_system.build_dir() / "bin" / "BrindleHelper")
            pretender = fake / "bin" / "brindle"
            pretender.write_text("#!/bin/sh\necho 'Sleep is on.'\nexit 1\n")
            pretender.chmod(0o755)
            result = tell(fake)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn("NOT AS PROMISED", result.stdout)


if __name__ == "__main__":
    private_system.main("__main__")
