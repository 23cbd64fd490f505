#include "logic/reports/whole_seconds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brindle {
namespace {

TEST(WholeSeconds, TruncateTowardZero) {
  EXPECT_EQ(wholeSeconds(90.9), 90);
  EXPECT_EQ(wholeSeconds(-90.9), -90);
  EXPECT_EQ(wholeSeconds(0.0), 0);
}

TEST(WholeSeconds, ReachToTheEndsOfTheirRange) {
  const double beyond = std::ldexp(1.0, 63);
  EXPECT_EQ(wholeSeconds(-beyond), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(wholeSeconds(std::nextafter(beyond, 0)), 9223372036854774784);
}

TEST(WholeSecondsDeathTest, EndTheProgramBeyondTheirRange) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH((void)wholeSeconds(std::ldexp(1.0, 63)), "");
  EXPECT_DEATH((void)wholeSeconds(std::nextafter(-std::ldexp(1.0, 63), -1e300)), "");
  EXPECT_DEATH((void)wholeSeconds(std::numeric_limits<double>::quiet_NaN()), "");
  EXPECT_DEATH((void)wholeSeconds(std::numeric_limits<double>::infinity()), "");
}

}  // namespace
}  // namespace brindle
