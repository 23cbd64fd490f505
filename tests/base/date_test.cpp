#include "base/date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brindle {
namespace {

TEST(Date, ConvertsToSecondsAndBackWithoutLoss) {
  for (const double seconds : {0.0, -0.25, 1761234567.123456, -62135596800.0, 1e300}) {
    EXPECT_EQ(secondsSince1970(dateFromSeconds(seconds)), seconds);
  }
  EXPECT_TRUE(std::isnan(secondsSince1970(dateFromSeconds(std::numeric_limits<double>::quiet_NaN()))));
}

TEST(Date, DiffersBySeconds) {
  EXPECT_EQ(dateFromSeconds(10.5) - dateFromSeconds(10), Seconds{0.5});
  EXPECT_EQ(dateFromSeconds(10) + std::chrono::minutes{1}, dateFromSeconds(70));
}

}  // namespace
}  // namespace brindle
