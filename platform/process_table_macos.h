// The kernel's process table, and what it tells of one process.
//
// Used by the macOS process source. Of other users' processes only the table and the path are readable; everything
// else is absent then. Blocks for less than a millisecond a process; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "inventory/process_facts.h"

namespace brindle {

/// Everything alive but the kernel itself, at most `limit`, with pid, parent, user, name, start and terminal. Empty
/// when the table cannot be read.
[[nodiscard]] std::vector<ProcessFacts> processTable(std::size_t limit);

/// The same of one process; none when there is no such process or it waits to be reaped.
[[nodiscard]] std::optional<ProcessFacts> tableEntry(std::int32_t pid);

/// Adds path, arguments and named variables, as far as they may be read.
void readProgram(ProcessFacts& facts);

/// Adds folder, memory, CPU time and whether the system adopted the process, as far as they may be read.
void readUsage(ProcessFacts& facts);

}  // namespace brindle
