// The records of a snapshot, made from what a process source has seen.
//
// Used by the host's snapshot; the one place where roles, agents, frameworks, projects and origins are put into
// TrackedProcess. Pure; linear but for the lengths of ancestor chains.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "inventory/process_facts.h"
#include "inventory/process_origin.h"
#include "inventory/project_name.h"
#include "logic/sessions/tracked_process.h"

namespace brindle {

/// Pid, owner, name and path: what the rules for system processes look at.
[[nodiscard]] TrackedProcess trackedIdentityOf(const ProcessFacts& facts);

/// The name for people: the kernel's, completed from the executable where the kernel has cut it to 15 bytes.
[[nodiscard]] std::string shownName(const ProcessFacts& facts);

/// One record for each process, in order. Texts are made valid UTF-8. A process that `origins` ties to an agent gets
/// it as its recorded agent, alive when it is owned; merely likely ties are left out. `projects` is asked for the
/// working directories of the current user's processes only.
[[nodiscard]] std::vector<TrackedProcess> trackedProcesses(std::span<const ProcessFacts> processes,
                                                           std::span<const ProcessOrigin> origins,
                                                           std::uint32_t currentUser, ProjectFinder& projects);

/// The facts that a record still holds, for rules that need them of a recorded snapshot; the arguments are the words
/// of the command line.
[[nodiscard]] ProcessFacts factsOf(const TrackedProcess& process);

}  // namespace brindle
