#include "base/time_zone.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

TEST(TimeZone, IsUtcByDefault) {
  EXPECT_EQ(TimeZone().offsetAt(dateFromSeconds(1e9)), seconds{0});
  EXPECT_EQ(TimeZone().localDay(dateFromSeconds(0)), 0);
}

TEST(TimeZone, EndsADayWhereTheNextBegins) {
  EXPECT_EQ(TimeZone().localDay(dateFromSeconds(86399.999)), 0);
  EXPECT_EQ(TimeZone().localDay(dateFromSeconds(86400)), 1);
  EXPECT_EQ(TimeZone().localDay(dateFromSeconds(-0.001)), -1);
  const TimeZone west = TimeZone::fixed(-hours{5});
  EXPECT_EQ(west.localDay(dateFromSeconds(5 * 3600 - 1)), -1);
  EXPECT_EQ(west.localDay(dateFromSeconds(5 * 3600)), 0);
}

TEST(TimeZone, ClampsAFixedOffsetTo18Hours) {
  EXPECT_EQ(TimeZone::fixed(hours{18}).offsetAt(Date{}), hours{18});
  EXPECT_EQ(TimeZone::fixed(hours{18} + seconds{1}).offsetAt(Date{}), hours{18});
  EXPECT_EQ(TimeZone::fixed(-hours{18} - seconds{1}).offsetAt(Date{}), -hours{18});
}

TEST(TimeZone, AsksItsLookupForTheDate) {
  const TimeZone zone =
      TimeZone::fromLookup([](Date date) { return secondsSince1970(date) < 100 ? hours{1} : hours{2}; });
  EXPECT_EQ(zone.offsetAt(dateFromSeconds(99.5)), hours{1});
  EXPECT_EQ(zone.offsetAt(dateFromSeconds(100)), hours{2});
  const TimeZone copy = zone;
  EXPECT_EQ(copy.offsetAt(dateFromSeconds(100)), hours{2});
}

TEST(TimeZone, AnswersForEveryDouble) {
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const TimeZone zone = TimeZone::fixed(hours{1});
  EXPECT_EQ(zone.offsetAt(dateFromSeconds(notANumber)), seconds{0});
  EXPECT_EQ(zone.localDay(dateFromSeconds(notANumber)), 0);
  EXPECT_EQ(zone.localDay(dateFromSeconds(infinity)), zone.localDay(dateFromSeconds(9e15)));
  EXPECT_LT(zone.localDay(dateFromSeconds(-infinity)), -100000000000);
}

}  // namespace
}  // namespace brindle
