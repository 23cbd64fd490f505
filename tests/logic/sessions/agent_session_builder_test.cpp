// What one session holds: texts, memory, ports, CPU and activity. Which processes belong to it is tested beside.
#include "logic/sessions/agent_session_builder.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/logic/sessions/sample_processes.h"

namespace brindle {
namespace {

using AgentSessionBuilder::build;
using Activity = SessionActivity;

AgentSession only(const std::vector<TrackedProcess>& processes) {
  const auto sessions = build(processes, kUser, kNow);
  EXPECT_EQ(sessions.size(), 1U);
  return sessions.empty() ? AgentSession{} : sessions.front();
}

TEST(AgentSessionBuilder, GathersAnAgentAndWhatItStarted) {
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  root.cwd = "/home/ada/shop";
  root.footprint = 1000;
  root.cpuPercent = 0.5;
  root.ports = {9000};
  TrackedProcess server = process({.pid = 510, .ppid = 500});
  server.ports = {5173, 3000};
  server.footprint = 200;
  server.cpuPercent = 7.0;
  server.name = "node";
  server.commandLine = "node vite";
  TrackedProcess helper = process({.pid = 520, .ppid = 510});
  helper.ports = {3000};
  helper.footprint = 30;

  const AgentSession expected{.pid = 500,
                              .startTime = 7,
                              .start = root.start,
                              .agent = "Claude Code",
                              .project = "shop",
                              .cwd = "/home/ada/shop",
                              .activity = Activity::working,
                              .footprint = 1230,
                              .children = {{510, "node", "node vite", SessionChildKind::devServer, {5173, 3000}, 200},
                                           {520, "worker", "worker --run", SessionChildKind::devServer, {3000}, 30}},
                              .ports = {3000, 5173, 9000},
                              .cpuPercent = 7.5};
  EXPECT_EQ(build({helper, server, root, process({.pid = 600, .ppid = 1})}, kUser, kNow),
            std::vector<AgentSession>{expected});
}

TEST(AgentSessionBuilder, FindsNoSessionWithoutAgents) {
  EXPECT_TRUE(build({}, kUser, kNow).empty());
  EXPECT_TRUE(build({process({.pid = 500, .ppid = 1})}, kUser, kNow).empty());
}

TEST(AgentSessionBuilder, TakesTheProjectBeforeTheFolder) {
  const struct {
    std::optional<std::string> project;
    std::optional<std::string> cwd;
    std::optional<std::string> expected;
  } rows[] = {
      {"shop", "/home/ada/other", "shop"},
      {"shop", std::nullopt, "shop"},
      {"", "/home/ada/other", "other"},
      {std::nullopt, "/home/ada/other", "other"},
      {std::nullopt, "/home/ada/other/", "other"},
      {std::nullopt, "relative", "relative"},
      {std::nullopt, "/", std::nullopt},
      {std::nullopt, "//", std::nullopt},
      {std::nullopt, "", std::nullopt},
      {"", "", std::nullopt},
      {std::nullopt, std::nullopt, std::nullopt},
  };
  for (const auto& row : rows) {
    TrackedProcess root = agent({.pid = 500, .ppid = 1});
    root.project = row.project;
    root.cwd = row.cwd;
    EXPECT_EQ(only({root}).project, row.expected) << row.cwd.value_or("absent");
  }
}

TEST(AgentSessionBuilder, SumsFootprintsUpToTheLargestNumber) {
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  TrackedProcess child = process({.pid = 510, .ppid = 500});
  root.footprint = std::numeric_limits<std::uint64_t>::max() - 5;
  child.footprint = 5;
  EXPECT_EQ(only({root, child}).footprint, std::numeric_limits<std::uint64_t>::max());
}

TEST(AgentSessionBuilderDeathTest, EndsTheProgramWhenFootprintsOverflow) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  TrackedProcess child = process({.pid = 510, .ppid = 500});
  root.footprint = std::numeric_limits<std::uint64_t>::max() - 5;
  child.footprint = 6;
  EXPECT_DEATH((void)build({root, child}, kUser, kNow), "");
}

TEST(AgentSessionBuilder, ListsPortsAscendingAndOnce) {
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  root.ports = {8080, 80, 8080};
  TrackedProcess child = process({.pid = 510, .ppid = 500});
  child.ports = {443, 80};
  const AgentSession session = only({root, child});
  EXPECT_EQ(session.ports, (std::vector<int>{80, 443, 8080}));
  EXPECT_EQ(session.children[0].ports, (std::vector<int>{443, 80}));
}

TEST(AgentSessionBuilder, HasNoCpuWithoutSamples) {
  EXPECT_EQ(only({agent({.pid = 500, .ppid = 1}), process({.pid = 510, .ppid = 500})}).cpuPercent, std::nullopt);
}

TEST(AgentSessionBuilder, CountsASampleOfZeroAsASample) {
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  root.cpuPercent = 0.0;
  EXPECT_EQ(only({root}).cpuPercent, 0.0);
}

/// A session of one agent and one child, of this age and with these samples.
Activity activityAt(double age, std::optional<double> rootCpu, std::optional<double> childCpu = std::nullopt) {
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  root.start = kNow - Seconds{age};
  root.cpuPercent = rootCpu;
  TrackedProcess child = process({.pid = 510, .ppid = 500});
  child.cpuPercent = childCpu;
  return only({root, child}).activity;
}

TEST(AgentSessionBuilder, WithoutSamplesIsWorkingUpTo119SecondsAndWaitingFrom120) {
  EXPECT_EQ(activityAt(0, std::nullopt), Activity::working);
  EXPECT_EQ(activityAt(119, std::nullopt), Activity::working);
  EXPECT_EQ(activityAt(119.75, std::nullopt), Activity::working);
  EXPECT_EQ(activityAt(120, std::nullopt), Activity::waiting);
}

TEST(AgentSessionBuilder, IsNeverIdleWithoutSamples) { EXPECT_EQ(activityAt(1e9, std::nullopt), Activity::waiting); }

TEST(AgentSessionBuilder, AtHalfAPercentIsWaitingAt599SecondsAndIdleAt600) {
  EXPECT_EQ(activityAt(599, 0.5), Activity::waiting);
  EXPECT_EQ(activityAt(599.75, 0.5), Activity::waiting);
  EXPECT_EQ(activityAt(600, 0.5), Activity::idle);
}

TEST(AgentSessionBuilder, IsIdleOnlyBelowOnePercent) {
  EXPECT_EQ(activityAt(600, 0.99), Activity::idle);
  EXPECT_EQ(activityAt(600, 1.0), Activity::waiting);
}

TEST(AgentSessionBuilder, AtFivePercentIsWorkingWhateverItsAge) {
  for (const double age : {0.0, 120.0, 600.0, 1e6}) {
    EXPECT_EQ(activityAt(age, 5.0), Activity::working) << age;
    EXPECT_EQ(activityAt(age, 4.99), Activity::waiting) << age;
  }
}

TEST(AgentSessionBuilder, JudgesByTheLargestSampleNotTheSum) {
  EXPECT_EQ(activityAt(600, 3.0, 3.0), Activity::waiting);
  EXPECT_EQ(activityAt(600, 0.75, 0.75), Activity::idle);
  EXPECT_EQ(activityAt(600, 0.0, 5.0), Activity::working);
  EXPECT_EQ(activityAt(600, std::nullopt, 0.0), Activity::idle);
}

TEST(AgentSessionBuilder, OfAFutureStartIsAsYoungAsCanBe) {
  EXPECT_EQ(activityAt(-50, std::nullopt), Activity::working);
  EXPECT_EQ(activityAt(-50, 0.0), Activity::waiting);
}

TEST(AgentSessionBuilder, SumsOnlyTheSamplesThatThereAre) {
  TrackedProcess root = agent({.pid = 500, .ppid = 1});
  TrackedProcess first = process({.pid = 510, .ppid = 500});
  TrackedProcess second = process({.pid = 520, .ppid = 500});
  first.cpuPercent = 1.5;
  second.cpuPercent = 2.25;
  EXPECT_EQ(only({root, first, second}).cpuPercent, 3.75);
}

}  // namespace
}  // namespace brindle
