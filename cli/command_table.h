// All commands of brindle, in the order in which help lists them.
//
// Read by dispatch, help and completions. Constant data.
#pragma once

#include <span>
#include <string_view>

#include "cli/command.h"

namespace brindle {

[[nodiscard]] std::span<const Command* const> allCommands();

/// The command of exactly this name in `commands`; null when there is none.
[[nodiscard]] const Command* findCommand(std::span<const Command* const> commands, std::string_view name);

/// The name that somebody who typed `name` most probably meant: the first of those with the fewest letters added,
/// dropped, changed or swapped, two at most and fewer than half of them. Empty when there is none.
[[nodiscard]] std::string_view suggestedCommand(std::span<const Command* const> commands, std::string_view name);

}  // namespace brindle
