// Works out which processes belong to an agent session, which of them may be stopped, and which need a signal of
// their own. It stops nothing.
//
// Called by the host before it asks the person, with all live processes of interest. Pure; linear.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "logic/sessions/session_quit_plan.h"
#include "logic/sessions/system_process_rules.h"

namespace brindle::SessionQuitPlanner {

/// The session that is to be quit.
struct Request {
  std::int32_t rootPID = 0;
  /// The agent's display name.
  std::string agent;
};

/// The members are the root, everything below it breadth first, then each candidate not met so far whose
/// recordedSessionPID names the root, in candidate order and followed by what is below it. No members when the root
/// is not among the candidates. Precondition: pids are unique; of two candidates with one pid the first counts.
[[nodiscard]] SessionQuitPlan plan(const Request& request, const std::vector<QuitCandidate>& candidates,
                                   std::uint32_t currentUser,
                                   const SystemProcessRules& rules = SystemProcessRules::forMacOS());

/// Why `candidate` must be left alone, or none when it may be stopped. The first that holds decides: a system process
/// by pid, name or path; another user's; Brindle itself; the application in front; a shell that has a terminal; a
/// built-in protection; a rule of the user.
[[nodiscard]] std::optional<std::string> skipReason(const QuitCandidate& candidate, std::uint32_t currentUser,
                                                    const SystemProcessRules& rules = SystemProcessRules::forMacOS());

}  // namespace brindle::SessionQuitPlanner
