"""Which identifiers the configure step takes. Usage: identity_test.py CMAKE SOURCE_DIR"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])


class Identity(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "cmake").mkdir()
        shutil.copy(SOURCE / "cmake/identity_config.h.in", self.folder / "cmake")

    def configure(self, **identifiers):
        words = [f"-DBRINDLE_{name}={value}" for name, value in identifiers.items()]
        return subprocess.run([CMAKE, *words, "-P", SOURCE / "cmake/BrindleIdentity.cmake"], cwd=self.folder,
                              capture_output=True, text=True, check=False)

    def assert_taken(self, **identifiers):
        result = self.configure(**identifiers)
        self.assertEqual(result.returncode, 0, result.stderr)
        text = (self.folder / "generated/generated/identity_config.h").read_text(encoding="utf-8")
        for value in identifiers.values():
            self.assertIn(f'"{value}"', text)

    def assert_refused(self, name, value):
        with self.subTest(name=name, value=value):
            result = self.configure(**{name: value})
            self.assertNotEqual(result.returncode, 0)
            self.assertIn(f"BRINDLE_{name}: expected ", result.stderr)
            self.assertFalse((self.folder / "generated").exists(), "nothing is written")

    def test_the_defaults_and_others_like_them_are_taken(self):
        self.assert_taken()
        self.assert_taken(APP_ID="org.example_1.Tool", TEAM_ID="A1B2C3D4E5", APP_GROUP_ID="group.org.example")

    def test_an_identifier_that_forms_no_bus_name_path_or_requirement_is_refused(self):
        for name in ("APP_ID", "APP_GROUP_ID"):
            for value in ("", "brindle", "app..brindle", ".app.brindle", "app.brindle.", "app.1brindle",
                          "app.brin-dle", 'app.brindle"', "app.brin dle", "app/brindle.x", "app.br\u00efndle",
                          "app.brindle\n"):
                self.assert_refused(name, value)

    def test_an_identifier_may_have_two_hundred_characters_and_no_more(self):
        longest = "app." + "b" * 196
        self.assert_taken(APP_ID=longest)
        shutil.rmtree(self.folder / "generated")
        self.assert_refused("APP_ID", longest + "b")

    def test_a_team_has_ten_upper_case_letters_and_digits(self):
        for value in ("", "BRINDLE00", "BRINDLE0000", "brindle000", "BRINDLE-00", 'BRINDLE00"', "BRINDLE 00"):
            self.assert_refused("TEAM_ID", value)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
