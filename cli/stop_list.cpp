#include "cli/stop_list.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "inventory/protections.h"
#include "logic/sessions/byte_sum.h"
#include "logic/sessions/session_quit_planner.h"
#include "logic/sessions/stop_summary.h"

namespace brindle {
namespace {

using ByPid = std::unordered_map<std::int32_t, const TrackedProcess*>;

ByPid byPidOf(const HostSnapshot& snapshot) {
  ByPid byPid;
  for (const TrackedProcess& process : snapshot.processes) byPid.try_emplace(process.pid, &process);
  return byPid;
}

StopItem itemOf(const TrackedProcess& process) {
  return {.pid = process.pid,
          .startTime = process.startTime,
          .name = process.name,
          .commandLine = process.commandLine,
          .footprint = process.footprint,
          .ports = process.ports};
}

void spareOwnChain(StopList& list, const std::unordered_set<std::int32_t>& ownChain) {
  for (StopItem& item : list.items) {
    if (ownChain.contains(item.pid)) item.leftAlone = kOwnChainReason;
  }
}

/// Items whose parent is in the list are reached by the first round's signal to it, if it passes it on.
void markFirst(StopList& list, const ByPid& byPid) {
  std::unordered_set<std::int32_t> stopped;
  for (const StopItem& item : list.items) {
    if (!item.leftAlone) stopped.insert(item.pid);
  }
  for (StopItem& item : list.items) item.first = !item.leftAlone && !stopped.contains(byPid.at(item.pid)->ppid);
}

}  // namespace

std::size_t StopList::stopping() const {
  return static_cast<std::size_t>(std::ranges::count_if(items, [](const StopItem& each) { return !each.leftAlone; }));
}

std::string StopList::summary() const {
  if (stopping() == 0) return std::string(ofIdlePlan ? StopSummary::kNothingIdle : StopSummary::kNothing);
  std::uint64_t bytes = 0;
  std::vector<int> ports;
  std::unordered_set<int> named;
  for (const StopItem& item : items) {
    if (item.leftAlone) continue;
    bytes = addedBytes(bytes, item.footprint);
    std::ranges::copy_if(item.ports, std::back_inserter(ports), [&](int port) { return named.insert(port).second; });
  }
  if (ofIdlePlan) std::ranges::sort(ports);
  return StopSummary::text(bytes, ports);
}

StopList stopTree(const HostSnapshot& snapshot, TreeQuestion question,
                  const std::unordered_set<std::int32_t>& ownChain) {
  const ByPid byPid = byPidOf(snapshot);
  const auto quitting = question.asSession ? std::optional(question.root) : std::nullopt;
  const SessionQuitPlan plan = SessionQuitPlanner::plan({.rootPID = question.root}, quitCandidates(snapshot, quitting),
                                                        snapshot.currentUser, *snapshot.rules);
  StopList list;
  for (const QuitMember& member : plan.members) {
    list.items.push_back(itemOf(*byPid.at(member.pid)));
    list.items.back().leftAlone = member.skipReason;
  }
  spareOwnChain(list, ownChain);
  // A tree without its root would only be started again by it, so all of it is left alone with the root.
  if (!list.items.empty() && list.items.front().leftAlone) list.items.resize(1);
  markFirst(list, byPid);
  return list;
}

StopList stopLeftBehind(const HostSnapshot& snapshot, const std::unordered_set<std::int32_t>& ownChain) {
  const ByPid byPid = byPidOf(snapshot);
  const ProtectionReasons reasons = unaskedReasons(snapshot);
  StopList list;
  for (const LeftBehind& each : snapshot.leftBehind) {
    list.items.push_back(itemOf(each.process));
    const auto reason = reasons.find(each.process.pid);
    if (reason != reasons.end()) list.items.back().leftAlone = reason->second;
  }
  spareOwnChain(list, ownChain);
  markFirst(list, byPid);
  return list;
}

StopList stopIdle(const HostSnapshot& snapshot, const IdlePlan& plan,
                  const std::unordered_set<std::int32_t>& ownChain) {
  const ByPid byPid = byPidOf(snapshot);
  StopList list{.ofIdlePlan = true};
  const auto add = [&](const IdleCandidate& candidate) {
    const auto found = byPid.find(candidate.pid);
    if (found == byPid.end()) return;
    list.items.push_back(itemOf(*found->second));
    list.items.back().leftAlone = candidate.protectedReason;
  };
  for (const IdleCandidate& candidate : plan.stop) add(candidate);
  for (const IdleCandidate& candidate : plan.skipped) add(candidate);
  spareOwnChain(list, ownChain);
  markFirst(list, byPid);
  return list;
}

}  // namespace brindle
