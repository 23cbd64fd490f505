// Processes for tests that name only what matters to them.
#pragma once

#include <cstdint>
#include <string>

#include "base/date.h"
#include "logic/sessions/process_forest.h"
#include "logic/sessions/tracked_process.h"

namespace brindle {

inline constexpr std::uint32_t kUser = 501;
inline constexpr std::uint32_t kOtherUser = 502;
inline constexpr Date kNow = dateFromSeconds(1'772'352'000);

/// A process of kUser, an hour old, that no rule knows: `process({.pid = 500, .ppid = 400})`.
inline TrackedProcess process(ProcessForest::Link link) {
  return {.pid = link.pid,
          .ppid = link.ppid,
          .uid = kUser,
          .name = "worker",
          .path = "/opt/tools/worker",
          .commandLine = "worker --run",
          .start = kNow - Seconds{3600},
          .startTime = 7};
}

/// The same as an agent.
inline TrackedProcess agent(ProcessForest::Link link) {
  TrackedProcess made = process(link);
  made.name = "claude";
  made.role = ProcessRole::agent;
  made.agentName = "Claude Code";
  return made;
}

}  // namespace brindle
