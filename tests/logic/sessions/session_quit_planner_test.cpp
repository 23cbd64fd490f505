#include "logic/sessions/session_quit_planner.h"

#include <gmock/gmock.h>

#include "tests/logic/sessions/sample_processes.h"

namespace brindle {
namespace {

using SessionQuitPlanner::plan;
using SessionQuitPlanner::skipReason;
using testing::ElementsAre;
using testing::IsEmpty;

QuitCandidate candidate(ProcessForest::Link link) {
  return {.pid = link.pid,
          .ppid = link.ppid,
          .uid = kUser,
          .name = "worker",
          .path = "/opt/tools/worker",
          .commandLine = "worker --run",
          .footprint = 10};
}

QuitCandidate recorded(ProcessForest::Link link, std::int32_t session) {
  QuitCandidate made = candidate(link);
  made.recordedSessionPID = session;
  return made;
}

std::vector<std::int32_t> pidsOf(const SessionQuitPlan& made) {
  std::vector<std::int32_t> pids;
  for (const QuitMember& member : made.members) pids.push_back(member.pid);
  return pids;
}

SessionQuitPlan planFor500(const std::vector<QuitCandidate>& candidates) {
  return plan({.rootPID = 500, .agent = "Codex"}, candidates, kUser);
}

TEST(SessionQuitPlanner, PlansTheRootAndWhatIsBelowIt) {
  QuitCandidate server = candidate({.pid = 510, .ppid = 500});
  server.ports = {3000};
  server.userProtected = true;
  const SessionQuitPlan expected{
      .rootPID = 500,
      .agent = "Codex",
      .members = {{.pid = 500, .name = "worker", .commandLine = "worker --run", .footprint = 10, .included = true},
                  {.pid = 510,
                   .name = "worker",
                   .commandLine = "worker --run",
                   .footprint = 10,
                   .ports = {3000},
                   .skipReason = "Protected by your rule"}}};
  EXPECT_EQ(planFor500({candidate({.pid = 600, .ppid = 1}), server, candidate({.pid = 500, .ppid = 1})}), expected);
}

TEST(SessionQuitPlanner, WalksBreadthFirstInCandidateOrder) {
  EXPECT_THAT(pidsOf(planFor500({candidate({.pid = 530, .ppid = 520}), candidate({.pid = 520, .ppid = 500}),
                                 candidate({.pid = 510, .ppid = 500}), candidate({.pid = 540, .ppid = 510}),
                                 candidate({.pid = 500, .ppid = 1})})),
              ElementsAre(500, 520, 510, 530, 540));
}

TEST(SessionQuitPlanner, HasNoMembersWhenTheRootIsNoCandidate) {
  const SessionQuitPlan made =
      planFor500({candidate({.pid = 510, .ppid = 500}), recorded({.pid = 520, .ppid = 1}, 500)});
  EXPECT_THAT(made.members, IsEmpty());
  EXPECT_EQ(made.rootPID, 500);
  EXPECT_EQ(made.agent, "Codex");
}

TEST(SessionQuitPlanner, AddsRecordedProcessesWithWhatIsBelowThemAfterTheWalk) {
  EXPECT_THAT(pidsOf(planFor500({recorded({.pid = 800, .ppid = 1}, 500), candidate({.pid = 810, .ppid = 800}),
                                 recorded({.pid = 700, .ppid = 1}, 500), recorded({.pid = 900, .ppid = 1}, 501),
                                 candidate({.pid = 500, .ppid = 1}), recorded({.pid = 510, .ppid = 500}, 500)})),
              ElementsAre(500, 510, 800, 810, 700));
}

TEST(SessionQuitPlanner, DoesNotListARecordedProcessTwiceThatIsBelowAnotherRecordedOne) {
  EXPECT_THAT(pidsOf(planFor500({candidate({.pid = 500, .ppid = 1}), recorded({.pid = 800, .ppid = 1}, 500),
                                 recorded({.pid = 810, .ppid = 800}, 500)})),
              ElementsAre(500, 800, 810));
}

TEST(SessionQuitPlanner, CountsTheFirstOfTwoCandidatesWithOnePid) {
  QuitCandidate second = recorded({.pid = 510, .ppid = 1}, 500);
  second.name = "second";
  const SessionQuitPlan made =
      planFor500({candidate({.pid = 500, .ppid = 1}), candidate({.pid = 510, .ppid = 500}), second});
  ASSERT_THAT(pidsOf(made), ElementsAre(500, 510));
  EXPECT_EQ(made.members[1].name, "worker");
}

TEST(SessionQuitPlanner, FollowsALoopOnce) {
  EXPECT_THAT(pidsOf(planFor500({candidate({.pid = 500, .ppid = 520}), candidate({.pid = 510, .ppid = 500}),
                                 candidate({.pid = 520, .ppid = 510})})),
              ElementsAre(500, 510, 520));
}

TEST(SessionQuitPlanner, SkipsARootBelowPid100AsASystemProcess) {
  const SessionQuitPlan made = plan({.rootPID = 99, .agent = "Codex"}, {candidate({.pid = 99, .ppid = 1})}, kUser);
  ASSERT_EQ(made.members.size(), 1U);
  EXPECT_FALSE(made.members[0].included);
  EXPECT_EQ(made.members[0].skipReason, "System process");
  EXPECT_THAT(made.signalTargets(), IsEmpty());
}

TEST(SessionQuitPlanner, ListsAnotherUsersChildAndStillWalksItsChildren) {
  QuitCandidate others = candidate({.pid = 510, .ppid = 500});
  others.uid = kOtherUser;
  const SessionQuitPlan made =
      planFor500({candidate({.pid = 500, .ppid = 1}), others, candidate({.pid = 520, .ppid = 510})});
  ASSERT_THAT(pidsOf(made), ElementsAre(500, 510, 520));
  EXPECT_FALSE(made.members[1].included);
  EXPECT_EQ(made.members[1].skipReason, "Owned by another user");
  EXPECT_TRUE(made.members[2].included);
  EXPECT_FALSE(made.members[2].detached);  // its parent is a member, though a skipped one
}

TEST(SessionQuitPlanner, SignalsADetachedMemberByItself) {
  const SessionQuitPlan made =
      planFor500({candidate({.pid = 500, .ppid = 1}), recorded({.pid = 800, .ppid = 1}, 500),
                  candidate({.pid = 810, .ppid = 800}), recorded({.pid = 900, .ppid = 900}, 500)});
  ASSERT_EQ(made.members.size(), 4U);
  EXPECT_FALSE(made.members[0].detached);
  EXPECT_TRUE(made.members[1].detached);
  EXPECT_FALSE(made.members[2].detached);
  EXPECT_TRUE(made.members[3].detached);  // it hangs under itself alone
  EXPECT_THAT(made.signalTargets(), ElementsAre(500, 800, 900));
}

TEST(SessionQuitPlanner, NeverCallsASkippedMemberDetached) {
  QuitCandidate kept = recorded({.pid = 800, .ppid = 1}, 500);
  kept.frontmost = true;
  const SessionQuitPlan made = planFor500({candidate({.pid = 500, .ppid = 1}), kept});
  ASSERT_EQ(made.members.size(), 2U);
  EXPECT_FALSE(made.members[1].detached);
}

TEST(SessionQuitPlanner, FreesAPortOfTwoMembersOnce) {
  QuitCandidate root = candidate({.pid = 500, .ppid = 1});
  QuitCandidate child = candidate({.pid = 510, .ppid = 500});
  root.ports = child.ports = {3000};
  EXPECT_THAT(planFor500({root, child}).portsFreed(), ElementsAre(3000));
}

TEST(SkipReason, IsNoneForAnOrdinaryProcessOfTheUser) {
  EXPECT_EQ(skipReason(candidate({.pid = 100, .ppid = 1}), kUser), std::nullopt);
}

TEST(SkipReason, NamesSystemProcessesByPidNameAndPath) {
  EXPECT_EQ(skipReason(candidate({.pid = 99, .ppid = 1}), kUser), "System process");
  QuitCandidate named = candidate({.pid = 500});
  named.name = "Dock";
  EXPECT_EQ(skipReason(named, kUser), "System process");
  QuitCandidate placed = candidate({.pid = 500});
  placed.path = "/usr/bin/x";
  EXPECT_EQ(skipReason(placed, kUser), "System process");
  placed.path = "";
  EXPECT_EQ(skipReason(placed, kUser), std::nullopt);
}

TEST(SkipReason, FollowsTheRulesItIsGiven) {
  QuitCandidate small = candidate({.pid = 12, .ppid = 1});
  small.path = "/usr/bin/node";
  EXPECT_EQ(skipReason(small, kUser, SystemProcessRules::forLinux()), std::nullopt);
  EXPECT_EQ(plan({.rootPID = 12}, {small}, kUser, SystemProcessRules::forLinux()).includedMembers().size(), 1U);
}

TEST(SkipReason, TakesTheFirstThatHolds) {
  QuitCandidate all = candidate({.pid = 99});
  all.uid = kOtherUser;
  all.brindle = all.frontmost = all.hasControllingTTY = all.userProtected = true;
  all.name = "zsh";
  all.defaultProtection = "Databases";
  EXPECT_EQ(skipReason(all, kUser), "System process");
  all.pid = 100;
  EXPECT_EQ(skipReason(all, kUser), "Owned by another user");
  all.uid = kUser;
  EXPECT_EQ(skipReason(all, kUser), "Brindle itself");
  all.brindle = false;
  EXPECT_EQ(skipReason(all, kUser), "The app you're using");
  all.frontmost = false;
  EXPECT_EQ(skipReason(all, kUser), "Your terminal shell");
  all.hasControllingTTY = false;
  EXPECT_EQ(skipReason(all, kUser), "Protected by default: Databases");
  all.defaultProtection = std::nullopt;
  EXPECT_EQ(skipReason(all, kUser), "Protected by your rule");
  all.userProtected = false;
  EXPECT_EQ(skipReason(all, kUser), std::nullopt);
}

TEST(SkipReason, KeepsEveryShellThatHasATerminalLoginShellsToo) {
  for (const std::string shell : {"bash", "zsh", "fish", "sh", "dash", "tcsh"}) {
    for (const std::string& name : {shell, "-" + shell}) {
      QuitCandidate made = candidate({.pid = 500});
      made.name = name;
      EXPECT_EQ(skipReason(made, kUser), std::nullopt) << name;
      made.hasControllingTTY = true;
      EXPECT_EQ(skipReason(made, kUser), "Your terminal shell") << name;
    }
  }
}

TEST(SkipReason, StripsOneLeadingHyphenOnlyAndKnowsNoOtherShell) {
  for (const char* name : {"--zsh", "zsh-", "ksh", "Zsh", "", "-"}) {
    QuitCandidate made = candidate({.pid = 500});
    made.name = name;
    made.hasControllingTTY = true;
    EXPECT_EQ(skipReason(made, kUser), std::nullopt) << name;
  }
}

}  // namespace
}  // namespace brindle
