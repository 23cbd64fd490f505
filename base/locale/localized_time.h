// Times of day as people in a place write them.
//
// Used by the sentences about plans and by reports for people, never on the wire. Always the Gregorian calendar. The
// texts come from the system's own language data, so they can differ between systems. Safe on any thread.
#pragma once

#include <string>

#include "base/time_zone.h"

namespace brindle {

/// What a text shows, in the platform's template language.
enum class TimeTemplate {
  time,            // "jmm": the locale's hours and minutes
  weekdayAndTime,  // "EEE jmm": the short weekday before them
};

struct TimeStyle {
  TimeTemplate shows = TimeTemplate::time;
  /// "en_US"; an unknown one falls back to its language, then to a neutral form.
  std::string locale = "en_US_POSIX";
};

/// "3:05 PM", "mer. 15:05", with the characters the locale uses: a narrow no-break space (U+202F) before "PM"
/// stays. Minutes are cut, not rounded. A date that is not a number, or beyond years 1 to 9999, counts as the nearest
/// bound or as 1970-01-01. Where the system's data fail: "15:05".
[[nodiscard]] std::string localizedTime(Date date, const TimeZone& zone, const TimeStyle& style);

}  // namespace brindle
