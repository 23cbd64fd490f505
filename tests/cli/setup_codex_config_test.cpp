#include "cli/setup_codex_config.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

constexpr CodexParts kBoth{.program = "/usr/bin/brindle"};
constexpr CodexParts kNotifyOnly{.program = "/usr/bin/brindle", .server = false};
const std::string kNotifyLines =
    "# >>> brindle notify >>> 'brindle setup codex --undo' takes these lines away\n"
    "notify = [\"/usr/bin/brindle\", \"notify\"]\n"
    "# <<< brindle notify\n";
const std::string kServerLines =
    "# >>> brindle mcp >>> 'brindle setup codex --undo' takes these lines away\n"
    "[mcp_servers.brindle]\n"
    "command = \"/usr/bin/brindle\"\n"
    "args = [\"mcp\"]\n"
    "# <<< brindle mcp\n";

TEST(SetupCodexConfig, PutsNotifyAtTheTopAndTheServerAtTheEnd) {
  EXPECT_EQ(withCodexParts("model = \"o\"\n[tui]\nx = 1\n", kBoth),
            EditedText{kNotifyLines + "model = \"o\"\n[tui]\nx = 1\n" + kServerLines});
  EXPECT_EQ(withCodexParts("", kBoth), EditedText{kNotifyLines + kServerLines});
  EXPECT_EQ(withCodexParts("", kNotifyOnly), EditedText{kNotifyLines});
}

TEST(SetupCodexConfig, GivesBackTheVeryTextWhenItsLinesAreTakenAway) {
  for (const std::string text :
       {"", "a = 1", "a = 1\n", "a = 1\n\n\n", "[t]\nx = 1", "a = 1\r\nb = 2\r\n", "a = 1\r\nb = 2",
        "\xEF\xBB\xBF"
        "a = 1\n",
        "# only a comment", "\n"}) {
    const EditedText added = withCodexParts(text, kBoth);
    ASSERT_EQ(added.problem, "") << text;
    ASSERT_NE(added.text, text);
    EXPECT_EQ(withCodexParts(added.text, kBoth), EditedText{added.text}) << "twice: " << text;
    EXPECT_EQ(withoutCodexParts(added.text, kBoth), EditedText{text});
  }
}

TEST(SetupCodexConfig, KeepsWhatFollowsAMarkerThatHasLostItsEnd) {
  for (const std::string text : {"# >>> brindle mcp\nmodel = \"o\"\n", "a = 1\n# >>> brindle notify\nb = 2\n",
                                 "# >>> brindle mcp\n# >>> brindle mcp\n[tui]\nx = 1\n"}) {
    const EditedText added = withCodexParts(text, kBoth);
    EXPECT_EQ(added, EditedText{kNotifyLines + text + kServerLines});
    EXPECT_EQ(withCodexParts(added.text, kBoth), added) << "twice";
    EXPECT_EQ(withoutCodexParts(added.text, kBoth), EditedText{text});
  }
}

TEST(SetupCodexConfig, PutsLinesOfAProgramThatHasMovedRight) {
  const EditedText old = withCodexParts("a = 1\n", {.program = "/old/brindle"});
  EXPECT_EQ(withCodexParts(old.text, kBoth), withCodexParts("a = 1\n", kBoth));
}

TEST(SetupCodexConfig, KeepsWhatOthersHaveWrittenAroundItsLines) {
  const EditedText added = withCodexParts("a = 1\n", kBoth);
  EXPECT_EQ(withoutCodexParts("# mine\n" + added.text + "[after]\nx = 1\n", kBoth),
            EditedText{"# mine\na = 1\n[after]\nx = 1\n"});
}

TEST(SetupCodexConfig, NeverOverwritesTheNotifyOfAnotherProgram) {
  const std::string theirs = "notify = [\"/usr/bin/terminal-notifier\", \"-x\"]\n";
  const EditedText edited = withCodexParts(theirs, kBoth);
  EXPECT_EQ(edited.text, theirs + kServerLines);
  EXPECT_EQ(edited.declined, std::vector<std::string>{"notify already runs /usr/bin/terminal-notifier; left alone"});
  EXPECT_EQ(edited.problem, "");
  EXPECT_EQ(withoutCodexParts(edited.text, kBoth), EditedText{theirs});
}

