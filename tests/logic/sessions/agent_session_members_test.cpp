// Which processes are roots of sessions, in which order, and which belong to them.
#include <gmock/gmock.h>

#include <limits>

#include "logic/sessions/agent_session_builder.h"
#include "tests/logic/sessions/sample_processes.h"

namespace brindle {
namespace {

using AgentSessionBuilder::build;
using testing::ElementsAre;
using testing::IsEmpty;
using Pids = std::vector<std::int32_t>;

Pids rootsOf(const std::vector<TrackedProcess>& processes,
             const SystemProcessRules& rules = SystemProcessRules::forMacOS()) {
  Pids pids;
  for (const AgentSession& session : build(processes, kUser, kNow, rules)) pids.push_back(session.pid);
  return pids;
}

Pids childrenOf(const AgentSession& session) {
  Pids pids;
  for (const SessionChild& child : session.children) pids.push_back(child.pid);
  return pids;
}

/// A process that a hook record ties to the agent with this pid.
TrackedProcess recorded(ProcessForest::Link link, std::int32_t agentPid) {
  TrackedProcess made = process(link);
  made.recordedAgentPID = agentPid;
  made.recordedAgentAlive = true;
  return made;
}

TEST(AgentSessionMembers, OfAnAgentStartedByAnAgentAreInOneSession) {
  const auto sessions =
      build({agent({.pid = 500, .ppid = 1}), agent({.pid = 510, .ppid = 500}), process({.pid = 520, .ppid = 510})},
            kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(510, 520));
}

TEST(AgentSessionMembers, OfAnAgentBelowAnAgentThroughOthersAreInOneSession) {
  EXPECT_THAT(
      rootsOf({agent({.pid = 500, .ppid = 1}), process({.pid = 510, .ppid = 500}), agent({.pid = 520, .ppid = 510})}),
      ElementsAre(500));
}

TEST(AgentSessionMembers, OfEveryAgentBelowTheSameProcessAreInTheSessionAboveIt) {
  EXPECT_THAT(
      rootsOf({agent({.pid = 500, .ppid = 1}), process({.pid = 510, .ppid = 500}), process({.pid = 511, .ppid = 510}),
               agent({.pid = 520, .ppid = 511}), agent({.pid = 530, .ppid = 511}), agent({.pid = 540, .ppid = 510})}),
      ElementsAre(500));
}

TEST(AgentSessionMembers, CountAnyAgentAboveEvenOneThatIsNoRoot) {
  TrackedProcess nameless = agent({.pid = 500, .ppid = 1});
  nameless.agentName = std::nullopt;
  EXPECT_THAT(rootsOf({nameless, agent({.pid = 510, .ppid = 500})}), IsEmpty());
}

TEST(AgentSessionMembers, SearchNoAgentAtOrAboveTheInitProcess) {
  EXPECT_THAT(rootsOf({agent({.pid = 1, .ppid = 0}), agent({.pid = 500, .ppid = 1})}), ElementsAre(500));
  EXPECT_THAT(rootsOf({agent({.pid = 2, .ppid = 0}), agent({.pid = 500, .ppid = 2})}), IsEmpty());
}

TEST(AgentSessionMembers, StopSearchingWhereTheParentIsNotInTheSnapshot) {
  EXPECT_THAT(rootsOf({agent({.pid = 500, .ppid = 1}), agent({.pid = 520, .ppid = 510})}), ElementsAre(500, 520));
}

TEST(AgentSessionMembers, ComeOldestFirst) {
  TrackedProcess young = agent({.pid = 500, .ppid = 1});
  young.start = kNow;
  EXPECT_THAT(rootsOf({young, agent({.pid = 600, .ppid = 1})}), ElementsAre(600, 500));
}

TEST(AgentSessionMembers, OfAgentsWithOneStartComeInPidOrder) {
  EXPECT_THAT(rootsOf({agent({.pid = 700, .ppid = 1}), agent({.pid = 500, .ppid = 1}), agent({.pid = 600, .ppid = 1})}),
              ElementsAre(500, 600, 700));
}

TEST(AgentSessionMembers, PutAStartThatIsNoNumberLast) {
  TrackedProcess odd = agent({.pid = 500, .ppid = 1});
  odd.start = dateFromSeconds(std::numeric_limits<double>::quiet_NaN());
  EXPECT_THAT(rootsOf({odd, agent({.pid = 700, .ppid = 1}), agent({.pid = 600, .ppid = 1})}),
              ElementsAre(600, 700, 500));
}

TEST(AgentSessionMembers, NeedAUserProcessAsRoot) {
  TrackedProcess others = agent({.pid = 500, .ppid = 1});
  others.uid = kOtherUser;
  TrackedProcess named = agent({.pid = 600, .ppid = 1});
  named.name = "Dock";
  TrackedProcess placed = agent({.pid = 700, .ppid = 1});
  placed.path = "/usr/bin/claude";
  EXPECT_THAT(rootsOf({others, named, placed, agent({.pid = 99, .ppid = 1})}), IsEmpty());
  EXPECT_THAT(rootsOf({agent({.pid = 100, .ppid = 1})}), ElementsAre(100));
}

TEST(AgentSessionMembers, NeedAnAgentWithANameAsRoot) {
  TrackedProcess nameless = agent({.pid = 500, .ppid = 1});
  nameless.agentName = std::nullopt;
  TrackedProcess ide = agent({.pid = 600, .ppid = 1});
  ide.role = ProcessRole::ide;
  TrackedProcess roleless = agent({.pid = 700, .ppid = 1});
  roleless.role = std::nullopt;
  EXPECT_THAT(rootsOf({nameless, ide, roleless}), IsEmpty());
}

TEST(AgentSessionMembers, FollowTheRulesTheyAreGiven) {
  TrackedProcess small = agent({.pid = 12, .ppid = 1});
  small.path = "/usr/bin/claude";
  EXPECT_THAT(rootsOf({small}, SystemProcessRules::forLinux()), ElementsAre(12));
  EXPECT_THAT(rootsOf({small}), IsEmpty());
}

TEST(AgentSessionMembers, ComeBreadthFirstInInputOrderAndThenAsRecorded) {
  const auto sessions = build(
      {recorded({.pid = 900, .ppid = 1}, 500), process({.pid = 530, .ppid = 520}), process({.pid = 520, .ppid = 500}),
       process({.pid = 510, .ppid = 500}), recorded({.pid = 800, .ppid = 1}, 500), agent({.pid = 500, .ppid = 1})},
      kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(520, 510, 530, 900, 800));
}

TEST(AgentSessionMembers, IncludeRecordedProcessesOfRunningAgentsOnly) {
  TrackedProcess dead = recorded({.pid = 900, .ppid = 1}, 500);
  dead.recordedAgentAlive = false;
  TrackedProcess others = recorded({.pid = 910, .ppid = 1}, 500);
  others.uid = kOtherUser;
  const auto sessions =
      build({agent({.pid = 500, .ppid = 1}), dead, others, recorded({.pid = 920, .ppid = 1}, 501)}, kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), IsEmpty());
}

TEST(AgentSessionMembers, AreListedOnceWhenBelowTheRootAndRecorded) {
  const auto sessions = build({agent({.pid = 500, .ppid = 1}), recorded({.pid = 510, .ppid = 500}, 500)}, kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(510));
}

TEST(AgentSessionMembers, NeverHoldTheRootItself) {
  TrackedProcess root = agent({.pid = 500, .ppid = 500});
  root.recordedAgentPID = 500;
  root.recordedAgentAlive = true;
  const auto sessions = build({root}, kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), IsEmpty());
}

