#include "cli/text_table.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using Align = TextTable::Align;

TEST(TextTable, AlignsItsColumns) {
  TextTable table({{"PORT", Align::right}, {"NAME"}, {"NOTE"}});
  table.add({"80", "caddy", "x"});
  table.add({"50000", "a", ""});
  EXPECT_EQ(table.text(),
            " PORT  NAME   NOTE\n"
            "   80  caddy  x\n"
            "50000  a\n");
}

TEST(TextTable, LeavesOutColumnsWithoutAFilledCell) {
  TextTable table({{"A"}, {"B"}, {"C"}});
  table.add({"1", "", "3"});
  EXPECT_EQ(table.text(), "A  C\n1  3\n");
}

TEST(TextTable, CellsCannotSteerTheTerminal) {
  TextTable table({{"A"}});
  table.add({"x\x1b[2J\ny\xE2\x80\xAE"});
  EXPECT_EQ(table.text(), "A\nx [2J y\n");
}

TEST(TextTable, WideCharactersTakeTwoColumns) {
  TextTable table({{"A"}, {"B"}});
  table.add({"\xE6\x97\xA5\xE6\x9C\xAC", "x"});
  table.add({"abcd", "y"});
  EXPECT_EQ(table.text(), "A     B\n\xE6\x97\xA5\xE6\x9C\xAC  x\nabcd  y\n");
}

TEST(TextTable, LongCellsAreCutAtTheirLimit) {
  const auto cell = [](std::string text) {
    TextTable table({{"A", Align::left, 4}});
    table.add({std::move(text)});
    return table.text();
  };
  EXPECT_EQ(cell("abc"), "A\nabc\n");
  EXPECT_EQ(cell("abcd"), "A\nabcd\n");
  EXPECT_EQ(cell("abcde"), "A\nabc\xE2\x80\xA6\n");
}

TEST(Fitted, NeverSplitsACharacter) {
  EXPECT_EQ(fitted("\xE6\x97\xA5\xE6\x9C\xAC", 3), "\xE6\x97\xA5\xE2\x80\xA6");
  EXPECT_EQ(fitted("\xE6\x97\xA5\xE6\x9C\xAC", 2), "\xE2\x80\xA6");
  EXPECT_EQ(fitted("abc", 0), "");
  EXPECT_EQ(shownWidth("e\xCC\x81"), 1U);
  EXPECT_EQ(shownWidth(""), 0U);
}

}  // namespace
}  // namespace brindle
