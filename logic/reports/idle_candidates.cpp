#include "logic/reports/idle_candidates.h"

#include <unordered_set>

#include "logic/sessions/session_child_kind.h"

namespace brindle {

std::vector<IdleCandidate> idleCandidates(const ReportSnapshot& snapshot, Date now) {
  std::vector<IdleCandidate> candidates;
  std::unordered_set<std::int32_t> known;
  known.reserve(snapshot.processes.size());
  for (const TrackedProcess& process : snapshot.processes) {
    if (!known.insert(process.pid).second || process.role || isSystemProcess(process, snapshot.rules) ||
        classifyChild(process) == SessionChildKind::other) {
      continue;
    }
    IdleCandidate& candidate =
        candidates.emplace_back(IdleCandidate{.pid = process.pid,
                                              .ports = process.ports,
                                              .name = process.name,
                                              .project = process.project,
                                              .uptime = Seconds(now - process.start).count(),
                                              .footprint = process.footprint,
                                              .ownedByCurrentUser = process.uid == snapshot.currentUser});
    const auto reason = snapshot.protections.find(process.pid);
    if (reason != snapshot.protections.end()) candidate.protectedReason = reason->second;
  }
  return candidates;
}

}  // namespace brindle
