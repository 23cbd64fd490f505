// Whether the system's own power management has sleep switched off.
//
// Used in place of a question to the helper, which would take the asker for a client. Any thread.
#pragma once

#include <optional>

namespace brindle {

/// The kernel's setting, whoever made it; none when it does not tell.
[[nodiscard]] std::optional<bool> systemSleepDisabled();

}  // namespace brindle
