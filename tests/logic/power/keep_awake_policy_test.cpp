#include "logic/power/keep_awake_policy.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

constexpr KeepAwakeRules kRules{.enabled = true};
constexpr PowerState kOnPower{};
const std::vector<std::string> kWorking{"shop", "blog"};
const KeepAwakeStatus kHolding = KeepAwakeHolding{kWorking};
const KeepAwakeStatus kWaiting = KeepAwakeWaiting{};

PowerState battery(std::optional<std::int64_t> percent) { return {.onBattery = true, .batteryPercent = percent}; }

KeepAwakeStatus releasedAt(std::int64_t percent) { return KeepAwakeReleasedBattery{percent, 20}; }

TEST(KeepAwakePolicy, HoldsWhileSessionsWork) {
  KeepAwakePolicy policy;
  EXPECT_EQ(policy.status(kRules, kWorking, kOnPower, ThermalLevel::nominal), kHolding);
  EXPECT_EQ(policy.status(kRules, {}, kOnPower, ThermalLevel::nominal), kWaiting);
}

TEST(KeepAwakePolicy, IsOffWhateverTheSessionsWhenDisabled) {
  for (const ThermalLevel heat : {ThermalLevel::nominal, ThermalLevel::critical}) {
    KeepAwakePolicy policy{.batteryReleased = true};
    EXPECT_EQ(policy.status(KeepAwakeRules{}, kWorking, battery(1), heat), KeepAwakeStatus{KeepAwakeOff{}});
    EXPECT_FALSE(policy.batteryReleased);
  }
}

TEST(KeepAwakePolicy, LetsGoAtTheHeatLimitEvenOnPower) {
  KeepAwakePolicy policy;
  EXPECT_EQ(policy.status(kRules, kWorking, kOnPower, ThermalLevel::fair), kHolding);
  for (const ThermalLevel heat : {ThermalLevel::serious, ThermalLevel::critical}) {
    EXPECT_EQ(policy.status(kRules, kWorking, kOnPower, heat), KeepAwakeStatus{KeepAwakeReleasedThermal{heat}});
  }
}

TEST(KeepAwakePolicy, LetsGoAtTheHeatLimitOfTheRules) {
  KeepAwakePolicy policy;
  KeepAwakeRules rules = kRules;
  rules.thermalLimit = ThermalLevel::critical;
  EXPECT_EQ(policy.status(rules, kWorking, kOnPower, ThermalLevel::serious), kHolding);
  EXPECT_EQ(policy.status(rules, kWorking, kOnPower, ThermalLevel::critical),
            KeepAwakeStatus{KeepAwakeReleasedThermal{ThermalLevel::critical}});
  rules.thermalLimit = ThermalLevel::fair;
  EXPECT_EQ(policy.status(rules, kWorking, kOnPower, ThermalLevel::nominal), kHolding);
  EXPECT_EQ(policy.status(rules, kWorking, kOnPower, ThermalLevel::fair),
            KeepAwakeStatus{KeepAwakeReleasedThermal{ThermalLevel::fair}});
}

TEST(KeepAwakePolicy, LetsGoAtTheBatteryFloorOfTheRules) {
  KeepAwakePolicy policy;
  KeepAwakeRules rules = kRules;
  rules.batteryFloor = 50;
  const auto released = [](std::int64_t percent) { return KeepAwakeStatus(KeepAwakeReleasedBattery{percent, 50}); };
  EXPECT_EQ(policy.status(rules, kWorking, battery(51), ThermalLevel::nominal), kHolding);
  EXPECT_EQ(policy.status(rules, kWorking, battery(50), ThermalLevel::nominal), released(50));
  EXPECT_EQ(policy.status(rules, kWorking, battery(54), ThermalLevel::nominal), released(54));
  EXPECT_EQ(policy.status(rules, kWorking, battery(55), ThermalLevel::nominal), kHolding);
}

TEST(KeepAwakePolicy, StaysReleasedWhenItCoolsBelowTheRecoveredCharge) {
  KeepAwakePolicy policy;
  EXPECT_EQ(policy.status(kRules, kWorking, battery(20), ThermalLevel::nominal), releasedAt(20));
  EXPECT_EQ(policy.status(kRules, kWorking, battery(24), ThermalLevel::serious),
            KeepAwakeStatus{KeepAwakeReleasedThermal{ThermalLevel::serious}});
  EXPECT_EQ(policy.status(kRules, kWorking, battery(24), ThermalLevel::nominal), releasedAt(24));
}

