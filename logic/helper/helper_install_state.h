// How far the installation of the daemon has come, as the application shows it.
//
// Used by the application and its texts; the daemon itself never looks at it. The platform's code finds out which
// state holds.
#pragma once

#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class HelperInstallState { notInstalled, needsApproval, ready, unavailable };

template <>
inline constexpr auto kEnumTexts<HelperInstallState> = std::to_array<EnumText<HelperInstallState>>({
    {HelperInstallState::notInstalled, "notInstalled"},
    {HelperInstallState::needsApproval, "needsApproval"},
    {HelperInstallState::ready, "ready"},
    {HelperInstallState::unavailable, "unavailable"},
});

/// The sentence for people; empty for a value that is no case. Valid for the life of the process.
[[nodiscard]] std::string_view statusText(HelperInstallState state);

}  // namespace brindle
