#include "logic/plan/plan_forecast.h"

#include <gtest/gtest.h>

#include <cmath>

namespace brindle {
namespace {

using namespace PlanForecast;
using Points = std::vector<PlanSample>;
constexpr Date kStart = dateFromSeconds(1'000'000);
constexpr Date kResets = kStart + Seconds{18000};
constexpr auto kSession = PlanWindowKind::session;

Date into(double seconds) { return kStart + Seconds{seconds}; }

TEST(PlanForecast, RunsOutWhenTheRateReachesAHundredBeforeTheReset) {
  EXPECT_EQ(outcome(kResets, kSession, into(3600), 50), Outcome{RunsOut{into(7200)}});
}

TEST(PlanForecast, IsOnPaceWhenTheRateLastsUntilTheReset) {
  EXPECT_EQ(outcome(kResets, kSession, into(3600), 10), Outcome{OnPace{}});
}

TEST(PlanForecast, IsOnPaceWhenItIsEmptyExactlyAtTheReset) {
  EXPECT_EQ(outcome(kResets, kSession, into(9000), 50), Outcome{OnPace{}});
  EXPECT_TRUE(std::holds_alternative<RunsOut>(outcome(kResets, kSession, into(9000), 50.01)));
}

TEST(PlanForecast, IsFullFromAHundredOnEvenWithoutAResetDate) {
  for (const double used : {100.0, 134.5}) {
    EXPECT_EQ(outcome(std::nullopt, kSession, into(0), used), Outcome{Full{}});
    EXPECT_EQ(outcome(into(-1), kSession, into(0), used), Outcome{Full{}});
  }
  EXPECT_EQ(outcome(std::nullopt, kSession, into(0), 99.9), Outcome{Unknown{}});
}

TEST(PlanForecast, IsUnknownWithoutAFutureResetDate) {
  EXPECT_EQ(outcome(std::nullopt, kSession, into(3600), 50), Outcome{Unknown{}});
  EXPECT_EQ(outcome(into(3599), kSession, into(3600), 99.9), Outcome{Unknown{}});
  EXPECT_EQ(outcome(kResets, kSession, kResets, 50), Outcome{Unknown{}});
  EXPECT_NE(outcome(kResets, kSession, kResets - Seconds{0.5}, 50), Outcome{Unknown{}});
}

TEST(PlanForecast, IsUnknownInTheFirstTenMinutes) {
  EXPECT_EQ(outcome(kResets, kSession, into(599), 50), Outcome{Unknown{}});
  EXPECT_EQ(outcome(kResets, kSession, into(599.999), 50), Outcome{Unknown{}});
  EXPECT_EQ(outcome(kResets, kSession, into(600), 50), Outcome{RunsOut{into(1200)}});
}

TEST(PlanForecast, IsUnknownBelowOnePercent) {
  EXPECT_EQ(outcome(kResets, kSession, into(17000), 0.5), Outcome{Unknown{}});
  EXPECT_EQ(outcome(kResets, kSession, into(17000), 0.999), Outcome{Unknown{}});
  EXPECT_EQ(outcome(kResets, kSession, into(17000), 1), Outcome{OnPace{}});
  EXPECT_EQ(outcome(kResets, kSession, into(17000), -5), Outcome{Unknown{}});
}

TEST(PlanForecast, IsUnknownForWhatIsNoNumber) {
  EXPECT_EQ(outcome(kResets, kSession, into(3600), std::nan("")), Outcome{Unknown{}});
  EXPECT_EQ(outcome(dateFromSeconds(std::nan("")), kSession, into(3600), 50), Outcome{Unknown{}});
}

TEST(PlanForecast, UsesTheLengthOfTheWindow) {
  const Date resets = kStart + Seconds{604800};
  EXPECT_EQ(outcome(resets, PlanWindowKind::week, into(86400), 50), Outcome{RunsOut{into(172800)}});
  EXPECT_EQ(outcome(resets, PlanWindowKind::week, into(599), 50), Outcome{Unknown{}});
}

TEST(PlanBurn, IsAbsentWithoutAResetDate) { EXPECT_EQ(burn({}, std::nullopt, kSession, into(3600), 50), std::nullopt); }

TEST(PlanBurn, DrawsFromTheStartToNowWithoutSamples) {
  EXPECT_EQ(burn({}, kResets, kSession, into(3600), 50), (Burn{.start = kStart,
                                                               .end = kResets,
                                                               .points = {{kStart, 0}, {into(3600), 50}},
                                                               .projection = PlanSample{into(7200), 100}}));
}

TEST(PlanBurn, AddsNoPointForNowWhenTheLastSampleIsFresh) {
  const Points samples{{into(3599.5), 49}};
  EXPECT_EQ(burn(samples, kResets, kSession, into(3600), 50)->points, (Points{{kStart, 0}, {into(3599.5), 49}}));
  const Points exact{{into(3599), 49}};
  EXPECT_EQ(burn(exact, kResets, kSession, into(3600), 50)->points, (Points{{kStart, 0}, {into(3599), 49}}));
  const Points old{{into(3598.9), 49}};
  EXPECT_EQ(burn(old, kResets, kSession, into(3600), 50)->points.size(), 3U);
}

TEST(PlanBurn, SortsTheSamplesAndDropsThoseOutsideTheWindow) {
  const Points samples{{into(1200), 20}, {into(3601), 99}, {into(-0.001), 80}, {into(600), 10}, {into(3600), 50}};
  EXPECT_EQ(burn(samples, kResets, kSession, into(3600), 50)->points,
            (Points{{kStart, 0}, {into(600), 10}, {into(1200), 20}, {into(3600), 50}}));
}

TEST(PlanBurn, TakesASampleAtTheStartForTheFirstPoint) {
  const Points samples{{kStart, 3}};
  EXPECT_EQ(burn(samples, kResets, kSession, into(3600), 50)->points, (Points{{kStart, 3}, {into(3600), 50}}));
}

TEST(PlanBurn, KeepsSamplesOfEqualTimeInTheirOrder) {
  const Points samples{{into(600), 2}, {into(600), 1}};
  EXPECT_EQ(burn(samples, kResets, kSession, into(600), 1)->points,
            (Points{{kStart, 0}, {into(600), 2}, {into(600), 1}}));
}

TEST(PlanBurn, ProjectsTheShareAtTheResetWhenOnPace) {
  EXPECT_EQ(burn({}, kResets, kSession, into(3600), 10)->projection, (PlanSample{kResets, 50}));
  EXPECT_EQ(burn({}, kResets, kSession, into(9000), 50)->projection, (PlanSample{kResets, 100}));
}

TEST(PlanBurn, ProjectsNothingWhenUnknownOrFull) {
  EXPECT_EQ(burn({}, kResets, kSession, into(599), 50)->projection, std::nullopt);
  EXPECT_EQ(burn({}, kResets, kSession, into(3600), 100)->projection, std::nullopt);
}

TEST(PlanBurn, HoldsOnlyTheStartBeforeTheWindowBegins) {
  EXPECT_EQ(burn({}, kResets, kSession, into(-100), 5)->points, (Points{{kStart, 0}}));
  EXPECT_EQ(burn({}, kResets, kSession, into(1), 5)->points, (Points{{kStart, 0}}));
}

TEST(PlanBurn, DropsSamplesWhoseDateIsNoNumber) {
  const Points samples{{dateFromSeconds(std::nan("")), 20}, {into(600), 10}};
  EXPECT_EQ(burn(samples, kResets, kSession, into(600), 10)->points, (Points{{kStart, 0}, {into(600), 10}}));
}

}  // namespace
}  // namespace brindle
