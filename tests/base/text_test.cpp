#include "base/text.h"

#include <gtest/gtest.h>

#include "tests/base/golden.h"

namespace brindle {
namespace {

using Pieces = std::vector<std::string_view>;

TEST(Text, MatchesEveryReferenceRow) {
  constexpr std::size_t kMost = 160;
  constexpr std::size_t kKept = 157;
  for (const JsonObject& row : goldenRows("text.json")) {
    const std::string text = textIn(row, "text");
    EXPECT_EQ(static_cast<std::int64_t>(characterCount(text)), integerMember(row, "characters")) << text;
    EXPECT_EQ(lowerCase(text), textIn(row, "lower"));
    const Pieces pieces = newlinePieces(text);
    const JsonArray* expected = arrayMember(row, "pieces");
    ASSERT_NE(expected, nullptr);
    ASSERT_EQ(pieces.size(), expected->size()) << text;
    for (std::size_t index = 0; index < pieces.size(); ++index) EXPECT_EQ(pieces[index], *(*expected)[index].string());
    const std::string_view first = pieces.empty() ? std::string_view() : pieces.front();
    const bool cut = characterCount(first) > kMost;
    const std::string shortened = cut ? std::string(firstCharacters(first, kKept)) + "..." : std::string(first);
    EXPECT_TRUE(shortened == textIn(row, "first piece cut at 160")) << text;
  }
}

TEST(TrimWhiteSpace, MatchesEveryReferenceRow) {
  // The platform's character set holds U+200B beside the white space of Unicode; trimming here follows Unicode.
  constexpr std::string_view kZeroWidthSpace = "\xE2\x80\x8B";
  std::size_t left = 0;
  for (const JsonObject& row : goldenRows("characters.json")) {
    const std::string c = textIn(row, "character");
    const std::string trimmed = "[" + std::string(trimWhiteSpace(c + "x" + c)) + "]";
    if (c == kZeroWidthSpace) {
      EXPECT_EQ(trimmed, "[" + c + "x" + c + "]");
      ++left;
      continue;
    }
    EXPECT_EQ(trimmed, textIn(row, "trimmed whitespacesAndNewlines"));
  }
  EXPECT_EQ(left, 1U);
}

TEST(TrimWhiteSpace, TakesEveryCharacterOfThePropertyFromBothEnds) {
  for (const char* space :
       {"\t", "\n", "\v", "\f", "\r", " ", "\xC2\x85", "\xC2\xA0", "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x8A",
        "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"}) {
    const std::string text = std::string(space) + space + "a " + "b" + space;
    EXPECT_EQ(trimWhiteSpace(text), "a b");
    EXPECT_EQ(trimWhiteSpace(space), "");
  }
  for (const char* other : {"\x08", "\x0E", "\x1C", "\xC2\x84", "\xE2\x80\x8B", "\xE2\x81\xA0", "\xEF\xBB\xBF"}) {
    EXPECT_EQ(trimWhiteSpace(other), other);
  }
}

TEST(TrimWhiteSpace, LeavesBytesThatAreNoText) {
  EXPECT_EQ(trimWhiteSpace(" \xA0 "), "\xA0");  // a continuation byte alone is no no-break space
  EXPECT_EQ(trimWhiteSpace("x\x80\x80\x80\x80\x80"), "x\x80\x80\x80\x80\x80");
  EXPECT_EQ(trimWhiteSpace("\xC2\x85\x85"), "\x85");
}

TEST(CharacterCount, CountsEachOffendingByteAsOne) {
  EXPECT_EQ(characterCount("\xFF\xFE"), 2U);
  EXPECT_EQ(characterCount("a\xC3"), 2U);
  EXPECT_EQ(characterCount("\xED\xA0\x80"), 3U);  // a surrogate
  EXPECT_EQ(characterCount("\xC0\x80"), 2U);      // overlong
  EXPECT_EQ(characterCount("\xFF\xCC\x81"), 2U);  // a mark cannot join such a byte
}

TEST(CharacterCount, KeepsOnlyCarriageReturnAndLineFeedTogether) {
  EXPECT_EQ(characterCount("\r\n"), 1U);
  EXPECT_EQ(characterCount("\n\r"), 2U);
  EXPECT_EQ(characterCount("\r\r\n\n"), 3U);
}

TEST(CharacterCount, KeepsConsonantsThatAViramaJoins) {
  EXPECT_EQ(characterCount("\u0915\u094D\u0937"), 1U);
  EXPECT_EQ(characterCount("\u0915\u094D\u200D\u0937"), 1U);
  EXPECT_EQ(characterCount("\u0915\u094D\u094D\u0937\u094D\u092F"), 1U);
  EXPECT_EQ(characterCount("\u0915\u0937"), 2U);
  EXPECT_EQ(characterCount("\u0915\u094Da\u0937"), 3U);
  EXPECT_EQ(characterCount("\u0915\u094D\u093F\u0937"), 2U);  // a vowel sign ends the conjunct
  EXPECT_EQ(characterCount("a\u094D\u0937"), 2U);
  EXPECT_EQ(characterCount("\u0B95\u0BCD\u0BB7"), 2U);  // Tamil has no such rule
}

TEST(FirstCharacters, CutsJustBelowAtAndJustAboveTheCount) {
  const std::string text = "e\xCC\x81xy";
  EXPECT_EQ(firstCharacters(text, 0), "");
  EXPECT_EQ(firstCharacters(text, 1), "e\xCC\x81");
  EXPECT_EQ(firstCharacters(text, 2), "e\xCC\x81x");
  EXPECT_EQ(firstCharacters(text, 3), text);
  EXPECT_EQ(firstCharacters(text, 4), text);
  EXPECT_EQ(firstCharacters("", 5), "");
}

TEST(NewlinePieces, LeavesOutEmptyPieces) {
  EXPECT_EQ(newlinePieces("\n\na\r\n\r\nb\n"), (Pieces{"a", "b"}));
  EXPECT_EQ(newlinePieces("\r\n"), Pieces{});
  EXPECT_EQ(newlinePieces("a\xE2\x80\xA8"
                          "b\xC2\x85"
                          "c"),
            (Pieces{"a", "b", "c"}));
}

TEST(LowerCase, MapsBeyondAsciiAndKeepsBytesThatAreNoText) {
  EXPECT_EQ(lowerCase("AZ[@`az"), "az[@`az");
  EXPECT_EQ(lowerCase("\xC4\xB0"), "i\xCC\x87");
  EXPECT_EQ(lowerCase("A\xFF\xC3"), "a\xFF\xC3");
  EXPECT_EQ(lowerCase("\xF0\x90\x90\x80"), "\xF0\x90\x90\xA8");
}

TEST(BeginsWithAnyCase, TakesAsciiLettersAloneAsLowerCase) {
  EXPECT_TRUE(beginsWithAnyCase("AmZ-[1", "amz-["));
  EXPECT_TRUE(beginsWithAnyCase("az", "az"));
  EXPECT_TRUE(beginsWithAnyCase("anything", ""));
  EXPECT_FALSE(beginsWithAnyCase("a", "az"));
  EXPECT_FALSE(beginsWithAnyCase("bz", "az"));
  EXPECT_FALSE(beginsWithAnyCase("{", "["));
  EXPECT_FALSE(beginsWithAnyCase("\xE2\x84\xAA", "k"));  // the Kelvin sign, which is "k" in full lower case
}

TEST(IsValidUtf8, RefusesEveryKindOfBadForm) {
  EXPECT_TRUE(isValidUtf8(""));
  EXPECT_TRUE(isValidUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_TRUE(isValidUtf8("\xF4\x8F\xBF\xBF"));
  for (const char* bad : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xED\xBF\xBF",
                          "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFF", "\xE2\x82", "\xF0\x9F\x98"}) {
    EXPECT_FALSE(isValidUtf8(bad));
  }
}

TEST(ScalarLength, IsZeroWhereNoScalarBegins) {
  EXPECT_EQ(scalarLength(""), 0U);
  EXPECT_EQ(scalarLength(std::string_view("\0", 1)), 1U);
  EXPECT_EQ(scalarLength("\xF0\x9F\x98\x80x"), 4U);
  EXPECT_EQ(scalarLength("\x80"), 0U);
}

TEST(LastPathComponent, MatchesEveryReferenceRow) {
  for (const JsonObject& row : goldenRows("last-path-component.json")) {
    EXPECT_EQ(lastPathComponent(textIn(row, "path")), textIn(row, "NSString")) << textIn(row, "path");
  }
}

TEST(Joined, PutsTheSeparatorOnlyBetween) {
  EXPECT_EQ(joined({}, ", "), "");
  EXPECT_EQ(joined({"a"}, ", "), "a");
  EXPECT_EQ(joined({"a", "", "b"}, ", "), "a, , b");
}

}  // namespace
}  // namespace brindle
