#include "platform/clock.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(Clock, TellsTheWallClockInSecondsSince1970) {
  const double now = secondsSince1970(wallClockNow());
  EXPECT_GT(now, 1.7e9);  // later than 2023, and no milliseconds by mistake
  EXPECT_LT(now, 1e11);
}

}  // namespace
}  // namespace brindle
