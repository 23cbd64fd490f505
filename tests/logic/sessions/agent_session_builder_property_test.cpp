#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "logic/sessions/agent_session_builder.h"
#include "tests/logic/sessions/process_generators.h"

namespace brindle {
namespace {

using AgentSessionBuilder::build;
using Snapshot = std::vector<TrackedProcess>;

/// Members by root pid, worked out the slow and obvious way.
std::map<std::int32_t, std::set<std::int32_t>> modelMembers(const Snapshot& snapshot) {
  std::map<std::int32_t, TrackedProcess> byPid;
  for (const TrackedProcess& process : snapshot) byPid.emplace(process.pid, process);

  const auto agentAbove = [&](const TrackedProcess& process) {
    std::set<std::int32_t> seen = {process.pid};
    for (std::int32_t at = process.ppid; at >= 2 && byPid.contains(at) && seen.insert(at).second;) {
      if (byPid.at(at).role == ProcessRole::agent) return true;
      at = byPid.at(at).ppid;
    }
    return false;
  };
  std::map<std::int32_t, std::set<std::int32_t>> members;
  for (const auto& [pid, process] : byPid) {
    if (!isUserProcess(process, kUser) || process.role != ProcessRole::agent || agentAbove(process)) continue;
    std::set<std::int32_t> reached = {pid};
    for (std::size_t before = 0; before != reached.size();) {
      before = reached.size();
      for (const auto& [otherPid, other] : byPid) {
        if (reached.contains(other.ppid)) reached.insert(otherPid);
      }
    }
    for (const auto& [otherPid, other] : byPid) {
      if (other.recordedAgentAlive && other.recordedAgentPID == pid && isUserProcess(other, kUser)) {
        reached.insert(otherPid);
      }
    }
    reached.erase(pid);
    std::erase_if(reached, [&](std::int32_t member) { return !isUserProcess(byPid.at(member), kUser); });
    members[pid] = reached;
  }
  return members;
}

RC_GTEST_PROP(AgentSessionBuilder, FindsTheMembersOfTheObviousModel, ()) {
  const Snapshot snapshot = *crowdedSnapshots();
  std::map<std::int32_t, std::set<std::int32_t>> found;
  for (const AgentSession& session : build(snapshot, kUser, kNow)) {
    std::set<std::int32_t>& members = found[session.pid];
    for (const SessionChild& child : session.children) {
      RC_ASSERT(members.insert(child.pid).second);  // nobody twice in one session
    }
  }
  RC_CLASSIFY(!found.empty(), "with sessions");
  RC_ASSERT(found == modelMembers(snapshot));
}

RC_GTEST_PROP(AgentSessionBuilder, SumsMemoryPortsAndCpuOfRootAndChildren, ()) {
  const Snapshot snapshot = *crowdedSnapshots();
  for (const AgentSession& session : build(snapshot, kUser, kNow)) {
    std::set<std::int32_t> pids = {session.pid};
    for (const SessionChild& child : session.children) pids.insert(child.pid);
    std::uint64_t memory = 0;
    std::set<int> ports;
    std::optional<double> cpu;
    for (const TrackedProcess& process : snapshot) {
      if (pids.erase(process.pid) == 0) continue;  // a later one with the same pid
      memory += process.footprint;
      ports.insert(process.ports.begin(), process.ports.end());
      if (process.cpuPercent) cpu = cpu.value_or(0) + *process.cpuPercent;
    }
    RC_ASSERT(pids.empty());
    RC_ASSERT(session.footprint == memory);
    RC_ASSERT(session.ports == std::vector<int>(ports.begin(), ports.end()));
    RC_ASSERT(session.cpuPercent == cpu);  // the samples are such that sums are exact in any order
  }
}

RC_GTEST_PROP(AgentSessionBuilder, PutsEveryUserProcessBelowARootInExactlyOneSession, ()) {
  // Parents come before their children, so there are no cycles; nobody is recorded.
  Snapshot snapshot;
  const int count = *rc::gen::inRange(0, 60);
  for (int index = 0; index < count; ++index) {
    const std::int32_t pid = 200 + index;
    const std::int32_t ppid = *rc::gen::inRange(0, 5) == 0 ? 1 : *rc::gen::inRange(199, pid);
    snapshot.push_back(*rc::gen::inRange(0, 4) == 0 ? agent({.pid = pid, .ppid = ppid})
                                                    : process({.pid = pid, .ppid = ppid}));
  }
  std::map<std::int32_t, int> timesListed;
  for (const AgentSession& session : build(snapshot, kUser, kNow)) {
    ++timesListed[session.pid];
    for (const SessionChild& child : session.children) ++timesListed[child.pid];
  }
  std::set<std::int32_t> withAgent;
  for (const TrackedProcess& process : snapshot) {
    if (process.role == ProcessRole::agent || withAgent.contains(process.ppid)) withAgent.insert(process.pid);
    RC_ASSERT(timesListed[process.pid] == (withAgent.contains(process.pid) ? 1 : 0));
  }
}

RC_GTEST_PROP(AgentSessionBuilder, ListsSessionsByStartAndThenPid, ()) {
  const auto sessions = build(*crowdedSnapshots(), kUser, kNow);
  RC_ASSERT(std::is_sorted(sessions.begin(), sessions.end(), [](const AgentSession& left, const AgentSession& right) {
    return std::pair(left.start, left.pid) < std::pair(right.start, right.pid);
  }));
}

TEST(AgentSessionBuilder, StaysFastWhereManyAgentsHangBelowOneDeepTree) {
  // Walking up from each of these agents on its own would be 2,500,000,000 steps.
  constexpr std::int32_t kDepth = 50'000;
  Snapshot snapshot;
  for (std::int32_t index = 0; index < kDepth; ++index) {
    snapshot.push_back(process({.pid = 200 + index, .ppid = index == 0 ? 1 : 199 + index}));
  }
  for (std::int32_t index = 0; index < kDepth; ++index) {
    snapshot.push_back(agent({.pid = 200'000 + index, .ppid = 199 + kDepth}));
  }
  EXPECT_EQ(build(snapshot, kUser, kNow).size(), static_cast<std::size_t>(kDepth));
}

}  // namespace
}  // namespace brindle
