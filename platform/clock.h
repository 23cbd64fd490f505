// The wall clock of the machine, for the programs that hand `now` to the rules.
//
// Used by commands and drivers only; no rule reads a clock. Any thread.
#pragma once

#include "base/date.h"

namespace brindle {

/// The wall clock. It may jump in either direction when it is set.
[[nodiscard]] Date wallClockNow();

}  // namespace brindle
