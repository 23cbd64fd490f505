// The help of brindle and of each of its commands, made from the commands' rows.
//
// Used by the command line. Pure; texts end with a line end.
#pragma once

#include <span>
#include <string>

#include "cli/command.h"

namespace brindle {

/// What `brindle --help` prints: usage, the list of commands, the options that all of them take.
[[nodiscard]] std::string overallHelp(std::span<const Command* const> commands);

/// What `brindle COMMAND --help` prints.
[[nodiscard]] std::string commandHelp(const Command& command);

/// "brindle 1.3.0".
[[nodiscard]] std::string versionText();

}  // namespace brindle
