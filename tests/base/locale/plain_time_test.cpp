#include "base/locale/plain_time.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

TEST(PlainTime, ShowsLocalHoursAndMinutesWithTwoDigits) {
  EXPECT_EQ(plainTime(dateFromSeconds(0), TimeZone()), "00:00");
  EXPECT_EQ(plainTime(dateFromSeconds(59), TimeZone()), "00:00");
  EXPECT_EQ(plainTime(dateFromSeconds(60), TimeZone()), "00:01");
  EXPECT_EQ(plainTime(dateFromSeconds(86399), TimeZone()), "23:59");
  EXPECT_EQ(plainTime(dateFromSeconds(0), TimeZone::fixed(hours{5} + minutes{30})), "05:30");
  EXPECT_EQ(plainTime(dateFromSeconds(0), TimeZone::fixed(-hours{1})), "23:00");
  EXPECT_EQ(plainTime(dateFromSeconds(-1), TimeZone()), "23:59");
}

TEST(PlainTime, BoundsDatesToTheYearsOfFourDigits) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(boundedToFourDigitYears(dateFromSeconds(1.75)), dateFromSeconds(1));
  EXPECT_EQ(boundedToFourDigitYears(dateFromSeconds(-1.75)), dateFromSeconds(-2));
  EXPECT_EQ(boundedToFourDigitYears(dateFromSeconds(infinity)), dateFromSeconds(253402300799.0));
  EXPECT_EQ(boundedToFourDigitYears(dateFromSeconds(253402300800.0)), dateFromSeconds(253402300799.0));
  EXPECT_EQ(boundedToFourDigitYears(dateFromSeconds(-infinity)), dateFromSeconds(-62135596800.0));
  EXPECT_EQ(boundedToFourDigitYears(dateFromSeconds(std::numeric_limits<double>::quiet_NaN())), dateFromSeconds(0));
}

}  // namespace
}  // namespace brindle
