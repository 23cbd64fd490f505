// The sentence for a forecast, with its dates as the reader's language and time zone write them.
//
// Used by the plan report and the application. Pure but for the formatter that the host hands in: the library of
// localised times is the host's, so that programs which never show a date need not carry it.
#pragma once

#include <optional>
#include <string>

#include "base/date.h"
#include "base/time_zone.h"
#include "logic/plan/plan_forecast.h"

namespace brindle::PlanForecast {

/// Writes dates in the reader's language and time zone, Gregorian calendar.
class LocalTimes {
 public:
  virtual ~LocalTimes() = default;
  /// The time of day: the localised template "jmm".
  [[nodiscard]] virtual std::string timeOfDay(Date date) const = 0;
  /// Weekday and time of day: the localised template "EEE jmm".
  [[nodiscard]] virtual std::string weekdayAndTime(Date date) const = 0;
};

/// The reader of a text.
struct Reader {
  Date now{};
  /// Decides on which calendar day a date falls; the same zone in which `times` writes.
  TimeZone timeZone;
  /// Must outlive the call.
  const LocalTimes& times;
};

/// The time of day of a date that is today or earlier, with the weekday before it on a later day. U+202F becomes a
/// plain space, "AM" and "PM" become "am" and "pm".
[[nodiscard]] std::string dateText(Date date, const Reader& reader);

/// "12 min", "3 h" or "2 d", each truncated; none below one minute.
[[nodiscard]] std::optional<std::string> spanText(Seconds span);

/// The sentence; none for Unknown.
[[nodiscard]] std::optional<std::string> text(const Outcome& outcome, std::optional<Date> resets, const Reader& reader);

}  // namespace brindle::PlanForecast
