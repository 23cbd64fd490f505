#include "logic/reports/whole_seconds.h"

#include <cstdlib>

namespace brindle {

std::int64_t wholeSeconds(double seconds) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63, the first whole number that no longer fits
  if (!(seconds >= -kLimit && seconds < kLimit)) std::abort();
  return static_cast<std::int64_t>(seconds);
}

}  // namespace brindle
