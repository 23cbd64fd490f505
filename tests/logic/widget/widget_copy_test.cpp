#include "logic/widget/widget_copy.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);

WidgetSnapshot withGhostPorts(std::vector<std::uint16_t> ports) {
  return {.ghosts = 1, .ghostBytes = 1'342'177'280, .ghostPorts = std::move(ports)};
}

TEST(WidgetCopy, GhostLineIsAllClearWithoutGhosts) {
  EXPECT_EQ(WidgetCopy::ghostLine({.ghosts = 0, .ghostBytes = 5, .ghostPorts = {80}}), "All clear");
  EXPECT_EQ(WidgetCopy::ghostLine({.ghosts = -1}), "All clear");
}

TEST(WidgetCopy, GhostLineIsTheMemoryAloneWithoutPorts) {
  EXPECT_EQ(WidgetCopy::ghostLine(withGhostPorts({})), "1.25 GB");
}

TEST(WidgetCopy, GhostLineNamesOnePort) {
  EXPECT_EQ(WidgetCopy::ghostLine(withGhostPorts({3000})), "1.25 GB, port 3000");
}

TEST(WidgetCopy, GhostLineNamesTwoPorts) {
  EXPECT_EQ(WidgetCopy::ghostLine(withGhostPorts({3000, 80})), "1.25 GB, ports 3000, 80");
}

TEST(WidgetCopy, GhostLineNamesThreePorts) {
  EXPECT_EQ(WidgetCopy::ghostLine(withGhostPorts({3000, 80, 5173})), "1.25 GB, ports 3000, 80, 5173");
}

TEST(WidgetCopy, GhostLineNamesTheFirstThreeOfFivePorts) {
  EXPECT_EQ(WidgetCopy::ghostLine(withGhostPorts({1, 2, 3, 4, 5})), "1.25 GB, ports 1, 2, 3");
}

TEST(WidgetCopy, GhostLineClampsTheMemory) {
  constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  const std::string most = WidgetCopy::ghostLine({.ghosts = 1, .ghostBytes = kMost});
  EXPECT_FALSE(most.starts_with("-"));
  EXPECT_EQ(WidgetCopy::ghostLine({.ghosts = 1, .ghostBytes = kMost + 1}), most);
  EXPECT_EQ(WidgetCopy::ghostLine({.ghosts = 1, .ghostBytes = std::numeric_limits<std::uint64_t>::max()}), most);
}

TEST(WidgetCopy, AgentsLineSaysWhenNoneIsRunning) {
  EXPECT_EQ(WidgetCopy::agentsLine({.agents = 0, .agentNames = {"Codex"}, .working = 1}), "None running");
}

TEST(WidgetCopy, AgentsLineNamesEachAgentOnceInFirstOrder) {
  EXPECT_EQ(WidgetCopy::agentsLine({.agents = 3, .agentNames = {"Codex", "Claude Code", "Codex"}, .working = 1}),
            "Codex, Claude Code working");
}

TEST(WidgetCopy, AgentsLineIsIdleWhenNobodyWorks) {
  EXPECT_EQ(WidgetCopy::agentsLine({.agents = 1, .agentNames = {"Codex"}, .working = 0}), "Codex idle");
}

TEST(WidgetCopy, AgentsLineNamesThreeAtMost) {
  EXPECT_EQ(WidgetCopy::agentsLine({.agents = 5, .agentNames = {"a", "a", "b", "c", "d"}, .working = 2}),
            "a, b, c working");
}

/// The line of a plan that is not on pace.
std::optional<std::string> planLine(std::optional<Date> emptyAt, std::optional<Date> resets) {
  const WidgetSnapshot snapshot{.plan = WidgetSnapshot::Plan{.resets = resets, .emptyAt = emptyAt}};
  return WidgetCopy::planLine(snapshot, kNow);
}

TEST(WidgetCopy, PlanLineTellsHowToTurnItOn) {
  EXPECT_EQ(WidgetCopy::planLine(WidgetSnapshot{}, kNow), "Turn on in Brindle Settings");
}

TEST(WidgetCopy, PlanLineIsOnPaceWhateverTheDates) {
  const WidgetSnapshot snapshot{
      .plan = WidgetSnapshot::Plan{.resets = kNow + Seconds{60}, .emptyAt = kNow + Seconds{60}, .onPace = true}};
  EXPECT_EQ(WidgetCopy::planLine(snapshot, kNow), "on pace");
}

TEST(WidgetCopy, PlanLineTellsWhenItIsEmptyBeforeWhenItResets) {
  EXPECT_EQ(planLine(kNow + Seconds{45 * 60}, kNow + Seconds{3600}), "empty 45m");
}

TEST(WidgetCopy, PlanLineTellsWhenItResets) {
  EXPECT_EQ(planLine(std::nullopt, kNow + Seconds{3 * 3600 + 5 * 60}), "resets 3h 05m");
}

TEST(WidgetCopy, PlanLineIsNoneWithoutDates) { EXPECT_EQ(planLine(std::nullopt, std::nullopt), std::nullopt); }

TEST(WidgetCopy, TimeUntilChangesItsFormAtAnHourAndADay) {
  const struct {
    double seconds;
    const char* text;
  } rows[] = {{-1e9, "now"},
              {-1, "now"},
              {0, "now"},
              {0.5, "1m"},
              {60, "1m"},
              {60.5, "2m"},
              {59 * 60, "59m"},
              {59 * 60 + 1, "1h 00m"},
              {3600, "1h 00m"},
              {3 * 3600 + 5 * 60, "3h 05m"},
              {23 * 3600 + 59 * 60, "23h 59m"},
              {3600 + 9 * 60, "1h 09m"},
              {3600 + 10 * 60, "1h 10m"},
              {24 * 3600, "1d 0h"},
              {2 * 86400 + 5 * 3600 + 59 * 60, "2d 5h"},
              {std::numeric_limits<double>::quiet_NaN(), "now"}};
  for (const auto& row : rows) EXPECT_EQ(WidgetCopy::timeUntil(kNow + Seconds{row.seconds}, kNow), row.text);
}

TEST(WidgetCopy, TimeUntilBearsAnyDate) {
  EXPECT_EQ(WidgetCopy::timeUntil(dateFromSeconds(std::numeric_limits<double>::infinity()), kNow), "694444444444d 10h");
}

TEST(WidgetCopy, FreedLineCountsProcesses) {
  EXPECT_EQ(WidgetCopy::freedLine({.freedProcesses = 0}), "0 process");
  EXPECT_EQ(WidgetCopy::freedLine({.freedProcesses = 1}), "1 process");
  EXPECT_EQ(WidgetCopy::freedLine({.freedProcesses = 2}), "2 processes");
}

}  // namespace
}  // namespace brindle
