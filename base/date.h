// Instants and spans as every record and policy uses them.
//
// Used by everything that compares or stores times. Nothing here reads a clock: `now` is always an argument.
// A value may be any double, NaN included; functions that care say what they do with one.
#pragma once

#include <chrono>

namespace brindle {

/// A span in seconds, with fraction.
using Seconds = std::chrono::duration<double>;

/// A wall-clock instant: seconds since 1970-01-01T00:00:00Z, leap seconds not counted, with fraction.
using Date = std::chrono::time_point<std::chrono::system_clock, Seconds>;

/// The instant `seconds` after 1970-01-01T00:00:00Z.
[[nodiscard]] constexpr Date dateFromSeconds(double seconds) { return Date{Seconds{seconds}}; }

/// The seconds from 1970-01-01T00:00:00Z to `date`.
[[nodiscard]] constexpr double secondsSince1970(Date date) { return date.time_since_epoch().count(); }

}  // namespace brindle
