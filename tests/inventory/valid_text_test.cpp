#include "inventory/valid_text.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

#include "base/text.h"

namespace brindle {
namespace {

TEST(ValidText, ReplacesEachByteOutsideUtf8) {
  EXPECT_EQ(validText("node"), "node");
  EXPECT_EQ(validText("caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(validText("a\xFF\xFE"
                      "b"),
            "a\xEF\xBF\xBD\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(validText("\xC3"), "\xEF\xBF\xBD");
  EXPECT_EQ(validText("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ValidText, IsAlwaysValidWhateverTheBytes) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; second += 5) {
      const std::string text{static_cast<char>(first), static_cast<char>(second), '\x80', 'z'};
      EXPECT_TRUE(isValidUtf8(validText(text)));
      EXPECT_TRUE(isValidUtf8(terminalText(text)));
    }
  }
}

TEST(TerminalText, ControlCharactersBecomeBlanks) {
  EXPECT_EQ(terminalText("a\nb\tc\rd"), "a b c d");
  EXPECT_EQ(terminalText("\x1b[31mred\x1b[0m"), " [31mred [0m");
  EXPECT_EQ(terminalText("\xC2\x9B"
                         "31m"),
            " 31m");
  EXPECT_EQ(terminalText("a\x7F"), "a ");
}

TEST(TerminalText, HiddenAndTurningCharactersAreLeftOut) {
  EXPECT_EQ(terminalText("a\xE2\x80\xAE"
                         "b"),
            "ab");  // right-to-left override
  EXPECT_EQ(terminalText("a\xE2\x81\xA6"
                         "b"),
            "ab");  // isolate
  EXPECT_EQ(terminalText("a\xE2\x80\x8B"
                         "b"),
            "ab");  // zero width space
  EXPECT_EQ(terminalText("\xEF\xBB\xBF"
                         "b"),
            "b");  // byte-order mark
  EXPECT_EQ(terminalText("a\xD8\x9C"
                         "b"),
            "ab");  // Arabic letter mark
}

TEST(TerminalText, EveryRangeOfTheInvisibleEndsWhereItsNeighboursBegin) {
  const auto bounds = std::to_array<std::pair<std::uint32_t, std::uint32_t>>({{0xAD, 0xAD},
                                                                              {0x61C, 0x61C},
                                                                              {0x180E, 0x180E},
                                                                              {0x200B, 0x200F},
                                                                              {0x202A, 0x202E},
                                                                              {0x2060, 0x206F},
                                                                              {0xFE00, 0xFE0F},
                                                                              {0xFEFF, 0xFEFF},
                                                                              {0xFFF9, 0xFFFB},
                                                                              {0xE0000, 0xE01EF}});
  for (const auto& [first, last] : bounds) {
    EXPECT_TRUE(isInvisible(first) && isInvisible(last)) << first;
    EXPECT_FALSE(isInvisible(first - 1) || isInvisible(last + 1)) << first;
  }
  EXPECT_EQ(terminalText("a\xF3\xA0\x81\x81z"), "az");  // a tag
  EXPECT_EQ(terminalText("a\xE2\x80\xA8z"), "a z");     // a line separator
}

TEST(TerminalText, OtherScriptsStay) {
  EXPECT_EQ(terminalText("\xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x9A\x80"), "\xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x9A\x80");
}

}  // namespace
}  // namespace brindle
