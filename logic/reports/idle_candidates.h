// Chooses the processes that an idle plan considers.
#pragma once

#include <vector>

#include "base/date.h"
#include "logic/reports/idle_plan.h"
#include "logic/reports/report_snapshot.h"

namespace brindle {

/// The dev servers, test runners, browsers and MCP servers among the processes that have no role and are no system
/// processes, of any user, in snapshot order. Agents, and so the roots of sessions, have a role.
[[nodiscard]] std::vector<IdleCandidate> idleCandidates(const ReportSnapshot& snapshot, Date now);

}  // namespace brindle
