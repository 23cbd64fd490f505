#include "logic/plan/plan_forecast_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace brindle {
namespace {

using namespace PlanForecast;
constexpr Date kNoon = dateFromSeconds(1'735'732'800);  // 2025-01-01T12:00:00Z

/// Shows which of the two forms was asked for, and for which date.
class MarkedTimes : public LocalTimes {
 public:
  std::string timeOfDay(Date date) const override { return "time " + hours(date); }
  std::string weekdayAndTime(Date date) const override { return "weekday " + hours(date); }

 private:
  static std::string hours(Date date) {
    return std::isnan(secondsSince1970(date)) ? "?" : std::to_string(std::lround((date - kNoon).count() / 3600));
  }
};

class FixedTimes : public LocalTimes {
 public:
  explicit FixedTimes(std::string text) : text_(std::move(text)) {}
  std::string timeOfDay(Date) const override { return text_; }
  std::string weekdayAndTime(Date) const override { return "Thu " + text_; }

 private:
  std::string text_;
};

const MarkedTimes kMarked;

Reader atNoon(TimeZone zone = {}) { return {.now = kNoon, .timeZone = std::move(zone), .times = kMarked}; }
Date hoursFromNoon(double hours) { return kNoon + Seconds{hours * 3600}; }

TEST(PlanForecastText, SaysWhenAWindowRunsOutAndHowLongBeforeTheReset) {
  EXPECT_EQ(text(RunsOut{hoursFromNoon(2)}, hoursFromNoon(5), atNoon()),
            "At this rate you hit 100% at time 2, 3 h before the reset.");
}

TEST(PlanForecastText, LeavesTheSpanOutBelowAMinute) {
  EXPECT_EQ(text(RunsOut{hoursFromNoon(2)}, hoursFromNoon(2) + Seconds{59}, atNoon()),
            "At this rate you hit 100% at time 2.");
  EXPECT_EQ(text(RunsOut{hoursFromNoon(2)}, hoursFromNoon(2) + Seconds{60}, atNoon()),
            "At this rate you hit 100% at time 2, 1 min before the reset.");
}

TEST(PlanForecastText, LeavesTheSpanOutWithoutAResetDate) {
  EXPECT_EQ(text(RunsOut{hoursFromNoon(2)}, std::nullopt, atNoon()), "At this rate you hit 100% at time 2.");
}

TEST(PlanForecastText, SaysNothingWhenUnknown) { EXPECT_EQ(text(Unknown{}, hoursFromNoon(2), atNoon()), std::nullopt); }

TEST(PlanForecastText, SaysThatItLasts) {
  EXPECT_EQ(text(OnPace{}, hoursFromNoon(2), atNoon()), "On pace: at this rate it lasts until the reset.");
}

TEST(PlanForecastText, SaysWhenAFullWindowResets) {
  EXPECT_EQ(text(Full{}, hoursFromNoon(2), atNoon()), "Used up. It resets at time 2.");
  EXPECT_EQ(text(Full{}, hoursFromNoon(48), atNoon()), "Used up. It resets at weekday 48.");
  EXPECT_EQ(text(Full{}, std::nullopt, atNoon()), "Used up.");
}

TEST(PlanForecastText, AddsTheWeekdayFromTheNextMidnightOn) {
  EXPECT_EQ(dateText(kNoon, atNoon()), "time 0");
  EXPECT_EQ(dateText(hoursFromNoon(12) - Seconds{1}, atNoon()), "time 12");
  EXPECT_EQ(dateText(hoursFromNoon(12), atNoon()), "weekday 12");
  EXPECT_EQ(dateText(hoursFromNoon(200), atNoon()), "weekday 200");
}

TEST(PlanForecastText, WritesAnEarlierDayAsATimeAlone) {
  EXPECT_EQ(dateText(hoursFromNoon(-48), atNoon()), "time -48");
}

TEST(PlanForecastText, CountsDaysInTheReadersZone) {
  const auto eastern = TimeZone::fixed(std::chrono::hours(11));
  EXPECT_EQ(dateText(hoursFromNoon(0.5), atNoon(eastern)), "time 1");
  EXPECT_EQ(dateText(hoursFromNoon(1), atNoon(eastern)), "weekday 1");
  const auto western = TimeZone::fixed(-std::chrono::hours(5));
  EXPECT_EQ(dateText(hoursFromNoon(16), atNoon(western)), "time 16");
  EXPECT_EQ(dateText(hoursFromNoon(17), atNoon(western)), "weekday 17");
}

TEST(PlanForecastText, WritesDayHalvesInLowerCaseAfterAPlainSpace) {
  const FixedTimes afternoon("3:05\xE2\x80\xAFPM");
  EXPECT_EQ(dateText(kNoon, {.now = kNoon, .timeZone = {}, .times = afternoon}), "3:05 pm");
  EXPECT_EQ(dateText(hoursFromNoon(24), {.now = kNoon, .timeZone = {}, .times = afternoon}), "Thu 3:05 pm");
  const FixedTimes morning("3:05 AM");
  EXPECT_EQ(dateText(kNoon, {.now = kNoon, .timeZone = {}, .times = morning}), "3:05 am");
}

TEST(PlanForecastText, ReplacesEveryOccurrence) {
  const FixedTimes odd("AM\xE2\x80\xAF\xE2\x80\xAFPMAMPM");
  EXPECT_EQ(dateText(kNoon, {.now = kNoon, .timeZone = {}, .times = odd}), "am  pmampm");
  const FixedTimes plain("15:05");
  EXPECT_EQ(dateText(kNoon, {.now = kNoon, .timeZone = {}, .times = plain}), "15:05");
}

TEST(PlanForecastText, WritesSpansInTheirLargestUnit) {
  const std::vector<std::pair<double, std::optional<std::string>>> cases{
      {-100, std::nullopt}, {0, std::nullopt},
      {59, std::nullopt},   {59.999, std::nullopt},
      {60, "1 min"},        {119, "1 min"},
      {3599, "59 min"},     {3600, "1 h"},
      {7199, "1 h"},        {86399, "23 h"},
      {86400, "1 d"},       {172799, "1 d"},
      {604800, "7 d"},      {std::nan(""), std::nullopt}};
  for (const auto& [seconds, expected] : cases) EXPECT_EQ(spanText(Seconds{seconds}), expected) << seconds;
}

TEST(PlanForecastText, WritesAnyDateWithoutFailing) {
  EXPECT_EQ(text(Full{}, dateFromSeconds(std::nan("")), atNoon()), "Used up. It resets at time ?.");
}

}  // namespace
}  // namespace brindle
