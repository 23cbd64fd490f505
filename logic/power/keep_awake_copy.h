// What the keep-awake feature says to people.
//
// Used by the application and by notifications. Pure functions; texts are English whatever the locale.
#pragma once

#include <string>
#include <vector>

#include "logic/power/keep_awake_policy.h"

namespace brindle::KeepAwakeCopy {

/// `list` without repeats, in order of first appearance: "", "a", "a and b", "a, b and c".
[[nodiscard]] std::string names(const std::vector<std::string>& list);

/// One line: "Awake for a and b", "Let go at 12% battery", …
[[nodiscard]] std::string statusLine(const KeepAwakeStatus& status);

/// The sentence below it: what happens next and under which rules.
[[nodiscard]] std::string detail(const KeepAwakeStatus& status, const KeepAwakeRules& rules);

/// "Brindle: keeping awake while a works". Singular only when `list` has exactly one entry, repeats counted.
[[nodiscard]] std::string notificationTitle(const std::vector<std::string>& list);

}  // namespace brindle::KeepAwakeCopy
