#include "logic/reports/idle_stop.h"

#include <algorithm>
#include <set>

#include "logic/reports/whole_seconds.h"
#include "logic/sessions/byte_sum.h"
#include "logic/sessions/stop_summary.h"

namespace brindle::IdleStop {
namespace {

void sortLargestFirst(std::vector<IdleCandidate>& candidates) {
  std::stable_sort(candidates.begin(), candidates.end(), [](const IdleCandidate& left, const IdleCandidate& right) {
    return left.footprint != right.footprint ? left.footprint > right.footprint : left.pid < right.pid;
  });
}

std::vector<IdleRow> rowsOf(const std::vector<IdleCandidate>& candidates) {
  std::vector<IdleRow> rows;
  rows.reserve(candidates.size());
  for (const IdleCandidate& candidate : candidates) {
    rows.push_back({.pid = candidate.pid,
                    .ports = candidate.ports,
                    .name = candidate.name,
                    .project = candidate.project,
                    .uptimeSeconds = wholeSeconds(candidate.uptime),
                    .memoryBytes = candidate.footprint,
                    .protectedReason = candidate.protectedReason});
  }
  return rows;
}

}  // namespace

IdlePlan plan(const std::vector<IdleCandidate>& candidates, double minimumAge) {
  IdlePlan plan;
  for (const IdleCandidate& candidate : candidates) {
    if (!candidate.ownedByCurrentUser || !(candidate.uptime >= minimumAge)) continue;
    (candidate.protectedReason ? plan.skipped : plan.stop).push_back(candidate);
  }
  sortLargestFirst(plan.stop);
  sortLargestFirst(plan.skipped);
  return plan;
}

std::string summary(const IdlePlan& plan) {
  if (plan.stop.empty()) return std::string(StopSummary::kNothingIdle);
  std::uint64_t bytes = 0;
  std::set<int> ports;
  for (const IdleCandidate& candidate : plan.stop) {
    bytes = addedBytes(bytes, candidate.footprint);
    ports.insert(candidate.ports.begin(), candidate.ports.end());
  }
  return StopSummary::text(bytes, {ports.begin(), ports.end()});
}

IdleDocument document(const IdlePlan& plan, double minimumAge) {
  return {.idle = !plan.stop.empty(),
          .minimumAgeSeconds = wholeSeconds(minimumAge),
          .stop = rowsOf(plan.stop),
          .skipped = rowsOf(plan.skipped),
          .summary = summary(plan)};
}

}  // namespace brindle::IdleStop
