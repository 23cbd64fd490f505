#include "base/lines.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using Lines = std::vector<std::string_view>;

TEST(NonEmptyLines, ArePiecesBetweenLineFeeds) { EXPECT_EQ(nonEmptyLines("a\nb c\n"), (Lines{"a", "b c"})); }

TEST(NonEmptyLines, EmptyPiecesAreLeftOut) {
  EXPECT_EQ(nonEmptyLines(""), Lines{});
  EXPECT_EQ(nonEmptyLines("\n\n\n"), Lines{});
  EXPECT_EQ(nonEmptyLines("\na\n\n\nb\n\n"), (Lines{"a", "b"}));
}

TEST(NonEmptyLines, ALastPieceWithoutLineFeedCounts) { EXPECT_EQ(nonEmptyLines("a\nb"), (Lines{"a", "b"})); }

TEST(NonEmptyLines, OnlyByteTenEndsALine) {
  const std::string_view text("a\r\nb\v\f\0c\xc2\x85\xe2\x80\xa8\n", 14);
  EXPECT_EQ(nonEmptyLines(text), (Lines{"a\r", text.substr(3, 10)}));
}

TEST(TakePiece, TakesTheSeparatorWithThePieceAndTheRestWhereThereIsNone) {
  std::string_view rest = "a::b";
  EXPECT_EQ(takePiece(rest, ':'), "a");
  EXPECT_EQ(rest, ":b");
  EXPECT_EQ(takePiece(rest, ':'), "");
  EXPECT_EQ(takePiece(rest, ':'), "b");
  EXPECT_EQ(rest, "");
  EXPECT_EQ(takePiece(rest, ':'), "");
}

}  // namespace
}  // namespace brindle
