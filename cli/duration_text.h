// Spans of time as people type and read them: "90s", "45m", "4h", "1h30m".
//
// Used by every option that takes a duration. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"

namespace brindle {

/// What was expected, for somebody whose text was refused.
inline constexpr std::string_view kExpectedDuration = "a duration such as 90s, 45m, 4h or 1h30m";

/// The most digits of one number in a duration; more are refused, so that no sum can overflow.
inline constexpr std::size_t kDurationDigitLimit = 9;

/// Whole numbers with their units, the larger unit first and each at most once: d, h, m, s. None for anything else:
/// a number without unit, a sign, a fraction, white space, an empty text. Zero is a duration.
[[nodiscard]] std::optional<Seconds> parseDuration(std::string_view text);

/// The text that parseDuration reads back, with units of no count left out and fractions of a second dropped:
/// "1h30m"; "0s" for less than a second, for a negative span and for NaN. Days are written as hours.
[[nodiscard]] std::string durationText(Seconds duration);

/// How long something has run, with the largest unit that it fills and the next one: "12s", "3m20s", "2h", "45d13h".
[[nodiscard]] std::string ageText(Seconds age);

}  // namespace brindle
