// Any bytes give a snapshot or none; a snapshot survives being written and read again, and whatever it holds, sessions,
// plans and documents can be made of it.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string_view>

#include "base/json_reader.h"
#include "base/json_writer.h"
#include "logic/reports/cli_reports.h"
#include "logic/reports/idle_candidates.h"
#include "logic/reports/idle_stop.h"
#include "logic/sessions/agent_session_builder.h"
#include "logic/sessions/session_quit_planner.h"

namespace brindle {
namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

template <typename Document>
void requireJson(const Document& document) {
  require(parseJson(CLIReports::jsonText(document)).has_value());
}

void report(const std::vector<TrackedProcess>& processes, std::uint32_t user, const SystemProcessRules& rules) {
  const Date now = dateFromSeconds(1'772'352'000);
  const auto sessions = AgentSessionBuilder::build(processes, user, now, rules);
  for (const AgentSession& session : sessions) {
    std::set<std::int32_t> members = {session.pid};
    for (const SessionChild& child : session.children) require(members.insert(child.pid).second);
  }
  std::vector<LeftBehind> leftBehind;
  if (!processes.empty()) leftBehind.push_back({processes.front(), "nobody"});
  const ProtectionReasons protections;
  const ReportSnapshot snapshot{.processes = processes,
                                .sessions = sessions,
                                .leftBehind = leftBehind,
                                .protections = protections,
                                .currentUser = user,
                                .rules = rules};
  requireJson(CLIReports::status(snapshot));
  requireJson(CLIReports::ports(snapshot));
  requireJson(CLIReports::agents(snapshot, now));
  requireJson(IdleStop::document(IdleStop::plan(idleCandidates(snapshot, now), 0), 0));
}

void planQuits(const std::vector<TrackedProcess>& processes, std::uint32_t user, const SystemProcessRules& rules) {
  std::vector<QuitCandidate> candidates;
  for (const TrackedProcess& process : processes) {
    candidates.push_back({.pid = process.pid,
                          .ppid = process.ppid,
                          .uid = process.uid,
                          .name = process.name,
                          .path = process.path.value_or(""),
                          .recordedSessionPID = process.recordedAgentPID});
  }
  constexpr std::size_t kPlans = 8;
  for (std::size_t index = 0; index < processes.size() && index < kPlans; ++index) {
    const auto plan = SessionQuitPlanner::plan({.rootPID = processes[index].pid}, candidates, user, rules);
    std::set<std::int32_t> members;
    for (const QuitMember& member : plan.members) {
      require(members.insert(member.pid).second && member.included != member.skipReason.has_value());
    }
    require(members.contains(processes[index].pid));
  }
}

}  // namespace
}  // namespace brindle

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindle;
  const auto document = parseJson({reinterpret_cast<const char*>(data), size});
  if (!document) return 0;
  const auto snapshot = decodeSnapshot(*document);
  if (!snapshot) return 0;
  const auto again = parseJson(writeJson(encodeSnapshot(*snapshot)));
  require(again && decodeSnapshot(*again) == snapshot);
  const std::uint32_t user = snapshot->empty() ? 0 : snapshot->front().uid;
  for (const SystemProcessRules* rules : {&SystemProcessRules::forMacOS(), &SystemProcessRules::forLinux()}) {
    report(*snapshot, user, *rules);
    planQuits(*snapshot, user, *rules);
  }
  return 0;
}
