#include "inventory/host_snapshot.h"

#include <gtest/gtest.h>

#include "logic/reports/cli_reports.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;

SnapshotContext context() {
  static const ProtectionRules kNoRules;
  return {dateFromSeconds(5000), kUser, SystemProcessRules::forLinux(), kNoRules};
}

ProcessFacts facts(std::int32_t pid, std::int32_t ppid, std::vector<std::string> arguments) {
  return {.pid = pid,
          .ppid = ppid,
          .uid = kUser,
          .name = arguments.front(),
          .path = "/opt/bin/" + arguments.front(),
          .arguments = arguments,
          .start = dateFromSeconds(1000),
          .startTime = pid * 10};
}

HostSnapshot look(const std::vector<ProcessFacts>& processes, const std::vector<OwnershipRecord>& records = {}) {
  ProjectFinder projects("", [](const std::string&) { return std::nullopt; });
  return snapshotOf(processes, records, projects, context());
}

TEST(HostSnapshot, WorksOutSessionsLeftoversAndProtections) {
  std::vector<ProcessFacts> processes{facts(10, 1, {"claude"}), facts(11, 10, {"node", "srv.js"}),
                                      facts(50, 1, {"vite"})};
  processes[1].ports = {3000};
  processes[2].variables = {{"CODEX_THREAD_ID", "t"}};
  const HostSnapshot host = look(processes);
  ASSERT_EQ(host.sessions.size(), 1U);
  EXPECT_EQ(host.sessions[0].ports, (std::vector<int>{3000}));
  ASSERT_EQ(host.leftBehind.size(), 1U);
  EXPECT_EQ(host.leftBehind[0].process.pid, 50);
  EXPECT_EQ(host.leftBehind[0].origin, "Codex (exited), by its environment");
  EXPECT_EQ(host.protections.at(10), "Protected by default: AI agents");
  EXPECT_EQ(CLIReports::status(host.report()).ghosts, 1);
}

TEST(HostSnapshot, WhatALivingAgentOwnsJoinsItsSession) {
  std::vector<ProcessFacts> processes{facts(10, 1, {"claude"}), facts(11, 1, {"node", "srv.js"})};
  processes[1].variables = {{"CLAUDE_PID", "10"}};
  const HostSnapshot host = look(processes);
  ASSERT_EQ(host.sessions.size(), 1U);
  ASSERT_EQ(host.sessions[0].children.size(), 1U);
  EXPECT_EQ(host.sessions[0].children[0].pid, 11);
  EXPECT_TRUE(host.leftBehind.empty());
}

TEST(HostSnapshot, LikelyLeftoversAreShownApart) {
  const HostSnapshot host = look({facts(50, 1, {"zsh", "-c", "source /h/.claude/shell-snapshots/snapshot-zsh-1.sh"})});
  EXPECT_TRUE(host.leftBehind.empty());
  ASSERT_EQ(host.likely.size(), 1U);
  EXPECT_EQ(host.processes[0].recordedAgentName, std::nullopt);
}

TEST(HostSnapshot, KeepsTerminalsClientsReachAndWhatCouldNotBeInspected) {
  std::vector<ProcessFacts> processes{facts(10, 1, {"bash"}), facts(11, 1, {"node"})};
  processes[0].hasTerminal = true;
  processes[0].inspected = false;
  processes[1].clients = 3;
  processes[1].reachable = true;
  processes[1].ports = {3000};
  const HostSnapshot host = look(processes);
  EXPECT_TRUE(host.withTerminal.contains(10));
  EXPECT_EQ(host.protections.at(10), "Your terminal shell");
  EXPECT_EQ(host.uninspected, 1);
  EXPECT_EQ(host.clients.at(11), 3);
  EXPECT_TRUE(host.reachablePorts.contains(3000));
}

TEST(HostSnapshot, ARecordedOneFindsLeftoversByTheirRecordedAgent) {
  TrackedProcess ghost{.pid = 50, .ppid = 1, .uid = kUser, .name = "node"};
  ghost.recordedAgentName = "Codex";
  TrackedProcess owned = ghost;
  owned.pid = 51;
  owned.recordedAgentAlive = true;
  TrackedProcess others = ghost;
  others.pid = 52;
  others.uid = 0;
  TrackedProcess nameless{.pid = 53, .ppid = 1, .uid = kUser, .name = "node", .recordedAgentPID = 7};
  const HostSnapshot host = snapshotOf({ghost, owned, others, nameless}, context());
  ASSERT_EQ(host.leftBehind.size(), 2U);
  EXPECT_EQ(host.leftBehind[0].origin, "Codex (exited), by Brindle's record");
  EXPECT_EQ(host.leftBehind[1].origin, "An agent (exited), by Brindle's record");
}

TEST(HostSnapshot, SurvivesBeingRecorded) {
  std::vector<ProcessFacts> processes{facts(10, 1, {"claude"}), facts(11, 10, {"node"}), facts(50, 1, {"vite"})};
  processes[2].variables = {{"CODEX_THREAD_ID", "t"}};
  const HostSnapshot living = look(processes);
  const HostSnapshot recorded = snapshotOf(*decodeSnapshot(JsonValue(encodeSnapshot(living.processes))), context());
  EXPECT_EQ(recorded.processes, living.processes);
  EXPECT_EQ(recorded.sessions, living.sessions);
  EXPECT_EQ(recorded.leftBehind.size(), living.leftBehind.size());
  EXPECT_EQ(recorded.protections, living.protections);
}

TEST(Ownership, EveryChildOfASessionIsRecorded) {
  const HostSnapshot host = look({facts(10, 1, {"claude"}), facts(11, 10, {"node"}), facts(20, 1, {"make"})});
  EXPECT_EQ(ownershipOf(host, "boot"), (std::vector<OwnershipRecord>{{"boot", 11, 110, 10, 100, "Claude Code"}}));
}

}  // namespace
}  // namespace brindle
