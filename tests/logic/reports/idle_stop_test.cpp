#include "logic/reports/idle_stop.h"

#include <gmock/gmock.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <set>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kTwoHours = 7200;

IdleCandidate old(std::int32_t pid) {
  return {.pid = pid, .name = "node", .uptime = 1e6, .footprint = 10, .ownedByCurrentUser = true};
}

std::vector<std::int32_t> pidsOf(const std::vector<IdleCandidate>& candidates) {
  std::vector<std::int32_t> pids;
  for (const IdleCandidate& candidate : candidates) pids.push_back(candidate.pid);
  return pids;
}

TEST(IdleStop, PlansOldProcessesAndKeepsProtectedOnes) {
  IdleCandidate kept = old(510);
  kept.protectedReason = "Your terminal shell";
  const IdlePlan plan = IdleStop::plan({old(500), kept}, kTwoHours);
  EXPECT_THAT(plan.stop, ElementsAre(old(500)));
  EXPECT_THAT(plan.skipped, ElementsAre(kept));
}

TEST(IdleStop, NeverPlansAnotherUsersProcessWhateverItsAge) {
  IdleCandidate plain = old(500);
  IdleCandidate kept = old(510);
  plain.ownedByCurrentUser = kept.ownedByCurrentUser = false;
  kept.protectedReason = "Owned by another user";
  EXPECT_EQ(IdleStop::plan({plain, kept}, 0), IdlePlan{});
}

TEST(IdleStop, PlansFromTheMinimumAgeOn) {
  IdleCandidate at = old(500);
  at.uptime = kTwoHours;
  IdleCandidate younger = old(510);
  younger.uptime = std::nextafter(kTwoHours, 0);
  IdleCandidate keptYounger = younger;
  keptYounger.protectedReason = "Protected by your rule";
  const IdlePlan plan = IdleStop::plan({younger, at, keptYounger}, kTwoHours);
  EXPECT_THAT(pidsOf(plan.stop), ElementsAre(500));
  EXPECT_THAT(plan.skipped, IsEmpty());
}

TEST(IdleStop, SortsBothListsByMemoryLargestFirstAndThenPid) {
  std::vector<IdleCandidate> candidates = {old(503), old(501), old(502), old(504)};
  candidates[2].footprint = 99;
  std::vector<IdleCandidate> kept = candidates;
  for (IdleCandidate& candidate : kept) {
    candidate.pid += 100;
    candidate.protectedReason = "Protected by your rule";
  }
  candidates.insert(candidates.begin(), kept.begin(), kept.end());
  const IdlePlan plan = IdleStop::plan(candidates, kTwoHours);
  EXPECT_THAT(pidsOf(plan.stop), ElementsAre(502, 501, 503, 504));
  EXPECT_THAT(pidsOf(plan.skipped), ElementsAre(602, 601, 603, 604));
}

TEST(IdleStop, SaysWhenAPlanIsEmpty) {
  IdleCandidate kept = old(500);
  kept.protectedReason = "Protected by your rule";
  EXPECT_EQ(IdleStop::summary(IdlePlan{}), "Nothing idle to stop.");
  EXPECT_EQ(IdleStop::summary(IdleStop::plan({kept}, 0)), "Nothing idle to stop.");
}

TEST(IdleStop, SumsMemoryAndListsPortsOnceAscending) {
  IdlePlan plan{.stop = {old(500), old(510)}};
  plan.stop[0].footprint = 1'000'000'000;
  plan.stop[0].ports = {5173, 3000};
  plan.stop[1].footprint = 500'000'000;
  plan.stop[1].ports = {3000, 80};
  EXPECT_EQ(IdleStop::summary(plan), "Stopping these frees 1.50 GB and ports 80, 3000, 5173.");
}

TEST(IdleStop, SummarisesMemoryAloneAndPortsAlone) {
  IdlePlan plan{.stop = {old(500)}};
  EXPECT_EQ(IdleStop::summary(plan), "Stopping these frees 10 B.");
  plan.stop[0].footprint = 0;
  plan.stop[0].ports = {80};
  EXPECT_EQ(IdleStop::summary(plan), "Stopping these frees ports 80.");
}

TEST(IdleStop, LeavesSkippedProcessesOutOfTheSummary) {
  IdleCandidate kept = old(510);
  kept.ports = {80};
  EXPECT_EQ(IdleStop::summary({.stop = {old(500)}, .skipped = {kept}}), "Stopping these frees 10 B.");
}

TEST(IdleStop, MakesADocumentOfThePlan) {
  IdleCandidate stopped = old(500);
  stopped.ports = {3000};
  stopped.project = "shop";
  stopped.uptime = 90.9;
  IdleCandidate kept = old(510);
  kept.protectedReason = "Protected by default: Databases";
  const IdleDocument expected{
      .schema = 1,
      .command = "idle",
      .idle = true,
      .minimumAgeSeconds = 7200,
      .stop =
          {{.pid = 500, .ports = {3000}, .name = "node", .project = "shop", .uptimeSeconds = 90, .memoryBytes = 10}},
      .skipped = {{.pid = 510,
                   .name = "node",
                   .uptimeSeconds = 1'000'000,
                   .memoryBytes = 10,
                   .protectedReason = "Protected by default: Databases"}},
      .summary = "Stopping these frees 10 B and ports 3000."};
  EXPECT_EQ(IdleStop::document({.stop = {stopped}, .skipped = {kept}}, 7200.75), expected);
}

TEST(IdleStop, MakesADocumentThatIsNotIdleWhenThereIsNothingToStop) {
  const IdleDocument document = IdleStop::document({.skipped = {old(500)}}, kTwoHours);
  EXPECT_FALSE(document.idle);
  EXPECT_EQ(document.summary, "Nothing idle to stop.");
}

RC_GTEST_PROP(IdleStop, PutsEachOldProcessOfTheUserIntoExactlyOneList, ()) {
  std::vector<IdleCandidate> candidates;
  for (const int age : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 10))) {
    IdleCandidate made = old(static_cast<std::int32_t>(candidates.size()));
    made.uptime = age;
    made.footprint = *rc::gen::inRange<std::uint64_t>(0, 4);
    made.ownedByCurrentUser = *rc::gen::arbitrary<bool>();
    if (*rc::gen::arbitrary<bool>()) made.protectedReason = "Protected by your rule";
    candidates.push_back(made);
  }
  const double minimumAge = *rc::gen::inRange(0, 10);
  const IdlePlan plan = IdleStop::plan(candidates, minimumAge);
  std::set<std::int32_t> stop;
  std::set<std::int32_t> skipped;
  for (const std::int32_t pid : pidsOf(plan.stop)) RC_ASSERT(stop.insert(pid).second);
  for (const std::int32_t pid : pidsOf(plan.skipped)) RC_ASSERT(skipped.insert(pid).second);
  for (const IdleCandidate& candidate : candidates) {
    const bool planned = candidate.ownedByCurrentUser && candidate.uptime >= minimumAge;
    RC_ASSERT(stop.contains(candidate.pid) == (planned && !candidate.protectedReason));
    RC_ASSERT(skipped.contains(candidate.pid) == (planned && candidate.protectedReason.has_value()));
  }
}

}  // namespace
}  // namespace brindle
