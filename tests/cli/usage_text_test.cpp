#include "cli/usage_text.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(UsageText, SaysWhatWasExpectedAndWhatCame) {
  EXPECT_EQ(expectedText({.subject = "--uid", .expected = "a user id", .got = "root"}),
            "--uid: expected a user id, got \"root\"");
  EXPECT_EQ(expectedText({.expected = ":PORT or PID", .got = ""}), "expected :PORT or PID, got \"\"");
}

}  // namespace
}  // namespace brindle
