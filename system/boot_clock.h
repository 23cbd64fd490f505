// The clock by which limits on a hold are kept.
//
// Used by the helper, by drivers and by commands; no rule reads a clock. Any thread.
#pragma once

#include "base/date.h"

namespace brindle {

/// Time since a fixed moment, the same for all processes until the machine restarts. Never jumps, and goes on while
/// the machine sleeps, so what a hold has left is measured with it.
[[nodiscard]] Seconds bootClockNow();

}  // namespace brindle
