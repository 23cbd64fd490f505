// One moment of the machine, worked out once: processes, sessions, what was left behind, what is protected.
//
// Made by the platform's snapshot taker or from a recorded document; read by every report, plan and MCP tool, which
// never look at the machine again. A plain value: safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/date.h"
#include "inventory/process_origin.h"
#include "inventory/project_name.h"
#include "inventory/protection_rules.h"
#include "logic/reports/report_snapshot.h"

namespace brindle {

struct HostSnapshot {
  Date now{};
  std::uint32_t currentUser = 0;
  const SystemProcessRules* rules = &SystemProcessRules::forMacOS();
  std::vector<TrackedProcess> processes;
  std::vector<AgentSession> sessions;
  std::vector<LeftBehind> leftBehind;
  /// Processes whose agent has perhaps ended; shown, never proposed for stopping and never counted.
  std::vector<LeftBehind> likely;
  /// Of the current user's and others' processes alike.
  ProtectionReasons protections;
  /// Processes with a controlling terminal.
  std::unordered_set<std::int32_t> withTerminal;
  /// Established connections to the ports of a process, by pid; none are not listed.
  std::unordered_map<std::int32_t, int> clients;
  /// Ports that other machines can reach.
  std::unordered_set<int> reachablePorts;
  ProtectionRules protectionRules;
  /// The application whose window is in front; absent where no desktop tells, and in recorded snapshots.
  std::optional<std::int32_t> frontmost;
  /// Processes of which only the kernel's own table could be read.
  int uninspected = 0;
  /// Listening sockets whose process could not be found.
  int unownedListeners = 0;

  /// What the reports take; refers to this snapshot, which must outlive it.
  [[nodiscard]] ReportSnapshot report() const;
};

/// The circumstances of a snapshot that are the same for all its processes.
struct SnapshotContext {
  Date now{};
  std::uint32_t currentUser = 0;
  const SystemProcessRules& rules;
  const ProtectionRules& protections;
  std::optional<std::int32_t> frontmost = std::nullopt;
  /// See OriginQuestion.
  std::span<const AgentKind> outOfSight = {};
};

/// The snapshot of a living machine. `records` are those of the running boot.
[[nodiscard]] HostSnapshot snapshotOf(std::span<const ProcessFacts> processes, std::span<const OwnershipRecord> records,
                                      ProjectFinder& projects, const SnapshotContext& context);

/// The snapshot of recorded processes: what was left behind is what names an agent that is not alive.
[[nodiscard]] HostSnapshot snapshotOf(std::vector<TrackedProcess> processes, const SnapshotContext& context);

/// Which processes hang below which agents now: one record for each child of each session.
[[nodiscard]] std::vector<OwnershipRecord> ownershipOf(const HostSnapshot& snapshot, const std::string& boot);

}  // namespace brindle
