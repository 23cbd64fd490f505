// Doubles to whole numbers without undefined behaviour.
//
// Used wherever a text shows the whole part of a time or a share that came from outside.
#pragma once

#include <cstdint>
#include <limits>

namespace brindle {

/// `value` truncated toward zero; 0 for NaN, and the nearest bound for a value beyond 64 signed bits.
[[nodiscard]] constexpr std::int64_t wholeNumber(double value) {
  constexpr double kBound = 9223372036854775808.0;  // 2^63, the first double that does not fit
  if (value != value) return 0;
  if (value >= kBound) return std::numeric_limits<std::int64_t>::max();
  if (value < -kBound) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

}  // namespace brindle
