#include "base/locale/localized_time.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/json_writer.h"
#include "base/locale/named_time_zone.h"
#include "tests/base/golden.h"

namespace brindle {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr double kWednesdayAfternoon = 1735743900;  // 2025-01-01T15:05:00Z

TEST(LocalizedTime, MatchesEveryReferenceRow) {
  std::size_t compared = 0;
  for (const JsonObject& row : goldenRows("localized-time.json")) {
    const auto zone = namedTimeZone(textIn(row, "zone"));
    ASSERT_TRUE(zone) << textIn(row, "zone");
    const bool weekday = textIn(row, "template") == "EEE jmm";
    const TimeStyle style{weekday ? TimeTemplate::weekdayAndTime : TimeTemplate::time, textIn(row, "locale")};
    const auto date = secondsDateMember(row, "secondsSince1970");
    ASSERT_TRUE(date);
    EXPECT_EQ(localizedTime(*date, *zone, style), textIn(row, "text")) << writeJson(JsonValue(row));
    ++compared;
  }
  EXPECT_EQ(compared, 306U);
}

TEST(LocalizedTime, CutsSecondsInsteadOfRounding) {
  const TimeStyle style{TimeTemplate::time, "en_GB"};
  EXPECT_EQ(localizedTime(dateFromSeconds(kWednesdayAfternoon - 0.001), TimeZone(), style), "15:04");
  EXPECT_EQ(localizedTime(dateFromSeconds(kWednesdayAfternoon), TimeZone(), style), "15:05");
  EXPECT_EQ(localizedTime(dateFromSeconds(kWednesdayAfternoon + 59.999), TimeZone(), style), "15:05");
}

TEST(LocalizedTime, ShowsTheWeekdayOfTheZone) {
  const TimeStyle style{TimeTemplate::weekdayAndTime, "en_GB"};
  const Date date = dateFromSeconds(kWednesdayAfternoon);
  EXPECT_EQ(localizedTime(date, TimeZone::fixed(hours{9}), style), "Thu 00:05");
  EXPECT_EQ(localizedTime(date, TimeZone::fixed(-hours{15} - minutes{6}), style), "Tue 23:59");
  EXPECT_EQ(localizedTime(date, TimeZone::fixed(seconds{3600 + 59}), style), "Wed 16:05");
  EXPECT_EQ(localizedTime(date, TimeZone::fixed(seconds{-59}), style), "Wed 15:04");
}

TEST(LocalizedTime, FallsBackForALocaleThatNobodyKnows) {
  const TimeStyle style{TimeTemplate::time, "xx_YY"};
  EXPECT_FALSE(localizedTime(dateFromSeconds(kWednesdayAfternoon), TimeZone(), style).empty());
  const TimeStyle hostile{TimeTemplate::time, std::string(4096, '_') + "\xFF@;="};
  EXPECT_FALSE(localizedTime(dateFromSeconds(kWednesdayAfternoon), TimeZone(), hostile).empty());
}

TEST(LocalizedTime, AnswersForEveryDouble) {
  const TimeStyle style{TimeTemplate::time, "en_GB"};
  EXPECT_EQ(localizedTime(dateFromSeconds(std::numeric_limits<double>::quiet_NaN()), TimeZone(), style), "00:00");
  EXPECT_EQ(localizedTime(dateFromSeconds(std::numeric_limits<double>::infinity()), TimeZone(), style), "23:59");
  EXPECT_EQ(localizedTime(dateFromSeconds(-1e300), TimeZone(), style), "00:00");
}

}  // namespace
}  // namespace brindle
