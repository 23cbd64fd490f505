"""`brindle setup` on the settings of agents in a home folder, with stand-ins for the agents' own programs."""
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from hook_case import STOP, HookCase
from namespaces import can_unshare
from watched_process import WAIT_SECONDS

SETTINGS = """{
    "model": "opus",
    "permissions": { "allow": ["Bash(npm test)"], "deny": [ ] },
    "hooks": {
        "Stop": [
            { "matcher": "", "hooks": [ { "type": "command", "command": "say done" } ] }
        ]
    }
}
"""
CONFIG = 'model = "o"   # the cheap one\n\n[tui]\nnotifications = true'
# Keeps its servers as the real program does, in one line of JSON.
CLAUDE = """echo "$*" >> "$HOME/ran"
case "$2" in
add) echo "{\\"mcpServers\\":{\\"brindle\\":{\\"command\\":\\"$7\\",\\"args\\":[\\"$8\\"]}}}" > "$HOME/.claude.json" ;;
remove) echo '{"mcpServers":{}}' > "$HOME/.claude.json" ;;
esac
"""


def tree_of(folder):
    """Every file below the folder, with its bytes."""
    return {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


class SetupCase(HookCase):
    def setUp(self):
        super().setUp()
        self.files = {".claude/settings.json": SETTINGS, ".cursor/mcp.json": '{"mcpServers": {}}',
                      ".codex/config.toml": CONFIG}
        for name, text in self.files.items():
            path = self.home / name
            path.parent.mkdir()
            path.write_text(text)

    def setup_agents(self, *words, status=0, **options):
        """Standard output of the command, which must end with this status."""
        result = self.brindle("setup", *words, **options)
        self.assertEqual(result.returncode, status, result.stderr.decode())
        return result.stdout.decode()

    def text(self, name):
        return (self.home / name).read_text()

    def tree(self):
        return tree_of(self.home)


class RoundTrip(SetupCase):
    def test_undo_gives_every_file_back(self):
        before = self.tree()
        self.setup_agents("--apply")
        applied = self.tree()
        self.assertNotEqual(applied[".claude/settings.json"], before[".claude/settings.json"])
        self.assertEqual(applied[".claude/settings.json.brindle-backup"], before[".claude/settings.json"])
        self.assertEqual(self.setup_agents("--apply").count("nothing to change"), 3)
        self.assertEqual(self.tree(), applied)
        self.setup_agents("--undo")
        self.assertEqual(self.tree(), before)
        self.assertEqual(self.setup_agents("--undo").count("nothing to change"), 3)

    def test_the_hook_that_is_installed_works(self):
        self.setup_agents("--apply")
        hooks = json.loads(self.text(".claude/settings.json"))["hooks"]
        self.assertEqual(hooks["Stop"][0], json.loads(SETTINGS)["hooks"]["Stop"][0])
        for event, group in (("Stop", 1), ("Notification", 0)):
            entry = hooks[event][group]["hooks"][0]
            self.assertEqual(entry["type"], "command")
            subprocess.run(["sh", "-c", entry["command"]], input=STOP.encode(), env=self.env, check=True)
        self.assertEqual(len(self.lines()), 2)

    def test_the_program_may_lie_in_a_folder_with_blanks_and_quotes(self):
        folder = self.home / "it's a \"folder\""
        folder.mkdir()
        shutil.copy(self.program, folder / "brindle")
        subprocess.run([folder / "brindle", "setup", "claude", "--apply"], env=self.env, check=True,
                       stdout=subprocess.DEVNULL)
        hooks = json.loads(self.text(".claude/settings.json"))["hooks"]
        subprocess.run(["sh", "-c", hooks["Stop"][1]["hooks"][0]["command"]], input=STOP.encode(), env=self.env,
                       check=True)
        self.assertEqual(len(self.lines()), 1)
        self.setup_agents("claude", "--apply")
        command = json.loads(self.text(".claude/settings.json"))["hooks"]["Stop"][1]["hooks"][0]["command"]
        self.assertEqual(command, f"{os.path.realpath(self.program)} hook")

    def test_a_path_that_outlives_the_next_version_is_written(self):
        (self.home / "bin").mkdir()
        (self.home / "bin" / "brindle").symlink_to(self.program)
        self.setup_agents("codex", "--apply", env={"PATH": f"{self.home}/bin:/usr/bin:/bin"})
        self.assertIn(f'notify = ["{self.home}/bin/brindle", "notify"]\n', self.text(".codex/config.toml"))

    def test_what_dry_run_shows_is_what_apply_does(self):
        if not shutil.which("patch"):
            self.skipTest("patch is not installed")
        copy = pathlib.Path(tempfile.mkdtemp(prefix="brindle-setup-"))
        self.addCleanup(shutil.rmtree, copy)
        before = self.tree()
        diff = self.setup_agents("--dry-run")
        self.assertEqual(self.tree(), before)
        shutil.copytree(self.home, copy, dirs_exist_ok=True)
        # patch takes no absolute paths.
        subprocess.run(["patch", "-p0", "-d", str(copy)], input=diff.replace(f"{self.home}/", "").encode(), check=True,
                       stdout=subprocess.DEVNULL)
        self.setup_agents("--apply")
        applied = {name: text for name, text in self.tree().items() if not name.endswith(".brindle-backup")}
        self.assertEqual(tree_of(copy), applied)


class Agents(SetupCase):
    """Where an agent has a command for its servers, that command is run."""

    def test_claude_registers_and_takes_back_the_server(self):
        self.script("claude", CLAUDE)
        env = {"PATH": f"{self.home}/bin:/usr/bin:/bin"}
        program = os.path.realpath(self.program)
        self.assertIn("Claude Code: ran claude mcp add", self.setup_agents("claude", "--apply", env=env))
        self.assertEqual(self.text("ran"), f"mcp add --scope user brindle -- {program} mcp\n")
        self.assertIn("nothing to change", self.setup_agents("claude", "--apply", env=env))
        self.setup_agents("claude", "--undo", env=env)
        self.assertEqual(self.text("ran").splitlines()[1:], ["mcp remove --scope user brindle"])
        self.assertEqual(self.text(".claude/settings.json"), SETTINGS)

    def test_a_command_that_fails_is_told(self):
        self.script("codex", "exit 3\n")
        result = self.brindle("setup", "codex", "--apply", env={"PATH": f"{self.home}/bin:/usr/bin:/bin"})
        self.assertEqual(result.returncode, 2)
        self.assertRegex(result.stderr.decode(), r"^brindle: Codex: codex mcp add brindle -- \S+ mcp: ended with 3\n$")


class Refusals(SetupCase):
    def test_settings_that_do_not_parse_stay_as_they_are(self):
        (self.home / ".claude/settings.json").write_text("{ broken")
        result = self.brindle("setup", "claude", "--apply")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr.decode(),
                         f"brindle: Claude Code: {self.home}/.claude/settings.json: not valid JSON; left alone\n")
        self.assertEqual(self.text(".claude/settings.json"), "{ broken")

    def test_the_notify_of_another_program_stays(self):
        config = 'notify = ["/usr/bin/notify-send", "Codex"]\n'
        (self.home / ".codex/config.toml").write_text(config)
        result = self.brindle("setup", "codex", "--apply")
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"notify already runs /usr/bin/notify-send; left alone\n", result.stderr)
        self.assertTrue(self.text(".codex/config.toml").startswith(config))
        self.setup_agents("codex", "--undo")
        self.assertEqual(self.text(".codex/config.toml"), config)

    def test_only_one_action_and_only_known_clients(self):
        before = self.tree()
        for words in (["--apply", "--undo"], ["--dry-run", "--apply"], ["emacs"], ["claude", "codex"], ["--force"]):
            self.setup_agents(*words, status=2)
        self.assertEqual(self.tree(), before)

    @unittest.skipUnless(can_unshare("--mount"), "needs the right to mount")
    def test_a_full_disk_leaves_the_settings_whole(self):
        script = """mount --make-rprivate / && mount -t tmpfs -o size=16k,mode=0700 none "$HOME/.claude" || exit 77
        cp "$HOME/original" "$HOME/.claude/settings.json"
        cat /dev/zero > "$HOME/.claude/fill" 2>/dev/null
        "$1" setup claude --apply; status=$?
        cmp "$HOME/original" "$HOME/.claude/settings.json" || exit 99
        test -e "$HOME/.claude/settings.json.brindle-backup" && exit 98
        exit $status"""
        (self.home / "original").write_text(SETTINGS)
        result = subprocess.run(["unshare", "-m", "sh", "-c", script, "-", self.program], env=self.env,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=WAIT_SECONDS)
        if result.returncode == 77:
            self.skipTest("mounting is not allowed here")
        self.assertEqual(result.returncode, 2, result.stderr.decode())
        self.assertIn(b"No space left on device", result.stderr)


if __name__ == "__main__":
    unittest.main()
