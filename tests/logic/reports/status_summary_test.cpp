#include "logic/reports/status_summary.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(StatusSummary, NamesWhoAndWhatTheyHold) {
  EXPECT_EQ(
      statusSummary(
          {.ghosts = 2, .devServers = 1, .agentSessions = 3, .memoryBytes = 1'500'000'000, .ports = {3000, 5173}}),
      "2 ghosts, 1 dev server and 3 agent sessions hold 1.50 GB and ports 3000, 5173.");
}

TEST(StatusSummary, NamesOnlyWhatIsThere) {
  EXPECT_EQ(statusSummary({.ghosts = 1, .agentSessions = 2, .memoryBytes = 5}),
            "1 ghost and 2 agent sessions hold 5 B.");
  EXPECT_EQ(statusSummary({.devServers = 2, .ports = {80}}), "2 dev servers hold port 80.");
  EXPECT_EQ(statusSummary({.agentSessions = 1}), "1 agent session.");
}

TEST(StatusSummary, SaysThatOneAloneHolds) {
  EXPECT_EQ(statusSummary({.devServers = 1, .memoryBytes = 999, .ports = {80}}),
            "1 dev server holds 999 B and port 80.");
}

TEST(StatusSummary, SaysThatSeveralHoldWhateverTheirKinds) {
  EXPECT_EQ(statusSummary({.ghosts = 2, .agentSessions = 1, .memoryBytes = 1}),
            "2 ghosts and 1 agent session hold 1 B.");
}

TEST(StatusSummary, IsAllClearWithoutAny) { EXPECT_EQ(statusSummary({.memoryBytes = 5, .ports = {1}}), "All clear."); }

}  // namespace
}  // namespace brindle
