#include "logic/sessions/stop_summary.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(StopSummary, NamesMemoryAndPorts) {
  EXPECT_EQ(StopSummary::text(1'500'000'000, {3000, 5173}), "Stopping these frees 1.50 GB and ports 3000, 5173.");
}

TEST(StopSummary, NamesMemoryAloneWithoutPorts) {
  EXPECT_EQ(StopSummary::text(45'000'000, {}), "Stopping these frees 45 MB.");
}

TEST(StopSummary, NamesPortsAloneWithoutMemory) {
  EXPECT_EQ(StopSummary::text(0, {3000}), "Stopping these frees ports 3000.");
}

TEST(StopSummary, CountsOneByteAsMemory) {
  EXPECT_EQ(StopSummary::text(1, {3000}), "Stopping these frees 1 B and ports 3000.");
}

TEST(StopSummary, DoesNotClaimThatThereIsNothingWhenNothingIsFreed) {
  EXPECT_EQ(StopSummary::text(0, {}), "Stopping these frees 0 B.");
}

TEST(StopSummary, HasItsTextsForEmptyPlans) {
  EXPECT_EQ(StopSummary::kNothingIdle, "Nothing idle to stop.");
  EXPECT_EQ(StopSummary::kNothing, "Nothing to stop.");
}

}  // namespace
}  // namespace brindle
