#include "cli/stop_runner.h"

#include <gtest/gtest.h>

#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

struct StopRunnerTest : testing::Test {
  int run(std::map<std::string, std::string, std::less<>> options = {}) {
    return runStop(list, {.options = std::move(options)}, recorded.context);
  }

  /// Nothing that runs: no kernel hands out such a pid.
  StopList list{.items = {{.pid = 2'000'000'000,
                           .name = "node",
                           .commandLine = "node srv.js",
                           .footprint = 2'000'000,
                           .ports = {3000},
                           .first = true},
                          {.pid = 2'000'000'001, .name = "psql", .leftAlone = "Your terminal shell"}}};
  const std::string shown =
      "       PID  NAME  MEMORY  PORTS  LEFT ALONE           COMMAND\n"
      "2000000000  node  2.0 MB  3000                        node srv.js\n"
      "2000000001  psql     0 B         Your terminal shell\n"
      "\n"
      "Stopping these frees 2.0 MB and ports 3000.\n";
  RecordedContext recorded;
};

TEST_F(StopRunnerTest, ShowsThePlanAndAsksNobodyForADryRun) {
  EXPECT_EQ(run({{"--dry-run", ""}}), 0);
  EXPECT_EQ(recorded.results.text, shown);
  EXPECT_EQ(recorded.remarks.text, "");
}

TEST_F(StopRunnerTest, StopsNothingWhereThereIsNobodyToAsk) {
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(recorded.results.text, shown);
  EXPECT_EQ(recorded.remarks.text,
            "brindle: nothing was stopped: there is no terminal to ask at; --yes agrees in advance\n");
}

TEST_F(StopRunnerTest, IsANegativeAnswerWhenNothingMayBeStopped) {
  list.items.erase(list.items.begin());
  EXPECT_EQ(run({{"--yes", ""}}), 1);
  EXPECT_EQ(recorded.remarks.text, "");
}

TEST_F(StopRunnerTest, TellsWhatHadEndedBeforeItWasStopped) {
  list.items.front().ports.clear();
  EXPECT_EQ(run({{"--yes", ""}}), 1);
  EXPECT_NE(recorded.results.text.find("2000000000 node: had ended already\n"), std::string::npos);
  EXPECT_EQ(recorded.remarks.text, "brindle: nothing was stopped: it had all ended already\n");
}

TEST(StopUsage, LetsThroughWhatFits) {
  EXPECT_EQ(stopUsageProblem({}), "");
  EXPECT_EQ(stopUsageProblem({.options = {{"--json", ""}, {"--watch", ""}}}), "");
  EXPECT_EQ(stopUsageProblem({.options = {{"--stop", ""}, {"--yes", ""}, {"--force", ""}, {"--dry-run", ""}}}), "");
}

TEST(StopUsage, RefusesWhatCannotBeStoppedAndWhatAgreesToNothing) {
  for (const char* option : {"--json", "--watch", "--snapshot"}) {
    EXPECT_EQ(stopUsageProblem({.options = {{"--stop", ""}, {option, ""}}}),
              "--stop does not go with --json, --watch or --snapshot");
  }
  EXPECT_EQ(stopUsageProblem({.options = {{"--stop", ""}, {"--now", "1"}}}), "--now goes with --snapshot only");
  EXPECT_EQ(stopUsageProblem({.options = {{"--dry-run", ""}}}), "--dry-run goes with --stop only");
}

}  // namespace
}  // namespace brindle
