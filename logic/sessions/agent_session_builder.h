// Turns one process snapshot into the list of live agent sessions.
//
// Called once a snapshot by whoever took it. Pure: no clock, no system call; linear in the number of processes.
#pragma once

#include <cstdint>
#include <vector>

#include "base/date.h"
#include "logic/sessions/agent_session.h"
#include "logic/sessions/system_process_rules.h"
#include "logic/sessions/tracked_process.h"

namespace brindle::AgentSessionBuilder {

/// From this largest CPU sample on, in percent of one core, a session is working.
inline constexpr double kWorkingCpuPercent = 5.0;
/// Below this largest sample a session that is old enough is idle.
inline constexpr double kIdleCpuPercent = 1.0;
/// From this age on a session may be idle.
inline constexpr Seconds kIdleAge{600};
/// Up to, not including, this age a session without samples is working.
inline constexpr Seconds kWorkingAgeWithoutSamples{120};

/// The sessions, oldest first, equal starts by pid. A session is rooted at each user process that is an agent with a
/// name and has no agent above it. Its children are the user processes below it, and those that a hook record ties to
/// the running root. A pid that occurs twice counts where it stands first; parent cycles are followed once.
/// Ends the program when the footprints of one session do not fit 64 bits, see addedBytes.
[[nodiscard]] std::vector<AgentSession> build(const std::vector<TrackedProcess>& processes, std::uint32_t currentUser,
                                              Date now,
                                              const SystemProcessRules& rules = SystemProcessRules::forMacOS());

}  // namespace brindle::AgentSessionBuilder
