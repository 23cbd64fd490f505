// One entry of /proc as facts: units, dates and names.
//
// Used by the two halves of the Linux process source.
#pragma once

#include "base/date.h"
#include "inventory/process_facts.h"
#include "platform/proc_folder_linux.h"

namespace brindle {

/// The machine's units, and both clocks at one moment: starts are dated by them.
struct Machine {
  double ticksPerSecond = 100;
  std::uint64_t pageBytes = 4096;
  Date now{};
  Seconds sinceBoot{};
};
[[nodiscard]] Machine machineNow();

/// Whether something may be swapped out, so that it is worth asking for each process.
[[nodiscard]] bool swapIsUsed();

/// What the kernel's line of a process tells. A start that the clocks put into the future is now.
[[nodiscard]] ProcessFacts factsOfEntry(const ProcFolder::Entry& entry, const Machine& machine);

/// Reads arguments and executable, as far as they may be read.
void readProgram(ProcFolder& proc, ProcessFacts& facts);

}  // namespace brindle
