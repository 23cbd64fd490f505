#include "cli/command_line.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "cli/help_text.h"
#include "tests/cli/recorded_context.h"
#include "tests/cli/sample_commands.h"

namespace brindle {
namespace {

using Words = std::vector<std::string>;
using SampleCommands::kAll;

struct Ran {
  int code;
  std::string results;
  std::string remarks;
  bool operator==(const Ran&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Ran& ran) {
  return stream << ran.code << " results: " << ran.results << " remarks: " << ran.remarks;
}

Ran ran(const Words& words) {
  RecordedContext recorded;
  const int code = runCommandLine(kAll, words, recorded.context);
  return {code, recorded.results.text, recorded.remarks.text};
}

TEST(CommandLine, RunsTheCommandAndAnswersItsExitCode) {
  EXPECT_EQ(ran({"sleep", "off", "--for", "4h"}), (Ran{1, "--for=4h;[off]", ""}));
}

TEST(CommandLine, ShowsItsHelpAsARemarkWhenNothingIsAsked) {
  EXPECT_EQ(ran({}), (Ran{2, "", overallHelp(kAll)}));
  EXPECT_EQ(ran({"--no-color"}), (Ran{2, "", overallHelp(kAll)}));
}

TEST(CommandLine, ShowsHelpAndVersionAsResults) {
  EXPECT_EQ(ran({"--help"}), (Ran{0, overallHelp(kAll), ""}));
  EXPECT_EQ(ran({"-h"}), (Ran{0, overallHelp(kAll), ""}));
  EXPECT_EQ(ran({"--version"}), (Ran{0, "brindle 1.3.0\n", ""}));
  EXPECT_EQ(ran({"sleep", "--help"}), (Ran{0, commandHelp(SampleCommands::kVerbed), ""}));
  EXPECT_EQ(ran({"--version", "x"}), (Ran{2, "", "brindle: --version: unexpected argument \"x\"\n"}));
  EXPECT_EQ(ran({"--help", "x"}), (Ran{2, "", "brindle: --help: unexpected argument \"x\"\n"}));
}

TEST(CommandLine, SuggestsTheCommandThatWasMeant) {
  EXPECT_EQ(ran({"slepe"}), (Ran{2, "", "brindle: unknown command \"slepe\"; did you mean \"sleep\"?\n"}));
  EXPECT_EQ(ran({"frobnicate"}),
            (Ran{2, "", "brindle: unknown command \"frobnicate\"; 'brindle --help' lists the commands\n"}));
}

TEST(CommandLine, RefusesUnknownOptionsBeforeTheCommand) {
  EXPECT_EQ(ran({"--json", "sleep"}), (Ran{2, "", "brindle: unknown option --json\n"}));
  EXPECT_EQ(ran({"--", "sleep"}), (Ran{2, "", "brindle: unknown option --\n"}));
}

TEST(CommandLine, EndsInTwoAndOneLineForWrongUsage) {
  EXPECT_EQ(ran({"sleep", "sideways"}), (Ran{2, "", "brindle: sleep: expected off, on or status, got \"sideways\"\n"}));
}

TEST(CommandLine, LetsARawCommandReadEverythingItself) {
  EXPECT_EQ(ran({"hook", "--help", "--version", "--no-color"}), (Ran{1, "<--help><--version><--no-color>", ""}));
}

TEST(CommandLine, ShowsTheHelpOfARawCommandOnlyAtATerminalAndWhenNothingElseIsAsked) {
  const auto atTerminal = [](const Words& words) {
    RecordedContext recorded;
    recorded.context.terminals.output = true;
    const int code = runCommandLine(kAll, words, recorded.context);
    return Ran{code, recorded.results.text, recorded.remarks.text};
  };
  EXPECT_EQ(atTerminal({"hook", "--help"}), (Ran{0, commandHelp(SampleCommands::kRaw), ""}));
  EXPECT_EQ(atTerminal({"hook", "-h"}), (Ran{0, commandHelp(SampleCommands::kRaw), ""}));
  EXPECT_EQ(atTerminal({"hook", "--help", "x"}), (Ran{1, "<--help><x>", ""}));
  EXPECT_EQ(ran({"hook", "--help"}), (Ran{1, "<--help>", ""}));
}

TEST(CommandLine, RefusesColourBeforeAndAfterTheCommand) {
  for (const Words& words : {Words{"--no-color", "ports"}, Words{"ports", "--no-color"}}) {
    RecordedContext recorded;
    Output coloured({.results = recorded.results, .remarks = recorded.remarks}, true);
    CommandContext context = {.output = coloured, .environment = recorded.context.environment};
    static_cast<void>(runCommandLine(kAll, words, context));
    EXPECT_FALSE(coloured.colour());
  }
}

TEST(CommandLine, EndsQuietlyWhenTheReaderHasGone) {
  RecordedContext recorded;
  recorded.results.code = EPIPE;
  EXPECT_EQ(runCommandLine(kAll, {"--help"}, recorded.context), 0);
  EXPECT_EQ(recorded.remarks.text, "");
}

TEST(CommandLine, EndsInTwoWhenResultsCannotBeWritten) {
  RecordedContext recorded;
  recorded.results.code = ENOSPC;
  EXPECT_EQ(runCommandLine(kAll, {"--help"}, recorded.context), 2);
  EXPECT_EQ(recorded.remarks.text, "brindle: write standard output: No space left on device\n");
}

}  // namespace
}  // namespace brindle
