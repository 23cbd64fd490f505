// The block in which macOS hands out a process's arguments and environment.
//
// Used by the macOS process source; portable and pure, so that it is tested and fuzzed everywhere.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/process_facts.h"

namespace brindle {

struct ArgumentsBlock {
  /// The executable as it was started.
  std::string path;
  /// Bounded like parseArguments.
  std::vector<std::string> arguments;
  /// The named variables; empty where the system has cut the environment away.
  std::vector<NamedVariable> variables;

  bool operator==(const ArgumentsBlock&) const = default;
};

/// The block holds the number of arguments as a 32-bit integer of the machine, the path, NULs, each argument with its
/// NUL, and the environment likewise. None when it is shorter than that number or the number is negative; a block
/// that ends early gives what is whole.
[[nodiscard]] std::optional<ArgumentsBlock> parseArgumentsBlock(std::string_view block,
                                                                std::span<const std::string_view> names);

}  // namespace brindle
