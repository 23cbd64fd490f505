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

std::string inRoom(std::size_t room, std::string first, std::string second) {
  TextTable table({{"A", Align::left, 20}, {"NUMBER", Align::right}, {"B", Align::left, 20}});
  table.add({std::move(first), "1", std::move(second)});
  return table.text(room);
}

TEST(TextTable, FitsIntoItsRoomByCuttingTheWidestCells) {
  const std::string first(12, 'a');
  const std::string second(20, 'b');
  const std::string whole = "A             NUMBER  B\naaaaaaaaaaaa       1  bbbbbbbbbbbbbbbbbbbb\n";
  EXPECT_EQ(inRoom(0, first, second), whole);
  EXPECT_EQ(inRoom(42, first, second), whole);
  EXPECT_EQ(inRoom(41, first, second),
            "A             NUMBER  B\naaaaaaaaaaaa       1  bbbbbbbbbbbbbbbbbb\xE2\x80\xA6\n");
  EXPECT_EQ(inRoom(30, first, second), "A           NUMBER  B\naaaaaaaaa\xE2\x80\xA6       1  bbbbbbbbb\xE2\x80\xA6\n");
}

TEST(TextTable, CutsNoCellBelowItsHeadingOrTheNarrowest) {
  const std::string narrow = "A         NUMBER  B\naaaaaaa\xE2\x80\xA6       1  bbbbbbb\xE2\x80\xA6\n";
  EXPECT_EQ(inRoom(26, std::string(12, 'a'), std::string(12, 'b')), narrow);
  EXPECT_EQ(inRoom(1, std::string(12, 'a'), std::string(12, 'b')), narrow);
  TextTable headed({{"A LONG HEADING", Align::left, 30}});
  headed.add({std::string(30, 'x')});
  EXPECT_EQ(headed.text(5), "A LONG HEADING\nxxxxxxxxxxxxx\xE2\x80\xA6\n");
}

TEST(TextTable, GivesTheLastColumnTheRoomThatIsLeft) {
  EXPECT_EQ(inRoom(0, "a", std::string(30, 'b')), "A  NUMBER  B\na       1  bbbbbbbbbbbbbbbbbbb\xE2\x80\xA6\n");
  EXPECT_EQ(inRoom(36, "a", std::string(30, 'b')), "A  NUMBER  B\na       1  bbbbbbbbbbbbbbbbbbbbbbbb\xE2\x80\xA6\n");
  EXPECT_EQ(inRoom(200, "a", std::string(30, 'b')), "A  NUMBER  B\na       1  " + std::string(30, 'b') + "\n");
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
