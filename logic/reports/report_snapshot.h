// What the reports are built from: one process snapshot and what was worked out from it.
//
// Filled in by the host for the length of one report; it refers to the host's values and owns nothing.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "logic/sessions/agent_session.h"
#include "logic/sessions/system_process_rules.h"
#include "logic/sessions/tracked_process.h"

namespace brindle {

/// A process that outlived its agent.
struct LeftBehind {
  TrackedProcess process;
  /// Which agent left it behind, and how that is known: "Claude Code (exited), by its environment".
  std::string origin;

  bool operator==(const LeftBehind&) const = default;
};

/// Why processes must not be stopped, by pid; processes without an entry may be.
using ProtectionReasons = std::unordered_map<std::int32_t, std::string>;

struct ReportSnapshot {
  const std::vector<TrackedProcess>& processes;
  const std::vector<AgentSession>& sessions;
  const std::vector<LeftBehind>& leftBehind;
  const ProtectionReasons& protections;
  std::uint32_t currentUser = 0;
  const SystemProcessRules& rules = SystemProcessRules::forMacOS();
};

}  // namespace brindle
