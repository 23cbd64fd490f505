// The names of revert reasons for people.
//
// Used by the application, which shows why sleep came back on. Kept apart from the reasons themselves, because the
// daemon logs raw values and has no use for these.
#pragma once

#include <string_view>

#include "logic/helper/revert_reason.h"

namespace brindle {

/// "Agents finished", …; empty for a value that is no case. Valid for the life of the process.
[[nodiscard]] std::string_view label(RevertReason reason);

}  // namespace brindle
