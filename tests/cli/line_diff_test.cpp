#include "cli/line_diff.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

std::string diff(std::string_view before, std::string_view after) {
  return lineDiff({.beforeName = "a", .afterName = "b", .before = before, .after = after});
}

std::string numbered(int from, int to) {
  std::string text;
  for (int line = from; line <= to; ++line) text += std::to_string(line) + "\n";
  return text;
}

TEST(LineDiff, ShowsAChangeWithItsContext) {
  EXPECT_EQ(diff(numbered(1, 9), numbered(1, 4) + "five\n" + numbered(6, 9)),
            "--- a\n+++ b\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+five\n 6\n 7\n 8\n");
}

TEST(LineDiff, IsEmptyForEqualTexts) {
  EXPECT_EQ(diff("", ""), "");
  EXPECT_EQ(diff("a\n", "a\n"), "");
}

TEST(LineDiff, ShowsANewAndAVanishedFile) {
  EXPECT_EQ(diff("", "x\ny\n"), "--- a\n+++ b\n@@ -0,0 +1,2 @@\n+x\n+y\n");
  EXPECT_EQ(diff("x\ny\n", ""), "--- a\n+++ b\n@@ -1,2 +0,0 @@\n-x\n-y\n");
}

TEST(LineDiff, SaysWhereALastLineHasNoEnd) {
  EXPECT_EQ(diff("x", "x\ny"),
            "--- a\n+++ b\n@@ -1,1 +1,2 @@\n-x\n\\ No newline at end of file\n+x\n+y\n\\ No newline at end of file\n");
}

TEST(LineDiff, JoinsHunksThatMeetAndPartsThoseThatDoNot) {
  EXPECT_EQ(diff(numbered(1, 7), "0\n" + numbered(1, 6) + "seven\n"),
            "--- a\n+++ b\n@@ -1,7 +1,8 @@\n+0\n 1\n 2\n 3\n 4\n 5\n 6\n-7\n+seven\n");
  EXPECT_EQ(diff(numbered(1, 8), "0\n" + numbered(1, 8) + "9\n"),
            "--- a\n+++ b\n@@ -1,3 +1,4 @@\n+0\n 1\n 2\n 3\n@@ -6,3 +7,4 @@\n 6\n 7\n 8\n+9\n");
}

TEST(LineDiff, ShowsTextsThatAreTooLongForItAsOneChange) {
  const std::string before = "x\n" + numbered(1, 3000) + "y\n";
  const std::string after = "z\n" + numbered(1, 3000) + "w\n";
  const std::string shown = diff(before, after);
  EXPECT_EQ(shown.substr(0, 34), "--- a\n+++ b\n@@ -1,3002 +1,3002 @@\n");
}

}  // namespace
}  // namespace brindle
