#include "cli/setup_run.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"
#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// A home folder, and a machine whose programs are only names.
struct SetupRunTest : testing::Test {
  int run(SetupAction action, std::optional<MCPClient> client = std::nullopt) {
    recorded.results.text.clear();
    recorded.remarks.text.clear();
    return runSetup({.action = action, .client = client}, machine, recorded.context);
  }
  std::string in(const std::string& name) const { return home.file(name); }
  void write(const std::string& name, const std::string& text) {
    fs::create_directories(fs::path(in(name)).parent_path());
    writeRaw(in(name), text);
  }

  TemporaryFolder home;
  RecordedContext recorded;
  std::set<std::string, std::less<>> programs;
  std::vector<std::vector<std::string>> ran;
  std::string runProblem;
  SetupMachine machine{.program = "/usr/bin/brindle",
                       .findProgram = [this](std::string_view name) -> std::optional<std::string> {
                         if (!programs.contains(name)) return std::nullopt;
                         return "/usr/bin/" + std::string(name);
                       },
                       .run =
                           [this](const std::vector<std::string>& words) {
                             ran.push_back(words);
                             return runProblem;
                           }};

 protected:
  void SetUp() override { recorded.variables["HOME"] = home.path(); }
};

TEST_F(SetupRunTest, ShowsTheSnippetOfEveryClientAndTouchesNothing) {
  EXPECT_EQ(run(SetupAction::show), 0);
  for (const auto& row : allCases<MCPClient>()) {
    const MCPConfigSnippet snippet = MCPConfigSnippet::make(row.value, "/usr/bin/brindle");
    EXPECT_NE(recorded.results.text.find(std::string(clientName(row.value)) + ": " + snippet.title + "\n\n" +
                                         snippet.text + "\n"),
              std::string::npos)
        << recorded.results.text;
  }
  EXPECT_EQ(home.entries(), 0u);
}

TEST_F(SetupRunTest, ShowsOnlyTheClientThatIsNamed) {
  EXPECT_EQ(run(SetupAction::show, MCPClient::claudeCode), 0);
  EXPECT_EQ(recorded.results.text,
            "Claude Code: Run in Terminal\n\nclaude mcp add --scope user brindle -- /usr/bin/brindle mcp\n");
}

TEST_F(SetupRunTest, AnswersOneWhenNoAgentIsUsedHere) {
  for (const SetupAction action : {SetupAction::dryRun, SetupAction::apply, SetupAction::undo}) {
    EXPECT_EQ(run(action), 1);
    EXPECT_EQ(recorded.remarks.text, "brindle: no agent is used here; name one to set it up all the same\n");
  }
  EXPECT_EQ(home.entries(), 0u);
}

TEST_F(SetupRunTest, SetsUpANamedAgentThatIsNotThereYetAndTakesAllOfItAway) {
  for (const auto& row : allCases<MCPClient>()) {
    EXPECT_EQ(run(SetupAction::apply, row.value), 0) << recorded.remarks.text;
    EXPECT_EQ(run(SetupAction::undo, row.value), 0) << recorded.remarks.text;
  }
  for (const auto& entry : fs::recursive_directory_iterator(home.path())) EXPECT_TRUE(entry.is_directory()) << entry;
}

TEST_F(SetupRunTest, GivesEverySettingsFileBackByteForByte) {
  const std::map<std::string, std::string> files = {
      {".claude/settings.json", "{ \"hooks\" : { }  , \"x\":[ 1,2 ]}"},
      {".claude.json", "{\n\t\"mcpServers\": {\n\n\t}\n}"},
      {".cursor/mcp.json", "{}"},
      {".codex/config.toml", "model = \"o\" # mine\n\n[tui]\nx = 1"},
  };
  for (const auto& [name, text] : files) write(name, text);
  EXPECT_EQ(run(SetupAction::apply), 0) << recorded.remarks.text;
  std::map<std::string, std::string> applied;
  for (const auto& [name, text] : files) {
    applied[name] = contentOf(in(name));
    EXPECT_NE(applied[name], text) << name;
    EXPECT_EQ(contentOf(backupPath(in(name))), text);
  }
  EXPECT_EQ(run(SetupAction::apply), 0);
  EXPECT_EQ(recorded.results.text,
            "Claude Code: nothing to change\nCursor: nothing to change\nCodex: nothing to change\n");
  for (const auto& [name, text] : applied) EXPECT_EQ(contentOf(in(name)), text) << name;
  EXPECT_EQ(run(SetupAction::undo), 0);
  for (const auto& [name, text] : files) {
    EXPECT_EQ(contentOf(in(name)), text) << name;
    EXPECT_FALSE(fs::exists(backupPath(in(name))));
  }
  EXPECT_TRUE(ran.empty());
}

TEST_F(SetupRunTest, ShowsInADryRunWhatApplyWouldDoAndTouchesNothing) {
  write(".cursor/mcp.json", "{}\n");
  programs = {"claude"};
  EXPECT_EQ(run(SetupAction::dryRun), 0);
  EXPECT_NE(recorded.results.text.find("--- /dev/null\n+++ " + in(".claude/settings.json") + "\n"), std::string::npos);
  EXPECT_NE(recorded.results.text.find(
                "Claude Code: would run: claude mcp add --scope user brindle -- /usr/bin/brindle mcp\n"),
            std::string::npos);
  EXPECT_NE(recorded.results.text.find("-{}\n+{\n+  \"mcpServers\": {\n"), std::string::npos) << recorded.results.text;
  EXPECT_TRUE(ran.empty());
  EXPECT_EQ(home.entries(), 1u);
  EXPECT_EQ(contentOf(in(".cursor/mcp.json")), "{}\n");
}

