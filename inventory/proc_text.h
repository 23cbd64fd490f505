// The smaller texts of /proc/PID: arguments, environment, memory, links of descriptors and files.
//
// Used by the Linux process source; portable and pure, so that it is tested and fuzzed everywhere. Every function is
// total: a text that the kernel would not write gives the parts that can be read, or none.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/process_facts.h"

namespace brindle {

/// Arguments kept of one process, and bytes kept of one argument; what is beyond is cut.
inline constexpr std::size_t kArgumentCountLimit = 256;
inline constexpr std::size_t kArgumentByteLimit = 4096;
/// The longest value of a variable that is kept; a longer one counts as not set.
inline constexpr std::size_t kVariableByteLimit = 256;

/// The pieces of /proc/PID/cmdline, each ended by a NUL; trailing NULs, which a shortened title leaves, are dropped.
[[nodiscard]] std::vector<std::string> parseArguments(std::string_view text);

/// The arguments with single blanks between, for people and for classification.
[[nodiscard]] std::string commandLineOf(const std::vector<std::string>& arguments);

/// Those variables of /proc/PID/environ whose names are asked for; the first of two equal names. No other part of an
/// environment leaves this function.
[[nodiscard]] std::vector<NamedVariable> parseNamedVariables(std::string_view text,
                                                             std::span<const std::string_view> names);

/// The pages of /proc/PID/statm that no file backs: resident minus shared. None when it cannot be read.
[[nodiscard]] std::optional<std::uint64_t> parsePrivatePages(std::string_view text);

/// The bytes of the line "VmSwap:" of /proc/PID/status; none when there is no such line.
[[nodiscard]] std::optional<std::uint64_t> parseSwapBytes(std::string_view text);

/// The pids of /proc/PID/task/TID/children in their order; pieces that are no pid are left out.
[[nodiscard]] std::vector<std::int32_t> parsePidList(std::string_view text);

/// The inode of a descriptor's link "socket:[12345]"; none for other links.
[[nodiscard]] std::optional<std::uint64_t> parseSocketLink(std::string_view link);

/// The link of a file or folder without the mark " (deleted)" of one that is gone.
[[nodiscard]] std::string_view withoutDeletedMark(std::string_view link);

}  // namespace brindle
