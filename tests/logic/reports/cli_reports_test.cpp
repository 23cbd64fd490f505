#include "logic/reports/cli_reports.h"

#include <gmock/gmock.h>

#include "tests/logic/reports/sample_report.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::int32_t> pidsOf(const PortsDocument& document) {
  std::vector<std::int32_t> pids;
  for (const PortListener& row : document.listeners) pids.push_back(row.pid);
  return pids;
}

TEST(CLIReportsPorts, GivesARowForEachListener) {
  SampleReport report;
  report.processes = {listener({.pid = 500}, {3000}), process({.pid = 510})};
  report.processes[0].project = "shop";
  report.protections = {{500, "Your terminal shell"}, {510, "unused"}};
  const PortsDocument expected{.listeners = {{.port = 3000,
                                              .pid = 500,
                                              .name = "worker",
                                              .project = "shop",
                                              .ownedByCurrentUser = true,
                                              .protectedReason = "Your terminal shell"}}};
  EXPECT_EQ(CLIReports::ports(report.snapshot()), expected);
}

TEST(CLIReportsPorts, SortsByPortAndThenPid) {
  SampleReport report;
  report.processes = {listener({.pid = 600}, {3000, 80}), listener({.pid = 500}, {3000, 5173})};
  const PortsDocument document = CLIReports::ports(report.snapshot());
  EXPECT_THAT(pidsOf(document), ElementsAre(600, 500, 600, 500));
  EXPECT_EQ(document.listeners.front().port, 80);
  EXPECT_EQ(document.listeners.back().port, 5173);
}

TEST(CLIReportsPorts, ListsOtherUsersAndSystemProcessesAsNotOwnedOrOwned) {
  SampleReport report;
  report.processes = {listener({.pid = 50}, {22}), listener({.pid = 500}, {80})};
  report.processes[1].uid = kOtherUser;
  const PortsDocument document = CLIReports::ports(report.snapshot());
  ASSERT_EQ(document.listeners.size(), 2U);
  EXPECT_TRUE(document.listeners[0].ownedByCurrentUser);
  EXPECT_FALSE(document.listeners[1].ownedByCurrentUser);
  EXPECT_EQ(document.listeners[1].protectedReason, std::nullopt);
}

TEST(CLIReportsPorts, ListsAPortOfAProcessOnceAndThePidOnlyWhereItFirstStands) {
  SampleReport report;
  report.processes = {listener({.pid = 500}, {80, 80}), listener({.pid = 500}, {443})};
  EXPECT_THAT(pidsOf(CLIReports::ports(report.snapshot())), ElementsAre(500));
}

TEST(CLIReportsGhosts, KeepsWhatIsCertainApartFromWhatIsLikely) {
  SampleReport report;
  TrackedProcess vite = listener({.pid = 700}, {5173});
  vite.commandLine = "node vite";
  vite.footprint = 9;
  report.leftBehind = {{.process = vite, .origin = "Codex (exited), by its environment"}};
  const std::vector<LeftBehind> likely = {{.process = process({.pid = 710}), .origin = "perhaps"}};
  const GhostsDocument document = CLIReports::ghosts(report.snapshot(), likely);
  const GhostsDocument expected{.leftBehind = {{.pid = 700,
                                                .command = "node vite",
                                                .origin = "Codex (exited), by its environment",
                                                .memoryBytes = 9,
                                                .ports = {5173}}},
                                .likely = leftBehindRows(likely)};
  EXPECT_EQ(document, expected);
  ASSERT_EQ(document.likely.size(), 1U);
  EXPECT_EQ(document.likely.front().pid, 710);
}

TEST(CLIReportsAgents, GivesSessionsWithWhatTheyStartedAndWhatWasLeftBehind) {
  SampleReport report;
  report.processes = {agent({.pid = 500, .ppid = 1}), listener({.pid = 510, .ppid = 500}, {3000})};
  report.processes[0].start = kNow - Seconds{90.9};
  report.processes[0].project = "shop";
  report.processes[0].footprint = 100;
  report.processes[1].footprint = 23;
  report.leftBehind = {{listener({.pid = 900}, {8080, 80}), "Codex (exited), by its environment"}};
  report.leftBehind[0].process.footprint = 77;

  const AgentsDocument expected{
      .sessions =
          {{.pid = 500,
            .agent = "Claude Code",
            .project = "shop",
            .activity = "working",
            .uptimeSeconds = 90,
            .memoryBytes = 123,
            .ports = {3000},
            .started = {{.pid = 510, .name = "worker", .kind = "devServer", .ports = {3000}, .memoryBytes = 23}}}},
      .leftBehind = {{.pid = 900,
                      .command = "worker --run",
                      .origin = "Codex (exited), by its environment",
                      .memoryBytes = 77,
                      .ports = {8080, 80}}}};
  EXPECT_EQ(CLIReports::agents(report.snapshot(), kNow), expected);
}

