// Reads the words after a command's name by the command's own row.
//
// Used by the command line. The only file of the tree that knows the option library. Pure.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "cli/arguments.h"
#include "cli/command.h"

namespace brindle {

/// "--help" or "-h" stood among the options.
struct HelpAsked {
  bool operator==(const HelpAsked&) const = default;
};

/// The words do not fit the command; `text` is one line: what is wrong and what was expected. It does not name the
/// command.
struct UsageProblem {
  std::string text;
  bool operator==(const UsageProblem&) const = default;
};

using ParsedArguments = std::variant<Arguments, HelpAsked, UsageProblem>;

/// Options are spelt in full, with their value as the next word, whatever that is, or after "=".
/// The last of a repeated option wins. "--no-color" is taken by every command, and is left in
/// `Arguments::options`. Never throws.
[[nodiscard]] ParsedArguments parseArguments(const Command& command, const std::vector<std::string>& words);

}  // namespace brindle
