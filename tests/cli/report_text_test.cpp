#include "cli/report_text.h"

#include <gtest/gtest.h>

#include "logic/reports/cli_reports.h"
#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;

struct ReportTextTest : testing::Test {
  static TrackedProcess process(std::int32_t pid, std::int32_t ppid, std::string name) {
    return {.pid = pid,
            .ppid = ppid,
            .uid = kUser,
            .name = name,
            .commandLine = name,
            .start = dateFromSeconds(1000),
            .footprint = 2'000'000};
  }
  static HostSnapshot snapshot(std::vector<TrackedProcess> processes) {
    static const ProtectionRules kNoRules;
    return snapshotOf(std::move(processes),
                      SnapshotContext{dateFromSeconds(4600), kUser, SystemProcessRules::forLinux(), kNoRules});
  }
  RecordedContext recorded;
  const Output& output = recorded.output;
};

TEST_F(ReportTextTest, PortsShowProjectFrameworkAgeAndReach) {
  TrackedProcess vite = process(20, 1, "node");
  vite.ports = {5173};
  vite.project = "shop";
  vite.framework = "Vite";
  HostSnapshot host = snapshot({vite});
  host.reachablePorts = {5173};
  EXPECT_EQ(ReportText::ports(CLIReports::ports(host.report()), host, output),
            "PORT  PID  NAME  PROJECT  FRAMEWORK  AGE  OPEN TO\n"
            "5173   20  node  shop     Vite        1h  network\n");
}

TEST_F(ReportTextTest, NoListenersAreALine) {
  const HostSnapshot host = snapshot({});
  EXPECT_EQ(ReportText::ports({}, host, output), "Nothing listens.\n");
  HostSnapshot others = host;
  others.unownedListeners = 1;
  EXPECT_EQ(ReportText::ports({}, others, output), "Nothing that can be seen listens.\n");
  EXPECT_EQ(ReportText::agents({}, host, output), "No agent is running.\n");
  EXPECT_EQ(ReportText::ghosts({}, output), "Nothing was left behind.\n");
}

TEST_F(ReportTextTest, AgentsShowTheirProcessesBelowThemAndWhatWasLeftBehind) {
  TrackedProcess agent = process(10, 1, "claude");
  agent.role = ProcessRole::agent;
  agent.agentName = "Claude Code";
  TrackedProcess ghost = process(30, 1, "vite\n\x1b[31m");
  ghost.recordedAgentName = "Codex";
  const HostSnapshot host = snapshot({agent, process(11, 10, "rg"), ghost});
  EXPECT_EQ(ReportText::agents(CLIReports::agents(host.report(), host.now), host, output),
            "PID  AGENT        ACTIVITY  UP  MEMORY\n"
            " 10  Claude Code  waiting   1h  4.0 MB\n"
            " 11    rg         other         2.0 MB\n"
            "\n"
            "PID  LEFT BEHIND BY                       MEMORY  COMMAND\n"
            " 30  Codex (exited), by Brindle's record  2.0 MB  vite  [31m\n");
}

TEST_F(ReportTextTest, WhatIsCertainAndWhatIsOnlyLikelyHaveTablesOfTheirOwn) {
  const LeftBehindDocument vite{.pid = 30, .command = "vite", .origin = "Codex (exited), by its environment"};
  const LeftBehindDocument make{.pid = 31, .command = "make", .origin = "Codex (perhaps exited), by its session"};
  const std::string certain =
      "PID  LEFT BEHIND BY                      MEMORY  COMMAND\n"
      " 30  Codex (exited), by its environment     0 B  vite\n";
  const std::string likely =
      "PID  PERHAPS LEFT BEHIND BY                  MEMORY  COMMAND\n"
      " 31  Codex (perhaps exited), by its session     0 B  make\n";
  EXPECT_EQ(ReportText::ghosts({.leftBehind = {vite}}, output), certain);
  EXPECT_EQ(ReportText::ghosts({.likely = {make}}, output), likely);
  EXPECT_EQ(ReportText::ghosts({.leftBehind = {vite}, .likely = {make}}, output), certain + "\n" + likely);
}

TEST_F(ReportTextTest, ATerminalIsNotOverrun) {
  recorded.results.width = 50;
  const LeftBehindDocument vite{
      .pid = 30, .command = std::string(80, 'v'), .origin = "Codex (exited), by its environment"};
  EXPECT_EQ(ReportText::ghosts({.leftBehind = {vite}}, output),
            "PID  LEFT BEHIND BY     MEMORY  COMMAND\n"
            " 30  Codex (exited), …     0 B  vvvvvvvvvvvvvvvvv…\n");
}

TEST_F(ReportTextTest, WhatCouldNotBeSeenIsSaid) {
  HostSnapshot host = snapshot({});
  EXPECT_EQ(ReportText::unseen(host), "");
  host.uninspected = 1;
  host.unownedListeners = 2;
  EXPECT_EQ(
      ReportText::unseen(host),
      "1 process of other users could not be inspected; 2 listening ports belong to processes that cannot be seen");
}

TEST_F(ReportTextTest, IdleShowsWhatIsKeptAndWhy) {
  IdleDocument document;
  document.stop = {{.pid = 20, .ports = {80}, .name = "node", .uptimeSeconds = 7200, .memoryBytes = 1000}};
  document.skipped = {{.pid = 21, .name = "vite", .uptimeSeconds = 60, .protectedReason = "Protected by your rule"}};
  document.summary = "Stopping these frees 1 KB and ports 80.";
  EXPECT_EQ(ReportText::idle(document, output),
            "PID  NAME  UP  MEMORY  PORTS  LEFT ALONE\n"
            " 20  node  2h    1 KB  80\n"
            " 21  vite  1m     0 B         Protected by your rule\n"
            "\n"
            "Stopping these frees 1 KB and ports 80.\n");
}

}  // namespace
}  // namespace brindle
