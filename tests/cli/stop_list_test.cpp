#include "cli/stop_list.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "cli/stop_runner.h"
#include "logic/reports/idle_stop.h"
#include "platform/process_source.h"
#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;
const std::unordered_set<std::int32_t> kNobody;

TrackedProcess process(std::int32_t pid, std::int32_t ppid, std::string name = "node") {
  return {.pid = pid,
          .ppid = ppid,
          .uid = kUser,
          .name = name,
          .path = "/opt/" + name,
          .commandLine = name,
          .startTime = pid * 10,
          .footprint = 1'000'000};
}

TrackedProcess agent(std::int32_t pid, std::int32_t ppid = 1) {
  TrackedProcess tracked = process(pid, ppid, "claude");
  tracked.role = ProcessRole::agent;
  tracked.agentName = "Claude Code";
  return tracked;
}

HostSnapshot snapshot(std::vector<TrackedProcess> processes) {
  static const ProtectionRules kNoRules;
  return snapshotOf(std::move(processes),
                    SnapshotContext{dateFromSeconds(1e6), kUser, SystemProcessRules::forLinux(), kNoRules});
}

std::vector<std::string> shown(const StopList& list) {
  std::vector<std::string> rows;
  for (const StopItem& item : list.items) {
    rows.push_back(std::to_string(item.pid) + (item.first ? " first" : "") +
                   (item.leftAlone ? " - " + *item.leftAlone : ""));
  }
  return rows;
}

using Rows = std::vector<std::string>;

TEST(StopTree, QuitsASessionRootFirstWithWhatIsTiedToIt) {
  TrackedProcess tied = process(30, 1);
  tied.recordedAgentPID = 10;
  tied.recordedAgentAlive = true;
  const HostSnapshot host = snapshot({agent(10), process(11, 10), process(12, 11), tied, process(40, 1)});
  EXPECT_EQ(shown(stopTree(host, {.root = 10, .asSession = true}, kNobody)),
            (Rows{"10 first", "11", "12", "30 first"}));
}

TEST(StopTree, AnAgentIsSparedUnlessItsSessionIsQuit) {
  EXPECT_EQ(shown(stopTree(snapshot({agent(10), process(11, 10)}), {.root = 10}, kNobody)),
            Rows{"10 - Protected by default: AI agents"});
}

TEST(StopTree, ARootThatIsLeftAloneSparesWhatIsBelowIt) {
  const HostSnapshot host = snapshot({process(10, 1, "postgres"), process(11, 10)});
  const StopList list = stopTree(host, {.root = 10}, kNobody);
  EXPECT_EQ(list.items.size(), 1U);
  EXPECT_EQ(list.stopping(), 0U);
  EXPECT_EQ(list.summary(), "Nothing to stop.");
}

TEST(StopTree, SparesTheCommandAndItsAncestors) {
  const HostSnapshot host = snapshot({process(10, 1), process(11, 10), process(12, 10)});
  EXPECT_EQ(shown(stopTree(host, {.root = 10}, {12})), (Rows{"10 first", "11", "12 - Runs this command"}));
  EXPECT_EQ(shown(stopTree(host, {.root = 10}, {10, 12})), Rows{"10 - Runs this command"});
}

TEST(StopTree, WhatIsBelowASparedMemberIsSignalledByItself) {
  const HostSnapshot host = snapshot({process(10, 1), process(11, 10, "postgres"), process(12, 11)});
  EXPECT_EQ(shown(stopTree(host, {.root = 10}, kNobody)),
            (Rows{"10 first", "11 - Protected by default: Databases", "12 first"}));
}

TEST(StopTree, IsEmptyWithoutTheProcess) { EXPECT_TRUE(stopTree(snapshot({}), {.root = 10}, kNobody).items.empty()); }

HostSnapshot withGhosts() {
  TrackedProcess root = process(50, 1);
  root.recordedAgentName = "Codex";
  root.ports = {3000};
  TrackedProcess worker = process(51, 50);
  worker.recordedAgentName = "Codex";
  worker.ports = {3000, 4000};
  return snapshot({root, worker, process(60, 1)});
}

TEST(StopLeftBehind, StopsWhatWasLeftBehindAndNothingElse) {
  const StopList list = stopLeftBehind(withGhosts(), kNobody);
  EXPECT_EQ(shown(list), (Rows{"50 first", "51"}));
  EXPECT_EQ(list.summary(), "Stopping these frees 2.0 MB and ports 3000, 4000.");
  EXPECT_EQ(list.items[0].startTime, 500);
}

TEST(StopLeftBehind, SparesWhatClientsAreConnectedTo) {
  HostSnapshot host = withGhosts();
  host.clients = {{50, 1}};
  EXPECT_EQ(shown(stopLeftBehind(host, kNobody)), (Rows{"50 - Clients are connected", "51 first"}));
}

TEST(StopLeftBehind, NeverTouchesWhatIsOnlyLikely) {
  HostSnapshot host = snapshot({process(50, 1)});
  host.likely = {{host.processes[0], "Codex (perhaps exited), by its session"}};
  EXPECT_TRUE(stopLeftBehind(host, kNobody).items.empty());
}

