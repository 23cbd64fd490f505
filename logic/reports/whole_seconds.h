// Spans as the documents write them.
#pragma once

#include <cstdint>

namespace brindle {

/// `seconds` truncated toward zero. Ends the program when it is not finite or does not fit 64 signed bits: the
/// callers take their dates from the system, or from snapshots that were checked.
[[nodiscard]] std::int64_t wholeSeconds(double seconds);

}  // namespace brindle
