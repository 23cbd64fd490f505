// The sentence of a forecast with the system's own language data behind it.
#include <gtest/gtest.h>

#include "base/locale/localized_time.h"
#include "logic/plan/plan_forecast_text.h"

namespace brindle {
namespace {

constexpr Date kNoon = dateFromSeconds(1'735'732'800);           // Wednesday, 2025-01-01T12:00:00Z
constexpr Date kFivePastThree = dateFromSeconds(1'735'743'900);  // 15:05 on that day
constexpr Seconds kDay{86400};

class SystemTimes : public PlanForecast::LocalTimes {
 public:
  explicit SystemTimes(std::string locale) : locale_(std::move(locale)) {}
  std::string timeOfDay(Date date) const override { return written(date, TimeTemplate::time); }
  std::string weekdayAndTime(Date date) const override { return written(date, TimeTemplate::weekdayAndTime); }

 private:
  std::string written(Date date, TimeTemplate shows) const { return localizedTime(date, {}, {shows, locale_}); }
  std::string locale_;
};

std::string dateTextIn(const std::string& locale, Date date) {
  const SystemTimes times(locale);
  return PlanForecast::dateText(date, {.now = kNoon, .timeZone = {}, .times = times});
}

TEST(PlanForecastLocale, WritesFivePastThreeInLowerCaseWhereTheLocaleWritesPM) {
  EXPECT_EQ(dateTextIn("en_US", kFivePastThree), "3:05 pm");
  EXPECT_EQ(dateTextIn("en_US", kFivePastThree + kDay), "Thu 3:05 pm");
}

TEST(PlanForecastLocale, WritesTheHoursOfTheLocale) { EXPECT_EQ(dateTextIn("de_DE", kFivePastThree), "15:05"); }

TEST(PlanForecastLocale, FinishesTheSentence) {
  const SystemTimes times("en_US");
  EXPECT_EQ(PlanForecast::text(PlanForecast::RunsOut{kFivePastThree}, kFivePastThree + Seconds{7300},
                               {.now = kNoon, .timeZone = {}, .times = times}),
            "At this rate you hit 100% at 3:05 pm, 2 h before the reset.");
}

}  // namespace
}  // namespace brindle