TEST(CLIReportsAgents, TruncatesUptimesTowardZero) {
  SampleReport report;
  report.processes = {agent({.pid = 500, .ppid = 1}), agent({.pid = 600, .ppid = 1}), agent({.pid = 700, .ppid = 1})};
  report.processes[0].start = kNow - Seconds{91};
  report.processes[1].start = kNow - Seconds{90.75};
  report.processes[2].start = kNow + Seconds{0.75};
  const AgentsDocument document = CLIReports::agents(report.snapshot(), kNow);
  ASSERT_EQ(document.sessions.size(), 3U);
  EXPECT_EQ(document.sessions[0].uptimeSeconds, 91);
  EXPECT_EQ(document.sessions[1].uptimeSeconds, 90);
  EXPECT_EQ(document.sessions[2].uptimeSeconds, 0);
}

TEST(CLIReportsAgents, WritesActivitiesAndKindsAsTheirTexts) {
  SampleReport report;
  report.processes = {agent({.pid = 500, .ppid = 1}), process({.pid = 510, .ppid = 500}),
                      process({.pid = 520, .ppid = 500})};
  report.processes[0].cpuPercent = 0.0;
  report.processes[1].commandLine = "npx mcp";
  report.processes[2].commandLine = "chrome";
  const AgentsDocument document = CLIReports::agents(report.snapshot(), kNow);
  ASSERT_EQ(document.sessions.size(), 1U);
  EXPECT_EQ(document.sessions[0].activity, "idle");
  ASSERT_EQ(document.sessions[0].started.size(), 2U);
  EXPECT_EQ(document.sessions[0].started[0].kind, "mcp");
  EXPECT_EQ(document.sessions[0].started[1].kind, "browser");
}

TEST(CLIReportsStatus, CountsGhostsDevServersAndSessions) {
  SampleReport report;
  report.processes = {agent({.pid = 500, .ppid = 1}), process({.pid = 510, .ppid = 500}),
                      listener({.pid = 600}, {3000, 80}), listener({.pid = 900}, {5173})};
  report.leftBehind = {{report.processes[3], "Codex"}};
  for (std::size_t index = 0; index < 4; ++index) report.processes[index].footprint = 1U << index;
  report.leftBehind[0].process.footprint = 8;
  const StatusDocument expected{.ghosts = 1,
                                .devServers = 2,
                                .agentSessions = 1,
                                .memoryBytes = 15,
                                .ports = {80, 3000, 5173},
                                .summary =
                                    "1 ghost, 2 dev servers and 1 agent session hold 15 B and ports 80, 3000, "
                                    "5173."};
  EXPECT_EQ(CLIReports::status(report.snapshot()), expected);
}

TEST(CLIReportsStatus, CountsMemoryOfEachProcessOnce) {
  SampleReport report;
  report.processes = {agent({.pid = 500, .ppid = 1}), listener({.pid = 510, .ppid = 500}, {3000})};
  report.processes[0].footprint = 5;
  report.processes[1].footprint = 7;
  report.leftBehind = {{report.processes[1], "Codex"}};
  const StatusDocument document = CLIReports::status(report.snapshot());
  EXPECT_EQ(document.memoryBytes, 12U);
  EXPECT_THAT(document.ports, ElementsAre(3000));
  EXPECT_EQ(document.ghosts, 1);
  EXPECT_EQ(document.devServers, 1);
}

TEST(CLIReportsStatus, TakesOnlyTheUsersProcessesWithoutRoleForDevServers) {
  SampleReport report;
  report.processes = {listener({.pid = 500}, {1}), listener({.pid = 510}, {2}), listener({.pid = 99}, {3}),
                      listener({.pid = 520}, {4}), process({.pid = 530})};
  report.processes[0].uid = kOtherUser;
  report.processes[1].role = ProcessRole::ide;
  report.processes[3].commandLine = "mcp-server";
  const StatusDocument document = CLIReports::status(report.snapshot());
  EXPECT_EQ(document.devServers, 0);
  EXPECT_THAT(document.ports, IsEmpty());
}

TEST(CLIReportsStatus, IsAllClearWhenThereIsNothing) {
  SampleReport report;
  report.processes = {process({.pid = 500})};
  report.processes[0].footprint = 1000;
  const StatusDocument expected{.summary = "All clear."};
  EXPECT_EQ(CLIReports::status(report.snapshot()), expected);
}

}  // namespace
}  // namespace brindle