TEST(SetupCodexConfig, TakesANotifyOfAnyOtherFormForSomebodyElses) {
  for (const std::string theirs :
       {"notify = \"brindle\"\n", "notify = []\n", "notify = [1]\n", "notify = [\"/usr/bin/brindle\"]\n",
        "notify = [\"/usr/bin/brindle\", \"hook\"]\n"}) {
    const EditedText edited = withCodexParts(theirs, kNotifyOnly);
    EXPECT_EQ(edited.text, theirs);
    EXPECT_EQ(edited.declined.size(), 1u) << theirs;
  }
}

TEST(SetupCodexConfig, LeavesWhatSomebodyHasSetToBrindleByHand) {
  const std::string byHand =
      "notify = [\"/usr/bin/brindle\", \"notify\"]\n[mcp_servers.brindle]\ncommand = \"/usr/bin/brindle\"\nargs = "
      "[\"mcp\"]\n";
  EXPECT_EQ(withCodexParts(byHand, kBoth), EditedText{byHand});
  const EditedText removed = withoutCodexParts(byHand, kBoth);
  EXPECT_EQ(removed.text, byHand);
  EXPECT_EQ(removed.declined,
            (std::vector<std::string>{"notify runs brindle, but not between our marker lines; left alone",
                                      "the MCP server is not between our marker lines; left alone"}));
}

TEST(SetupCodexConfig, LeavesTheServerOfSomebodyElseAlone) {
  const std::string theirs = "[mcp_servers.brindle]\ncommand = \"other\"\n";
  const EditedText edited = withCodexParts(theirs, kBoth);
  EXPECT_EQ(edited.text, kNotifyLines + theirs);
  EXPECT_EQ(edited.declined.size(), 1u);
}

TEST(SetupCodexConfig, RefusesWhatItCannotReadOrExtend) {
  for (const std::string text : {"a = ", "[t", "a = 1\na = 2\n", "\xff",
                                 "x = [[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[["}) {
    EXPECT_EQ(withCodexParts(text, kBoth), (EditedText{.text = text, .problem = "not valid TOML"}));
    EXPECT_EQ(withoutCodexParts(text, kBoth), (EditedText{.text = text, .problem = "not valid TOML"}));
  }
  const std::string closed = "mcp_servers = { a = { command = \"x\" } }\n";
  EXPECT_EQ(withCodexParts(closed, kBoth),
            (EditedText{.text = closed, .problem = "nothing can be added to it as it is written"}));
}

TEST(SetupCodexConfig, DoesNotTakeMarkersInAValueForItsLines) {
  const std::string text = "a = '''\n# >>> brindle notify\n# <<< brindle notify'''\n";
  EXPECT_EQ(withoutCodexParts(text, kBoth).text, text);
}

TEST(SetupCodexConfig, QuotesThePathForToml) {
  const EditedText edited = withCodexParts("", {.program = "/a \"b\"\\c/brindle"});
  EXPECT_EQ(edited.problem, "");
  EXPECT_EQ(tomlServerState(edited.text, "/a \"b\"\\c/brindle"), ServerState::same);
}

TEST(SetupCodexConfig, TellsWhoseServerItIs) {
  EXPECT_EQ(tomlServerState(kServerLines, "/usr/bin/brindle"), ServerState::same);
  EXPECT_EQ(tomlServerState(kServerLines, "/new/brindle"), ServerState::stale);
  EXPECT_EQ(tomlServerState("[mcp_servers.brindle]\nurl = \"x\"\n", "/usr/bin/brindle"), ServerState::foreign);
  EXPECT_EQ(tomlServerState("[mcp_servers.other]\n", "/usr/bin/brindle"), ServerState::absent);
  EXPECT_EQ(tomlServerState("not = = toml", "/usr/bin/brindle"), ServerState::absent);
}

}  // namespace
}  // namespace brindle