TEST(StopIdle, FollowsThePlan) {
  const HostSnapshot host = snapshot({process(50, 1), process(51, 1)});
  const IdlePlan plan{.stop = {{.pid = 50}, {.pid = 99}}, .skipped = {{.pid = 51, .protectedReason = "x"}}};
  EXPECT_EQ(shown(stopIdle(host, plan, kNobody)), (Rows{"50 first", "51 - x"}));
}

TEST(StopIdle, HasItsOwnWordsWhenEverythingIsLeftAlone) {
  const HostSnapshot host = snapshot({process(51, 1)});
  const IdlePlan plan{.skipped = {{.pid = 51, .protectedReason = "x"}}};
  EXPECT_EQ(stopIdle(host, plan, kNobody).summary(), "Nothing idle to stop.");
  EXPECT_EQ(stopIdle(host, {}, kNobody).summary(), "Nothing idle to stop.");
}

/// Two processes, the first below nothing, that hold the ports 5173, 3000 and 80, one of them twice.
HostSnapshot withPorts() {
  TrackedProcess root = process(10, 1);
  root.ports = {5173, 3000};
  TrackedProcess child = process(11, 10);
  child.ports = {80, 3000};
  return snapshot({root, child});
}

TEST(StopTree, NamesPortsOnceInTheOrderOfItsMembers) {
  EXPECT_EQ(stopTree(withPorts(), {.root = 10}, kNobody).summary(),
            "Stopping these frees 2.0 MB and ports 5173, 3000, 80.");
}

TEST(StopIdle, NamesPortsOnceAscendingAsTheIdleDocumentDoes) {
  const IdlePlan plan{.stop = {{.pid = 10}, {.pid = 11}}};
  EXPECT_EQ(stopIdle(withPorts(), plan, kNobody).summary(), "Stopping these frees 2.0 MB and ports 80, 3000, 5173.");
}

TEST(StopList, CountsNothingOfWhatIsLeftAlone) {
  HostSnapshot host = withPorts();
  host.protectionRules.ports = {80};
  EXPECT_EQ(stopTree(host, {.root = 10}, kNobody).summary(), "Stopping these frees 1.0 MB and ports 5173, 3000.");
}

struct RunStopTest : testing::Test {
  int run(std::map<std::string, std::string, std::less<>> options) {
    return runStop(list, Arguments{.options = std::move(options)}, recorded.context);
  }
  StopList list = stopLeftBehind(withGhosts(), kNobody);
  RecordedContext recorded;
};

TEST_F(RunStopTest, WithoutATerminalNothingIsStoppedAndTheWayIsNamed) {
  EXPECT_EQ(run({}), 1);
  EXPECT_NE(recorded.results.text.find("Stopping these frees"), std::string::npos);
  EXPECT_NE(recorded.remarks.text.find("--yes"), std::string::npos);
}

TEST_F(RunStopTest, ADryRunShowsThePlanOnly) {
  EXPECT_EQ(run({{"--dry-run", ""}, {"--yes", ""}}), 0);
  EXPECT_EQ(recorded.results.text.find("stopped"), std::string::npos);
}

TEST_F(RunStopTest, NothingToStopIsANegativeAnswer) {
  list = {};
  EXPECT_EQ(run({{"--yes", ""}}), 1);
  EXPECT_EQ(recorded.results.text, "Nothing to stop.\n");
}

TEST_F(RunStopTest, ShowsWhatIsLeftAloneAndWhyAlsoWhenNothingIsStopped) {
  for (StopItem& item : list.items) item.leftAlone = "Protected by your rule";
  EXPECT_EQ(run({{"--yes", ""}}), 1);
  EXPECT_NE(recorded.results.text.find("Protected by your rule"), std::string::npos);
  EXPECT_NE(recorded.results.text.find("\nNothing to stop.\n"), std::string::npos);
}

TEST_F(RunStopTest, WhenEverythingHadEndedAlreadyTheAnswerIsNegative) {
  for (StopItem& item : list.items) item.pid = 0x7FFFFFF0 + item.pid % 10;
  EXPECT_EQ(run({{"--yes", ""}}), 1);
  EXPECT_NE(recorded.results.text.find("had ended already"), std::string::npos);
  EXPECT_NE(recorded.remarks.text.find("nothing was stopped"), std::string::npos);
}

TEST_F(RunStopTest, WhatHadEndedBesideWhatWasStoppedIsNoFailure) {
  const pid_t child = ::fork();
  if (child == 0) {
    // Other tests of this program change both.
    sigset_t none;
    sigemptyset(&none);  // a macro on macOS
    ::signal(SIGTERM, SIG_DFL);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (;;) ::pause();
  }
  ASSERT_GT(child, 0);
  list.items[0].pid = child;
  list.items[0].startTime = startStampOf(child).value_or(0);
  list.items[1].pid = 0x7FFFFFF0;
  EXPECT_EQ(run({{"--yes", ""}}), 0);
  EXPECT_NE(recorded.results.text.find(": stopped\n"), std::string::npos) << recorded.results.text;
  EXPECT_NE(recorded.results.text.find(": had ended already\n"), std::string::npos) << recorded.results.text;
  ::kill(child, SIGKILL);
  EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(OwnChain, HoldsThisProcessAndItsParent) {
  const auto chain = ownChain();
  EXPECT_TRUE(chain.contains(static_cast<std::int32_t>(::getpid())));
  EXPECT_TRUE(chain.contains(static_cast<std::int32_t>(::getppid())));
}

}  // namespace
}  // namespace brindle
