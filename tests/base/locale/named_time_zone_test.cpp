#include "base/locale/named_time_zone.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

// 2026-03-29T01:00:00Z and 2026-10-25T01:00:00Z, when clocks in Berlin change.
constexpr double kSpring = 1774746000;
constexpr double kAutumn = 1792890000;

TEST(NamedTimeZone, AnswersTheOffsetOfItsRules) {
  const auto berlin = namedTimeZone("Europe/Berlin");
  ASSERT_TRUE(berlin);
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kSpring - 86400)), hours{1});
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kSpring + 86400)), hours{2});
}

TEST(NamedTimeZone, ChangesExactlyAtTheChange) {
  const auto berlin = namedTimeZone("Europe/Berlin");
  ASSERT_TRUE(berlin);
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kSpring - 1)), hours{1});
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kSpring - 0.001)), hours{1});
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kSpring)), hours{2});
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kAutumn - 1)), hours{2});
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(kAutumn)), hours{1});
}

TEST(NamedTimeZone, KnowsOffsetsOfHalfAndQuarterHours) {
  const auto kolkata = namedTimeZone("Asia/Kolkata");
  const auto kathmandu = namedTimeZone("Asia/Kathmandu");
  ASSERT_TRUE(kolkata);
  ASSERT_TRUE(kathmandu);
  EXPECT_EQ(kolkata->offsetAt(dateFromSeconds(kSpring)), hours{5} + minutes{30});
  EXPECT_EQ(kathmandu->offsetAt(dateFromSeconds(kSpring)), hours{5} + minutes{45});
}

TEST(NamedTimeZone, CountsLocalDaysAcrossAChange) {
  const auto newYork = namedTimeZone("America/New_York");
  ASSERT_TRUE(newYork);
  // 2026-11-01 has 25 hours there: it begins at 04:00Z and ends at 05:00Z the day after.
  const double begin = 1793505600;
  EXPECT_EQ(newYork->localDay(dateFromSeconds(begin - 1)) + 1, newYork->localDay(dateFromSeconds(begin)));
  EXPECT_EQ(newYork->localDay(dateFromSeconds(begin + 25 * 3600 - 1)), newYork->localDay(dateFromSeconds(begin)));
  EXPECT_EQ(newYork->localDay(dateFromSeconds(begin + 25 * 3600)), newYork->localDay(dateFromSeconds(begin)) + 1);
}

TEST(NamedTimeZone, IsNoneForANameThatTheSystemDoesNotHave) {
  EXPECT_FALSE(namedTimeZone("Mars/Olympus_Mons"));
  EXPECT_FALSE(namedTimeZone(""));
  EXPECT_FALSE(namedTimeZone("europe/berlin"));
  EXPECT_FALSE(namedTimeZone("../../../etc/passwd"));
  EXPECT_FALSE(namedTimeZone(std::string_view("UTC\0x", 5)));
}

TEST(NamedTimeZone, AnswersForEveryDouble) {
  const auto berlin = namedTimeZone("Europe/Berlin");
  ASSERT_TRUE(berlin);
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(berlin->offsetAt(dateFromSeconds(std::numeric_limits<double>::quiet_NaN())), seconds{0});
  EXPECT_LT(berlin->offsetAt(dateFromSeconds(infinity)), hours{3});
  EXPECT_LT(berlin->offsetAt(dateFromSeconds(-infinity)), hours{3});
  EXPECT_GT(berlin->offsetAt(dateFromSeconds(-1e300)), seconds{0});
}

}  // namespace
}  // namespace brindle