TEST(AgentSessionMembers, LeaveOutWhoIsNoUserProcessButNotWhoIsBelowIt) {
  TrackedProcess others = process({.pid = 510, .ppid = 500});
  others.uid = kOtherUser;
  TrackedProcess shell = process({.pid = 520, .ppid = 510});
  shell.path = "/bin/zsh";
  TrackedProcess dock = process({.pid = 530, .ppid = 520});
  dock.name = "Dock";
  const auto sessions = build({agent({.pid = 500, .ppid = 1}), others, shell, dock, process({.pid = 50, .ppid = 530}),
                               process({.pid = 540, .ppid = 50})},
                              kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(540));
}

TEST(AgentSessionMembers, KeepTheFirstOfTwoProcessesWithOnePid) {
  TrackedProcess second = process({.pid = 510, .ppid = 600});
  second.name = "second";
  const auto sessions = build({agent({.pid = 500, .ppid = 1}), agent({.pid = 600, .ppid = 1}),
                               process({.pid = 510, .ppid = 500}), second, agent({.pid = 500, .ppid = 600})},
                              kUser, kNow);
  ASSERT_EQ(sessions.size(), 2U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(510));
  EXPECT_THAT(childrenOf(sessions[1]), IsEmpty());
}

TEST(AgentSessionMembers, SurviveAProcessThatIsItsOwnParent) {
  const auto sessions = build({agent({.pid = 500, .ppid = 500}), process({.pid = 510, .ppid = 510}),
                               agent({.pid = 520, .ppid = 510}), process({.pid = 530, .ppid = 500})},
                              kUser, kNow);
  ASSERT_EQ(sessions.size(), 2U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(530));
  EXPECT_EQ(sessions[1].pid, 520);
}

TEST(AgentSessionMembers, SurviveALoopAboveAnAgent) {
  EXPECT_THAT(
      rootsOf({process({.pid = 300, .ppid = 302}), process({.pid = 301, .ppid = 300}),
               process({.pid = 302, .ppid = 301}), agent({.pid = 500, .ppid = 301}), agent({.pid = 600, .ppid = 300})}),
      ElementsAre(500, 600));
}

TEST(AgentSessionMembers, SurviveALoopThroughAnAgent) {
  const auto sessions =
      build({agent({.pid = 500, .ppid = 520}), process({.pid = 510, .ppid = 500}), process({.pid = 520, .ppid = 510})},
            kUser, kNow);
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_THAT(childrenOf(sessions[0]), ElementsAre(510, 520));
}

TEST(AgentSessionMembers, OfTwoAgentsInOneLoopHaveNoRoot) {
  EXPECT_THAT(rootsOf({agent({.pid = 500, .ppid = 600}), agent({.pid = 600, .ppid = 500})}), IsEmpty());
}

}  // namespace
}  // namespace brindle
