// The command line of brindle: finds the command, reads its arguments, runs it, and answers the exit code.
//
// Used by main; tests call it with commands of their own. Commands of style `raw` are run before anything else is
// read or built, because other programs wait for them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "cli/command.h"

namespace brindle {

/// Runs what `words`, the arguments after the program's name, ask for, and answers the exit code of the process.
/// Wrong usage is one line on the remarks and 2; nothing at all is the help on the remarks and 2.
[[nodiscard]] int runCommandLine(std::span<const Command* const> commands, const std::vector<std::string>& words,
                                 CommandContext& context);

/// Says that `commands` has no command `name`, suggests the one that was probably meant, and answers 2.
[[nodiscard]] int unknownCommand(std::span<const Command* const> commands, std::string_view name,
                                 CommandContext& context);

/// For commands that find wrong usage themselves: says "COMMAND: TEXT", and answers 2.
[[nodiscard]] int wrongUsage(CommandContext& context, std::string_view text);

}  // namespace brindle
