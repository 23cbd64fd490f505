#include "cli/option_parser.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/cli/sample_commands.h"

namespace brindle {
namespace {

using Words = std::vector<std::string>;
using namespace SampleCommands;

std::string parsed(const Command& command, const Words& words) {
  const ParsedArguments result = parseArguments(command, words);
  if (const auto* arguments = std::get_if<Arguments>(&result)) return shown(*arguments);
  if (const auto* problem = std::get_if<UsageProblem>(&result)) return "problem: " + problem->text;
  return "help";
}

TEST(OptionParser, SortsOptionsAndWordsInAnyOrder) {
  EXPECT_EQ(parsed(kVerbed, {"off", "--for", "4h", "--json"}), "--for=4h;--json=;[off]");
  EXPECT_EQ(parsed(kVerbed, {"--json", "--for=4h", "off"}), "--for=4h;--json=;[off]");
  EXPECT_EQ(parsed(kListed, {"1", "--json", "2", "-"}), "--json=;[1][2][-]");
}

TEST(OptionParser, TakesTheLastOfARepeatedOption) {
  EXPECT_EQ(parsed(kVerbed, {"--for", "1h", "off", "--for=2h"}), "--for=2h;[off]");
  EXPECT_EQ(parsed(kVerbed, {"off", "--json", "--json"}), "--json=;[off]");
}

TEST(OptionParser, TakesTheNextWordAsAValueWhateverItIs) {
  EXPECT_EQ(parsed(kVerbed, {"--for", "--json", "off"}), "--for=--json;[off]");
}

TEST(OptionParser, SaysWhichValueIsMissing) {
  EXPECT_EQ(parsed(kVerbed, {"off", "--for"}), "problem: --for: expected DURATION");
  EXPECT_EQ(parsed(kVerbed, {"off", "--for", ""}), "problem: --for: expected DURATION");
  EXPECT_EQ(parsed(kVerbed, {"off", "--framing"}), "problem: --framing: expected auto, lines or header");
}

TEST(OptionParser, TakesAnOptionalValueOrNone) {
  EXPECT_EQ(parsed(kBare, {}), "");
  EXPECT_EQ(parsed(kListed, {"1", "--watch"}), "--watch=;[1]");
  EXPECT_EQ(parsed(kListed, {"1", "--watch", "5"}), "--watch=5;[1]");
  EXPECT_EQ(parsed(kListed, {"1", "--watch=5"}), "--watch=5;[1]");
  EXPECT_EQ(parsed(kListed, {"1", "--watch", "--json"}), "--json=;--watch=;[1]");
}

TEST(OptionParser, RefusesAValueForAFlag) {
  EXPECT_EQ(parsed(kVerbed, {"off", "--json=false"}), "problem: --json takes no value");
  EXPECT_EQ(parsed(kVerbed, {"off", "--help=yes"}), "problem: --help takes no value");
}

TEST(OptionParser, RefusesUnknownAndShortenedOptions) {
  EXPECT_EQ(parsed(kVerbed, {"off", "--fro", "4h"}), "problem: unknown option --fro");
  EXPECT_EQ(parsed(kVerbed, {"off", "--js"}), "problem: unknown option --js");
  EXPECT_EQ(parsed(kVerbed, {"off", "-x"}), "problem: unknown option -x");
  EXPECT_EQ(parsed(kBare, {"--json"}), "problem: unknown option --json");
}

TEST(OptionParser, NamesTheChoicesOfAnOption) {
  EXPECT_EQ(parsed(kVerbed, {"off", "--framing", "lines"}), "--framing=lines;[off]");
  EXPECT_EQ(parsed(kVerbed, {"off", "--framing=x"}), "problem: --framing: expected auto, lines or header, got \"x\"");
}

TEST(OptionParser, NamesTheChoicesOfAWord) {
  EXPECT_EQ(parsed(kVerbed, {"of"}), "problem: expected off, on or status, got \"of\"");
  EXPECT_EQ(parsed(kVerbed, {}), "problem: expected off, on or status");
  EXPECT_EQ(parsed(kListed, {}), "problem: expected PID");
}

TEST(OptionParser, RefusesOneWordTooMany) {
  EXPECT_EQ(parsed(kVerbed, {"off", "on"}), "problem: unexpected argument \"on\"");
  EXPECT_EQ(parsed(kBare, {"x"}), "problem: unexpected argument \"x\"");
}

TEST(OptionParser, ReadsNoOptionsAfterTwoDashes) {
  EXPECT_EQ(parsed(kListed, {"--json", "--", "--for", "--"}), "--json=;[--for][--]");
}

TEST(OptionParser, KeepsWordsWithBracketsAndCommasWhole) {
  EXPECT_EQ(parsed(kListed, {"[a,b]", "{}", "%%", "c,d"}), "[[a,b]][{}][%%][c,d]");
  EXPECT_EQ(parsed(kVerbed, {"off", "--for=[1,2]"}), "--for=[1,2];[off]");
}

TEST(OptionParser, AsksForHelpWithEitherSpelling) {
  EXPECT_EQ(parsed(kVerbed, {"--help"}), "help");
  EXPECT_EQ(parsed(kVerbed, {"off", "-h"}), "help");
  EXPECT_EQ(parsed(kListed, {"--", "--help"}), "[--help]");
}

TEST(OptionParser, TakesNoColorForEveryCommand) { EXPECT_EQ(parsed(kBare, {"--no-color"}), "--no-color=;"); }

TEST(OptionParser, LeavesATrailingCommandAsItIs) {
  EXPECT_EQ(parsed(kTrailing, {"--for", "4h", "--", "make", "-j4", "--", "--for"}), "--for=4h;<make><-j4><--><--for>");
  EXPECT_EQ(parsed(kTrailing, {"make", "--json", "--help"}), "<make><--json><--help>");
  EXPECT_EQ(parsed(kTrailing, {"--json", "--for=4h", "sleep", "5"}), "--for=4h;--json=;<sleep><5>");
  EXPECT_EQ(parsed(kTrailing, {"--", "--json"}), "<--json>");
  EXPECT_EQ(parsed(kTrailing, {"--for", "--", "x"}), "--for=--;<x>");
  EXPECT_EQ(parsed(kTrailing, {}), "");
}

TEST(OptionParser, RefusesUnknownOptionsBeforeATrailingCommand) {
  EXPECT_EQ(parsed(kTrailing, {"--fro", "4h", "make"}), "problem: unknown option --fro");
  EXPECT_EQ(parsed(kTrailing, {"--help", "make"}), "help");
}

TEST(OptionParser, ReadsNothingOfARawCommand) {
  EXPECT_EQ(parsed(kRaw, {"--help", "--", "x", "--bad"}), "<--help><--><x><--bad>");
}

RC_GTEST_PROP(OptionParser, NeverThrowsForAnyWords, (const Words& words)) {
  for (const Command* command : kAll) static_cast<void>(parseArguments(*command, words));
}

RC_GTEST_PROP(OptionParser, NeverThrowsForWordsThatLookLikeOptions, ()) {
  const auto words = *rc::gen::container<Words>(rc::gen::element<std::string>(
      "--", "-", "--for", "--for=", "--json", "--json=", "--watch", "--watch=3", "-h", "--help=x", "off", "", "=",
      "-=", "---", "--=", "[", "[]", "--framing", "auto", "\"", "--for=\"4h\"", "%%", "++"));
  for (const Command* command : kAll) static_cast<void>(parseArguments(*command, words));
}

}  // namespace
}  // namespace brindle
