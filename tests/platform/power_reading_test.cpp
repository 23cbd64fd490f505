#include "platform/power_reading.h"

#include <gtest/gtest.h>

#include <deque>
#include <vector>

#include "platform/policy_power_gate.h"

namespace brindle {
namespace {

SupplyReading battery(std::string status, std::int64_t capacity) {
  return {.type = "Battery", .status = std::move(status), .capacity = capacity};
}
SupplyReading mains(std::int64_t online) { return {.type = "Mains", .online = online}; }

PowerState stateOf(const std::vector<SupplyReading>& supplies) { return powerStateOf(supplies); }

TEST(PowerReading, ALaptopOnBatteryDischarges) {
  EXPECT_EQ(stateOf({mains(0), battery("Discharging", 57)}), (PowerState{true, 57, false}));
  EXPECT_EQ(stateOf({mains(1), battery("Charging", 57)}), (PowerState{false, 57, true}));
  EXPECT_EQ(stateOf({mains(1), battery("Full", 100)}), (PowerState{false, 100, false}));
}

TEST(PowerReading, AMachineWithoutBatteryIsOnPower) {
  EXPECT_EQ(stateOf({}), PowerState{});
  EXPECT_EQ(stateOf({mains(1)}), PowerState{});
  EXPECT_EQ(stateOf({mains(0)}), PowerState{});
}

TEST(PowerReading, ABatteryWithoutMainsEntryIsJudgedByItsStatus) {
  EXPECT_TRUE(stateOf({battery("Discharging", 30)}).onBattery);
  EXPECT_FALSE(stateOf({battery("Not charging", 80)}).onBattery);
  EXPECT_FALSE(stateOf({battery("Unknown", 80)}).onBattery);
  EXPECT_TRUE(stateOf({mains(0), battery("Unknown", 80)}).onBattery);
}

TEST(PowerReading, AWeakChargerBesideADischargingBatteryStillFeeds) {
  EXPECT_FALSE(stateOf({mains(1), battery("Discharging", 50)}).onBattery);
  EXPECT_FALSE(stateOf({{.type = "USB", .online = 0}, mains(1), battery("Discharging", 50)}).onBattery);
}

TEST(PowerReading, TheBatteryOfAMouseIsNotTheMachines) {
  SupplyReading mouse = battery("Discharging", 5);
  mouse.scope = "Device";
  EXPECT_EQ(stateOf({mouse}), PowerState{});
  SupplyReading missing = battery("Discharging", 5);
  missing.present = 0;
  EXPECT_EQ(stateOf({missing}), PowerState{});
}

TEST(PowerReading, SeveralBatteriesCountByTheirEnergy) {
  SupplyReading small = battery("Discharging", 100);
  small.energyNow = small.energyFull = 10;
  SupplyReading large = battery("Discharging", 0);
  large.energyNow = 0;
  large.energyFull = 90;
  EXPECT_EQ(stateOf({small, large}).batteryPercent, 10);
  large.energyFull.reset();
  EXPECT_EQ(stateOf({small, large}).batteryPercent, 50);
}

TEST(PowerReading, ABatteryThatTellsNothingHasNoPercentage) {
  EXPECT_EQ(stateOf({{.type = "Battery", .status = "Discharging"}}), (PowerState{true, std::nullopt, false}));
  EXPECT_EQ(stateOf({battery("Discharging", 140)}).batteryPercent, 100);
}

TEST(ThermalReading, LevelsBeginAtTheirBounds) {
  const auto level = [](std::int64_t temperature) {
    return thermalLevelOf(std::vector{ThermalZoneReading{temperature, 80'000, 95'000, 105'000}});
  };
  EXPECT_EQ(level(79'999), ThermalLevel::nominal);
  EXPECT_EQ(level(80'000), ThermalLevel::fair);
  EXPECT_EQ(level(94'999), ThermalLevel::fair);
  EXPECT_EQ(level(95'000), ThermalLevel::serious);
  EXPECT_EQ(level(101'999), ThermalLevel::serious);
  EXPECT_EQ(level(102'000), ThermalLevel::critical);
}

TEST(ThermalReading, WithoutAHotPointTheMarginBelowTheCriticalOneCounts) {
  const auto level = [](std::int64_t temperature) {
    return thermalLevelOf(std::vector{ThermalZoneReading{.temperature = temperature, .critical = 100'000}});
  };
  EXPECT_EQ(level(91'999), ThermalLevel::nominal);
  EXPECT_EQ(level(92'000), ThermalLevel::serious);
}

TEST(ThermalReading, TheWorstZoneDecidesAndBrokenSensorsDoNot) {
  const ThermalZoneReading hot{.temperature = 99'000, .critical = 100'000};
  const ThermalZoneReading cold{.temperature = 20'000, .critical = 100'000};
  const ThermalZoneReading broken{.temperature = -274'000, .critical = 100'000};
  const ThermalZoneReading absurd{.temperature = 200'000, .critical = 100'000};
  const ThermalZoneReading placeholder{.temperature = 20'000, .passive = 0, .hot = -1, .critical = 0};
  EXPECT_EQ(thermalLevelOf(std::vector{cold, hot}), ThermalLevel::critical);
  EXPECT_EQ(thermalLevelOf(std::vector{broken, absurd, placeholder, ThermalZoneReading{}}), ThermalLevel::nominal);
  EXPECT_EQ(thermalLevelOf({}), ThermalLevel::nominal);
}

PowerReading onBattery(std::int64_t percent) { return {.power = {true, percent, false}}; }

TEST(PowerJudge, TellsTheFirstVerdictAndThenEachChange) {
  PowerJudge judge(20);
  EXPECT_EQ(judge.judge(onBattery(21)), (PowerVerdict{true, ""}));
  EXPECT_EQ(judge.judge(onBattery(21)), std::nullopt);
  EXPECT_EQ(judge.judge(onBattery(20)),
            (PowerVerdict{false, "the battery is at 20%, holding again above 24% or on power"}));
  EXPECT_EQ(judge.judge(onBattery(19)), std::nullopt);
  EXPECT_EQ(judge.judge(onBattery(24)), std::nullopt);
  EXPECT_EQ(judge.judge(onBattery(25)), (PowerVerdict{true, ""}));
}

TEST(PowerJudge, GoesByTheGivenFloor) {
  PowerJudge judge(35);
  EXPECT_TRUE(judge.judge(onBattery(36))->mayHold);
  EXPECT_EQ(judge.judge(onBattery(35)),
            (PowerVerdict{false, "the battery is at 35%, holding again above 39% or on power"}));
  EXPECT_EQ(judge.judge(onBattery(39)), std::nullopt);
  EXPECT_EQ(judge.judge(onBattery(40)), (PowerVerdict{true, ""}));
}

TEST(PowerJudge, ComingOffBatteryAllowsAtOnce) {
  PowerJudge judge(20);
  EXPECT_FALSE(judge.judge(onBattery(5))->mayHold);
  EXPECT_TRUE(judge.judge(PowerReading{})->mayHold);
}

TEST(PowerJudge, HeatReleasesAlsoOnPower) {
  PowerJudge judge(20);
  EXPECT_TRUE(judge.judge({.thermal = ThermalLevel::fair})->mayHold);
  EXPECT_EQ(judge.judge({.thermal = ThermalLevel::serious}),
            (PowerVerdict{false, "the machine is hot (serious), holding again when it has cooled"}));
  EXPECT_TRUE(judge.judge({.thermal = ThermalLevel::nominal})->mayHold);
}

TEST(PolicyPowerGate, TellsTheVerdictOfNowBeforeWatchReturns) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  PolicyPowerGate gate(*loop, 20, [] { return onBattery(3); });
  std::vector<PowerVerdict> told;
  gate.watch([&](const PowerVerdict& verdict) { told.push_back(verdict); });
  ASSERT_EQ(told.size(), 1U);
  EXPECT_FALSE(told.front().mayHold);
}

TEST(PolicyPowerGate, AsksTheMachineAgainAndTellsEachChange) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  std::deque<std::int64_t> percents = {50, 50, 3, 3, 50};
  const auto read = [&percents] {
    const std::int64_t percent = percents.front();
    if (percents.size() > 1) percents.pop_front();
    return onBattery(percent);
  };
  PolicyPowerGate gate(*loop, 20, read, Seconds{0.001});
  std::vector<bool> told;
  gate.watch([&](const PowerVerdict& verdict) {
    told.push_back(verdict.mayHold);
    if (told.size() == 3) loop->exit(0);
  });
  const auto tooLate = loop->after(Seconds{20}, [&loop] { loop->exit(1); });
  ASSERT_TRUE(tooLate);
  EXPECT_EQ(loop->run(), 0);
  EXPECT_EQ(told, (std::vector<bool>{true, false, true}));
}

TEST(PolicyPowerGate, AsksOftenEnoughToSeeABatteryFall) {
  EXPECT_GT(kPowerCheckInterval, Seconds{0});
  EXPECT_LE(kPowerCheckInterval, Seconds{60});
}

}  // namespace
}  // namespace brindle
