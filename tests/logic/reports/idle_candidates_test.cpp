#include "logic/reports/idle_candidates.h"

#include <gmock/gmock.h>

#include "tests/logic/reports/sample_report.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::int32_t> pidsOf(const std::vector<IdleCandidate>& candidates) {
  std::vector<std::int32_t> pids;
  for (const IdleCandidate& candidate : candidates) pids.push_back(candidate.pid);
  return pids;
}

TrackedProcess running(std::int32_t pid, std::string commandLine) {
  TrackedProcess made = process({.pid = pid, .ppid = 1});
  made.commandLine = std::move(commandLine);
  return made;
}

TEST(IdleCandidates, CarryWhatAPlanNeeds) {
  SampleReport report;
  report.processes = {listener({.pid = 500}, {3000})};
  report.processes[0].project = "shop";
  report.processes[0].footprint = 12;
  report.processes[0].start = kNow - Seconds{90.5};
  report.protections = {{500, "Protected by your rule"}};
  const IdleCandidate expected{.pid = 500,
                               .ports = {3000},
                               .name = "worker",
                               .project = "shop",
                               .uptime = 90.5,
                               .footprint = 12,
                               .ownedByCurrentUser = true,
                               .protectedReason = "Protected by your rule"};
  EXPECT_THAT(idleCandidates(report.snapshot(), kNow), ElementsAre(expected));
}

TEST(IdleCandidates, AreOfEveryKindButOther) {
  SampleReport report;
  report.processes = {running(500, "mcp"), running(510, "chrome"), running(520, "jest"), listener({.pid = 530}, {80}),
                      running(540, "bash")};
  EXPECT_THAT(pidsOf(idleCandidates(report.snapshot(), kNow)), ElementsAre(500, 510, 520, 530));
}

TEST(IdleCandidates, HaveNoRoleAndAreNoSystemProcesses) {
  SampleReport report;
  report.processes = {running(500, "mcp"), running(510, "mcp"), running(99, "mcp"), agent({.pid = 520, .ppid = 1})};
  report.processes[0].role = ProcessRole::terminal;
  report.processes[1].path = "/usr/bin/mcp";
  report.processes[3].ports = {3000};
  EXPECT_THAT(idleCandidates(report.snapshot(), kNow), IsEmpty());
}

TEST(IdleCandidates, IncludeOtherUsersAsNotOwned) {
  SampleReport report;
  report.processes = {running(500, "mcp")};
  report.processes[0].uid = kOtherUser;
  const auto candidates = idleCandidates(report.snapshot(), kNow);
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_FALSE(candidates[0].ownedByCurrentUser);
}

TEST(IdleCandidates, TakeTheFirstOfTwoProcessesWithOnePid) {
  SampleReport report;
  report.processes = {running(500, "bash"), running(500, "mcp"), running(510, "mcp"), running(510, "mcp")};
  EXPECT_THAT(pidsOf(idleCandidates(report.snapshot(), kNow)), ElementsAre(510));
}

}  // namespace
}  // namespace brindle
