// Completion scripts for shells, made from the commands' rows.
//
// Used by `brindle completion`. Pure; the scripts call nothing of ours, so completing costs no process.
#pragma once

#include <span>
#include <string>

#include "base/enum_text.h"
#include "cli/command.h"

namespace brindle {

enum class Shell { bash, zsh, fish };

template <>
inline constexpr auto kEnumTexts<Shell> = std::to_array<EnumText<Shell>>({
    {Shell::bash, "bash"},
    {Shell::zsh, "zsh"},
    {Shell::fish, "fish"},
});

/// The script that teaches `shell` the names, options, choices and words of `commands`.
[[nodiscard]] std::string completionScript(Shell shell, std::span<const Command* const> commands);

}  // namespace brindle
