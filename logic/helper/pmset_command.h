// The two operations of the sleep switch.
//
// The revert policy decides on one, the daemon's switch carries it out. The names are those of the tool that does it
// on macOS; other editions run the same two operations by their own means.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class PmsetCommand { disableSleep, restoreSleep };

template <>
inline constexpr auto kEnumTexts<PmsetCommand> = std::to_array<EnumText<PmsetCommand>>({
    {PmsetCommand::disableSleep, "disableSleep"},
    {PmsetCommand::restoreSleep, "restoreSleep"},
});

/// The executable that takes the arguments below.
inline constexpr std::string_view kPmsetPath = "/usr/bin/pmset";

/// True for disableSleep, false for restoreSleep.
[[nodiscard]] constexpr bool disablesSleep(PmsetCommand command) { return command == PmsetCommand::disableSleep; }

/// The arguments, the executable's own name not among them. Each text ends with a NUL behind its last character.
[[nodiscard]] std::array<std::string_view, 3> pmsetArguments(PmsetCommand command);

/// The executable and its arguments joined by single spaces, for the log: "/usr/bin/pmset -a disablesleep 1".
[[nodiscard]] std::string pmsetCommandLine(PmsetCommand command);

}  // namespace brindle