TEST_F(SetupRunTest, LetsAgentsRegisterTheServerThemselves) {
  programs = {"claude", "codex"};
  EXPECT_EQ(run(SetupAction::apply), 0);
  EXPECT_EQ(ran, (std::vector<std::vector<std::string>>{
                     {"claude", "mcp", "add", "--scope", "user", "brindle", "--", "/usr/bin/brindle", "mcp"},
                     {"codex", "mcp", "add", "brindle", "--", "/usr/bin/brindle", "mcp"}}));
  EXPECT_FALSE(fs::exists(in(".claude.json")));
  EXPECT_EQ(contentOf(in(".codex/config.toml")).find("mcp_servers"), std::string::npos);
}

TEST_F(SetupRunTest, RunsNoCommandForWhatIsRegisteredAlready) {
  programs = {"claude"};
  write(".claude.json", R"({"mcpServers":{"brindle":{"command":"/usr/bin/brindle","args":["mcp"]}}})");
  EXPECT_EQ(run(SetupAction::apply), 0);
  EXPECT_TRUE(ran.empty());
  EXPECT_EQ(run(SetupAction::undo), 0);
  EXPECT_EQ(ran, (std::vector<std::vector<std::string>>{{"claude", "mcp", "remove", "--scope", "user", "brindle"}}));
}

TEST_F(SetupRunTest, RegistersAProgramThatHasMovedAnew) {
  programs = {"codex"};
  write(".codex/config.toml", "[mcp_servers.brindle]\ncommand = \"/old/brindle\"\nargs = [\"mcp\"]\n");
  EXPECT_EQ(run(SetupAction::apply), 0);
  ASSERT_EQ(ran.size(), 2u);
  EXPECT_EQ(ran[0], (std::vector<std::string>{"codex", "mcp", "remove", "brindle"}));
  EXPECT_EQ(ran[1][2], "add");
}

TEST_F(SetupRunTest, AnswersTwoWhenACommandFails) {
  programs = {"claude"};
  runProblem = "ended with 1";
  EXPECT_EQ(run(SetupAction::apply), 2);
  EXPECT_EQ(recorded.remarks.text,
            "brindle: Claude Code: claude mcp add --scope user brindle -- /usr/bin/brindle mcp: ended with 1\n");
  EXPECT_TRUE(fs::exists(in(".claude/settings.json"))) << "the hooks are there all the same";
}

TEST_F(SetupRunTest, AnswersOneForWhatBelongsToSomebodyElse) {
  programs = {"claude"};
  write(".claude.json", R"({"mcpServers":{"brindle":{"command":"theirs"}}})");
  write(".codex/config.toml", "notify = [\"say\", \"done\"]\n");
  EXPECT_EQ(run(SetupAction::apply), 1);
  EXPECT_EQ(recorded.remarks.text, "brindle: Claude Code: " + in(".claude.json") +
                                       ": an MCP server \"brindle\" of somebody else is registered; left alone\n"
                                       "brindle: Codex: " +
                                       in(".codex/config.toml") + ": notify already runs say; left alone\n");
  EXPECT_TRUE(ran.empty());
  EXPECT_NE(contentOf(in(".codex/config.toml")).find("notify = [\"say\", \"done\"]\n"), std::string::npos);
}

TEST_F(SetupRunTest, AnswersTwoForSettingsThatDoNotParseAndDoesTheRest) {
  write(".claude/settings.json", "{ // mine\n}");
  write(".cursor/mcp.json", "{");
  write(".codex/config.toml", "a = = 1");
  EXPECT_EQ(run(SetupAction::apply), 2);
  EXPECT_EQ(recorded.remarks.text, "brindle: Claude Code: " + in(".claude/settings.json") +
                                       ": not valid JSON; left alone\nbrindle: Cursor: " + in(".cursor/mcp.json") +
                                       ": not valid JSON; left alone\nbrindle: Codex: " + in(".codex/config.toml") +
                                       ": not valid TOML; left alone\n");
  EXPECT_EQ(contentOf(in(".claude/settings.json")), "{ // mine\n}");
  EXPECT_TRUE(fs::exists(in(".claude.json")));
  EXPECT_EQ(run(SetupAction::undo), 2);
  EXPECT_EQ(contentOf(in(".codex/config.toml")), "a = = 1");
}

TEST_F(SetupRunTest, FollowsTheVariablesOfTheAgents) {
  recorded.variables["CLAUDE_CONFIG_DIR"] = in("elsewhere");
  recorded.variables["CODEX_HOME"] = in("codex home");
  EXPECT_EQ(run(SetupAction::apply, MCPClient::claudeCode), 0);
  EXPECT_EQ(run(SetupAction::apply, MCPClient::codex), 0);
  EXPECT_TRUE(fs::exists(in("elsewhere/settings.json")));
  EXPECT_TRUE(fs::exists(in("elsewhere/.claude.json")));
  EXPECT_TRUE(fs::exists(in("codex home/config.toml")));
  EXPECT_FALSE(fs::exists(in(".claude")));
  EXPECT_FALSE(fs::exists(in(".codex")));
}

TEST_F(SetupRunTest, RefusesAPathThatNoSettingsCanHold) {
  for (const char* path : {"/a\nb/brindle", "/\xff/brindle", "/a\x7f/brindle"}) {
    machine.program = path;
    EXPECT_EQ(run(SetupAction::apply, MCPClient::claudeCode), 2);
  }
  EXPECT_EQ(home.entries(), 0u);
}

}  // namespace
}  // namespace brindle
