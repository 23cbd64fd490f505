"""The completion script as bash runs it; the other shells' when they are installed."""

import shutil
import subprocess
import unittest

import private_system

PROGRAM = str(private_system.build_dir() / "bin" / "brindle")


def script(shell):
    return subprocess.run([PROGRAM, "completion", shell], capture_output=True, text=True, check=True).stdout


def complete(*words):
    """What bash offers for the last of `words`."""
    line = "\n".join([script("bash"), "COMP_WORDS=(brindle " + " ".join(f"'{word}'" for word in words) + ")",
                      f"COMP_CWORD={len(words)}", "_brindle", 'printf "%s\\n" "${COMPREPLY[@]}"'])
    return subprocess.run(["bash", "--norc", "-u", "-c", line], capture_output=True, text=True,
                          check=True).stdout.split()


class Bash(unittest.TestCase):
    def test_commands(self):
        self.assertEqual(complete("sle"), ["sleep"])
        self.assertIn("run", complete(""))
        self.assertEqual(complete("--no"), ["--no-color"])

    def test_words_and_options_of_a_command(self):
        self.assertEqual(complete("sleep", "o"), ["off", "on"])
        self.assertEqual(complete("sleep", "off", "--f"), ["--for"])
        self.assertEqual(complete("--no-color", "sleep", "st"), ["status"])
        self.assertEqual(complete("completion", ""), ["bash", "zsh", "fish", "--help", "--no-color"])

    def test_nothing_of_ours_where_a_value_or_an_unknown_command_is(self):
        self.assertEqual(complete("sleep", "off", "--for", ""), [])
        self.assertEqual(complete("nonesuch", "o"), [])

    def test_the_script_loads_silently(self):
        result = subprocess.run(["bash", "--norc", "-u", "-c", script("bash") + "complete -p brindle"],
                                capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(result.stdout, "complete -o default -F _brindle brindle\n")


@unittest.skipIf(shutil.which("fish") is None, "skipped: there is no fish")
class Fish(unittest.TestCase):
    def offers(self, line):
        """The words that fish offers for the last one of `line`, without their descriptions."""
        asked = subprocess.run(["fish", "--no-config", "-c", "source -; complete -C $argv[1]", line], input=script("fish"),
                               capture_output=True, text=True, check=True)
        self.assertEqual(asked.stderr, "")
        return [row.split("\t")[0] for row in asked.stdout.splitlines()]

    def test_commands_words_and_options(self):
        self.assertEqual(self.offers("brindle sle"), ["sleep"])
        self.assertEqual(self.offers("brindle sleep o"), ["off", "on"])
        self.assertEqual(self.offers("brindle sleep off --f"), ["--for"])
        self.assertEqual(self.offers("brindle mcp --framing "), ["auto", "header", "lines"])
        self.assertEqual(self.offers("brindle help st"), ["status", "stop"])

    def test_no_files_where_a_command_is_meant(self):
        self.assertNotIn("README.md", self.offers("brindle "))

    def test_the_commands_of_the_machine_where_one_is_run(self):
        self.assertIn("printf", self.offers("brindle run -- print"))


class OtherShells(unittest.TestCase):
    def parse(self, shell):
        if shutil.which(shell) is None:
            self.skipTest(f"{shell} is not installed")
        result = subprocess.run([shell, "-n"], input=script(shell), capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_zsh_parses_its_script(self):
        self.parse("zsh")

    def test_fish_parses_its_script(self):
        self.parse("fish")


if __name__ == "__main__":
    unittest.main(verbosity=2)
