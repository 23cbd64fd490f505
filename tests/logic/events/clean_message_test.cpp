#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

#include "base/text.h"
#include "logic/events/agent_event_parser.h"

namespace brindle {
namespace {

using AgentEventParser::cleanMessage;

std::string repeated(const std::string& character, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += character;
  return text;
}

TEST(CleanMessage, TakesTheFirstLineThatIsNotEmpty) {
  EXPECT_EQ(cleanMessage("\n\nfirst\nsecond"), "first");
  EXPECT_EQ(cleanMessage("first"), "first");
  EXPECT_EQ(cleanMessage("first\r\nsecond"), "first");
}

TEST(CleanMessage, EndsALineAtEveryNewlineCharacter) {
  for (const std::string newline : {"\n", "\v", "\f", "\r", "\r\n", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    EXPECT_EQ(cleanMessage(newline + "first" + newline + "second"), "first");
  }
}

TEST(CleanMessage, IsEmptyWhenThereIsNoLine) {
  EXPECT_EQ(cleanMessage(""), "");
  EXPECT_EQ(cleanMessage("\n"), "");
  EXPECT_EQ(cleanMessage("\n\r\n\xE2\x80\xA8\v"), "");
}

TEST(CleanMessage, KeepsBlanks) {
  EXPECT_EQ(cleanMessage("  first "), "  first ");
  EXPECT_EQ(cleanMessage("\n \nsecond"), " ");
}

TEST(CleanMessage, CutsBeyondAHundredAndSixtyCharacters) {
  EXPECT_EQ(cleanMessage(repeated("a", 159)), repeated("a", 159));
  EXPECT_EQ(cleanMessage(repeated("a", 160)), repeated("a", 160));
  EXPECT_EQ(cleanMessage(repeated("a", 161)), repeated("a", 157) + "...");
}

TEST(CleanMessage, CountsCharactersAsPeopleSeeThem) {
  const std::string combined = "e\xCC\x81";
  const std::string family = "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7";
  const std::string flag = "\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA";
  for (const std::string& character : {combined, family, flag}) {
    EXPECT_EQ(cleanMessage(repeated(character, 160)), repeated(character, 160));
    EXPECT_EQ(cleanMessage(repeated(character, 161)), repeated(character, 157) + "...");
  }
}

TEST(CleanMessage, CutsTheFirstLineAlone) {
  EXPECT_EQ(cleanMessage("short\n" + repeated("a", 500)), "short");
  EXPECT_EQ(cleanMessage(repeated("a", 161) + "\nshort"), repeated("a", 157) + "...");
}

TEST(CleanMessage, SurvivesInvalidBytes) {
  EXPECT_EQ(cleanMessage("\xFF\xFE\n"), "\xFF\xFE");
  EXPECT_EQ(cleanMessage(repeated("\xFF", 161)), repeated("\xFF", 157) + "...");
}

RC_GTEST_PROP(CleanMessageProperty, IsOneLineOfAtMostTheLimitThatCleaningLeavesAlone, ()) {
  const auto pieces = *rc::gen::container<std::vector<std::string>>(
      rc::gen::elementOf(std::vector<std::string>{"a", "bc", " ", "\n", "\r\n", "\xC2\x85", "e\xCC\x81",
                                                  "\xF0\x9F\x98\x80", "\xFF", "0123456789", "xxxxxxxxxxxxxxx"}));
  std::string text;
  for (const std::string& piece : pieces) text += piece;
  const std::string cleaned = cleanMessage(text);
  RC_ASSERT(characterCount(cleaned) <= AgentEventParser::messageLimit);
  RC_ASSERT(newlinePieces(cleaned).size() <= 1);
  RC_ASSERT(cleanMessage(cleaned) == cleaned);
}

}  // namespace
}  // namespace brindle
