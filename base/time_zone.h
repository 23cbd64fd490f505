// A time zone as a value: it answers how far local time is from UTC at a date.
//
// Made by the shell (named zones come from base/locale/named_time_zone.h) and passed to the policies that speak of
// days and times of day. Copies share the lookup, which is immutable: safe on any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "base/date.h"

namespace brindle {

class TimeZone {
 public:
  /// Seconds east of UTC at a date; total, and the same answer for the same date.
  using Lookup = std::function<std::chrono::seconds(Date)>;

  /// UTC.
  TimeZone() = default;
  /// The same offset at every date; clamped to the 18 hours either way that the platform knows.
  [[nodiscard]] static TimeZone fixed(std::chrono::seconds eastOfUtc);
  /// Precondition: `lookup` is callable.
  [[nodiscard]] static TimeZone fromLookup(Lookup lookup);

  /// Seconds east of UTC at `date`; 0 for a date that is not a number.
  [[nodiscard]] std::chrono::seconds offsetAt(Date date) const;
  /// The number of the local calendar day that holds `date`: 0 is 1970-01-01. A day ends where the next begins, at
  /// local midnight. Dates beyond 285 million years, infinities and what is not a number count as that bound or 0.
  [[nodiscard]] std::int64_t localDay(Date date) const;

 private:
  std::chrono::seconds fixed_{0};
  Lookup lookup_;
};

}  // namespace brindle
