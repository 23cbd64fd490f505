// The clocks of the machine, for the programs that hand `now` to the rules.
//
// Used by commands and drivers only; no rule reads a clock. Any thread.
#pragma once

#include "base/date.h"

namespace brindle {

/// The wall clock. It may jump in either direction when it is set.
[[nodiscard]] Date wallClockNow();

/// Time since a fixed moment, the same for all processes until the machine restarts. Never jumps, and goes on while
/// the machine sleeps, so what a hold has left is measured with it.
[[nodiscard]] Seconds bootClockNow();

}  // namespace brindle
