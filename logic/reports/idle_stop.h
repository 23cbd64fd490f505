// Makes idle plans and their documents.
//
// Called by the idle report before it asks for agreement. Pure.
#pragma once

#include <string>
#include <vector>

#include "logic/reports/idle_plan.h"
#include "logic/reports/report_documents.h"

namespace brindle::IdleStop {

/// Of the current user's candidates whose uptime is at least `minimumAge` seconds, those without a protection go to
/// `stop`, the others to `skipped`; other users' take no part.
[[nodiscard]] IdlePlan plan(const std::vector<IdleCandidate>& candidates, double minimumAge);

/// What stopping the planned processes frees, their ports ascending and each once; StopSummary::kNothingIdle when
/// there is nothing to stop.
[[nodiscard]] std::string summary(const IdlePlan& plan);

/// The document of `plan`; spans truncated toward zero, see wholeSeconds.
[[nodiscard]] IdleDocument document(const IdlePlan& plan, double minimumAge);

}  // namespace brindle::IdleStop