TEST(KeepAwakePolicy, LooksAtTheHeatBeforeTheBatteryAndLeavesItsMemoryAlone) {
  for (const bool released : {false, true}) {
    KeepAwakePolicy policy{.batteryReleased = released};
    EXPECT_EQ(policy.status(kRules, kWorking, battery(10), ThermalLevel::serious),
              KeepAwakeStatus{KeepAwakeReleasedThermal{ThermalLevel::serious}});
    EXPECT_EQ(policy.batteryReleased, released);
  }
}

TEST(KeepAwakePolicy, LetsGoAtTheBatteryFloorAndHoldsAgainFivePointsAbove) {
  KeepAwakePolicy policy;
  EXPECT_EQ(policy.status(kRules, kWorking, battery(21), ThermalLevel::nominal), kHolding);
  EXPECT_EQ(policy.status(kRules, kWorking, battery(20), ThermalLevel::nominal), releasedAt(20));
  EXPECT_EQ(policy.status(kRules, kWorking, battery(21), ThermalLevel::nominal), releasedAt(21));
  EXPECT_EQ(policy.status(kRules, kWorking, battery(24), ThermalLevel::nominal), releasedAt(24));
  EXPECT_TRUE(policy.batteryReleased);
  EXPECT_EQ(policy.status(kRules, kWorking, battery(25), ThermalLevel::nominal), kHolding);
  EXPECT_FALSE(policy.batteryReleased);
  EXPECT_EQ(policy.status(kRules, kWorking, battery(21), ThermalLevel::nominal), kHolding);
}

TEST(KeepAwakePolicy, LetsGoBelowTheFloor) {
  KeepAwakePolicy policy;
  EXPECT_EQ(policy.status(kRules, kWorking, battery(19), ThermalLevel::nominal), releasedAt(19));
}

TEST(KeepAwakePolicy, LetsGoForTheBatteryEvenWithoutSessions) {
  KeepAwakePolicy policy;
  EXPECT_EQ(policy.status(kRules, {}, battery(20), ThermalLevel::nominal), releasedAt(20));
}

TEST(KeepAwakePolicy, ForgetsTheReleaseOffBattery) {
  KeepAwakePolicy policy{.batteryReleased = true};
  EXPECT_EQ(policy.status(kRules, kWorking, {.onBattery = false, .batteryPercent = 5}, ThermalLevel::nominal),
            kHolding);
  EXPECT_FALSE(policy.batteryReleased);
}

TEST(KeepAwakePolicy, ForgetsTheReleaseAtAnUnknownPercentage) {
  KeepAwakePolicy policy{.batteryReleased = true};
  EXPECT_EQ(policy.status(kRules, {}, battery(std::nullopt), ThermalLevel::nominal), kWaiting);
  EXPECT_FALSE(policy.batteryReleased);
}

TEST(KeepAwakePolicy, DoesNotLookAtCharging) {
  for (const bool charging : {false, true}) {
    KeepAwakePolicy policy;
    EXPECT_EQ(policy.status(kRules, kWorking, {.onBattery = true, .batteryPercent = 20, .charging = charging},
                            ThermalLevel::nominal),
              releasedAt(20));
  }
}

TEST(KeepAwakePolicy, TakesAnyNumbersWithoutOverflow) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  KeepAwakePolicy policy{.batteryReleased = true};
  KeepAwakeRules rules = kRules;
  rules.batteryFloor = kMax - 1;
  EXPECT_EQ(policy.status(rules, kWorking, battery(kMax), ThermalLevel::nominal),
            KeepAwakeStatus(KeepAwakeReleasedBattery{kMax, kMax - 1}));
}

TEST(PowerState, IsOnPowerWithNothingKnownToBeginWith) {
  EXPECT_EQ(PowerState{}, (PowerState{.onBattery = false, .batteryPercent = std::nullopt, .charging = false}));
}

}  // namespace
}  // namespace brindle
