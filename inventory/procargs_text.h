// What macOS tells of a process's start: executable, arguments and environment in one block of bytes.
//
// Used by the macOS process source; portable and pure, so that it is tested everywhere. Total: a block that the kernel
// would not write gives the parts that can be read, or none.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

struct ProcessStartText {
  /// The path that was executed, as it was given.
  std::string path;
  /// As parseArguments() keeps them.
  std::vector<std::string> arguments;
  /// The environment, each variable ended by a NUL; a part of the block, valid as long as that. For
  /// parseNamedVariables() only: it holds secrets. Empty where the kernel keeps it to itself.
  std::string_view environment;
};

/// The block: the number of arguments as 32 bits of this machine, the path, NULs up to a boundary, that many arguments
/// and the environment, all ended by NULs. None without a number, with a negative one, or without a path. The padding
/// is not told from an empty first argument, which is lost.
[[nodiscard]] std::optional<ProcessStartText> parseProcessStart(std::string_view block);

}  // namespace brindle
