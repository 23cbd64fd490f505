#include "logic/power/lid_sleep_policy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace brindle {
namespace {

constexpr Date kStart = dateFromSeconds(1'000'000);
constexpr Seconds kHour{3600};
constexpr LidSleepSwitches kOn{.enabled = true, .allowed = true};
const KeepAwakeStatus kHolding = KeepAwakeHolding{{"shop"}};
const KeepAwakeStatus kWaiting = KeepAwakeWaiting{};
const LidSleepDecision kDisable = LidSleepDisable{};
const LidSleepDecision kRestoreSilently = LidSleepRestore{};

LidSleepDecision restore(RevertReason reason) { return LidSleepRestore{reason}; }

std::vector<std::pair<KeepAwakeStatus, RevertReason>> everyStatusThatEndsTheHold() {
  return {{KeepAwakeReleasedBattery{19, 20}, RevertReason::batteryFloor},
          {KeepAwakeReleasedThermal{ThermalLevel::serious}, RevertReason::thermal},
          {KeepAwakeOff{}, RevertReason::turnedOff},
          {KeepAwakeWaiting{}, RevertReason::agentsFinished}};
}

std::vector<LidSleepPolicy> everyState() {
  return {{}, {.expired = true}, {.disabledSince = kStart}, {.disabledSince = kStart, .expired = true}};
}

TEST(LidSleepPolicy, DisablesWhileAgentsWorkAndRestoresWhenTheyFinish) {
  LidSleepPolicy policy;
  EXPECT_FALSE(policy.isActive());
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart), kDisable);
  EXPECT_TRUE(policy.isActive());
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + Seconds{30}), kDisable);
  EXPECT_EQ(policy.decide(kOn, kWaiting, kHour, kStart + Seconds{60}), restore(RevertReason::agentsFinished));
}

TEST(LidSleepPolicy, EndsExactlyAtTheRaisedMinimum) {
  LidSleepPolicy policy;
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{10}, kStart), kDisable);
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{10}, kStart + Seconds{59}), kDisable);
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{10}, kStart + Seconds{60}), restore(RevertReason::maxDuration));
  EXPECT_EQ(policy, (LidSleepPolicy{.expired = true}));
}

TEST(LidSleepPolicy, EndsExactlyAtTheLoweredMaximum) {
  LidSleepPolicy policy;
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{100000}, kStart), kDisable);
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{100000}, kStart + Seconds{43199.999}), kDisable);
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{100000}, kStart + Seconds{43200}), restore(RevertReason::maxDuration));
}

TEST(LidSleepPolicy, TakesAMaximumThatIsNoNumberForTheMinimum) {
  LidSleepPolicy policy{.disabledSince = kStart};
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{std::nan("")}, kStart + Seconds{59}), kDisable);
  EXPECT_EQ(policy.decide(kOn, kHolding, Seconds{std::nan("")}, kStart + Seconds{60}),
            restore(RevertReason::maxDuration));
}

TEST(LidSleepPolicy, GivesTheReasonOfTheMaximumOnlyOnce) {
  LidSleepPolicy policy{.disabledSince = kStart};
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + kHour), restore(RevertReason::maxDuration));
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + kHour), kRestoreSilently);
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + 5 * kHour), kRestoreSilently);
}

TEST(LidSleepPolicy, StartsANewStretchOnceTheStatusHasLeftHolding) {
  LidSleepPolicy policy{.expired = true};
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart), kRestoreSilently);
  EXPECT_EQ(policy.decide(kOn, kWaiting, kHour, kStart), restore(RevertReason::agentsFinished));
  EXPECT_EQ(policy, LidSleepPolicy{});
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + Seconds{5}), kDisable);
  EXPECT_EQ(policy, (LidSleepPolicy{.disabledSince = kStart + Seconds{5}}));
}

TEST(LidSleepPolicy, MeasuresFromTheOldStartAfterTheStatusLeftHolding) {
  LidSleepPolicy policy;
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart), kDisable);
  EXPECT_EQ(policy.decide(kOn, kWaiting, kHour, kStart + Seconds{1800}), restore(RevertReason::agentsFinished));
  EXPECT_EQ(policy.disabledSince, kStart);
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + Seconds{3599}), kDisable);
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + Seconds{3600}), restore(RevertReason::maxDuration));
}

TEST(LidSleepPolicyTable, RestoresAsTurnedOffFromAnyStateWhenNotEnabled) {
  for (const LidSleepPolicy& state : everyState()) {
    for (const KeepAwakeStatus& status : {kHolding, kWaiting}) {
      LidSleepPolicy policy = state;
      EXPECT_EQ(policy.decide({.enabled = false, .allowed = true}, status, kHour, kStart + kHour),
                restore(RevertReason::turnedOff));
      EXPECT_EQ(policy, (LidSleepPolicy{.disabledSince = state.disabledSince}));
    }
  }
}

TEST(LidSleepPolicyTable, RestoresForTheReasonOfTheStatusFromAnyState) {
  for (const LidSleepPolicy& state : everyState()) {
    for (const auto& [status, reason] : everyStatusThatEndsTheHold()) {
      for (const bool allowed : {false, true}) {
        LidSleepPolicy policy = state;
        EXPECT_EQ(policy.decide({.enabled = true, .allowed = allowed}, status, kHour, kStart + kHour), restore(reason));
        EXPECT_EQ(policy, (LidSleepPolicy{.disabledSince = state.disabledSince}));
      }
    }
  }
}

TEST(LidSleepPolicyTable, RestoresSilentlyAndChangesNothingWhenNotAllowed) {
  for (const LidSleepPolicy& state : everyState()) {
    LidSleepPolicy policy = state;
    EXPECT_EQ(policy.decide({.enabled = true, .allowed = false}, kHolding, kHour, kStart + kHour), kRestoreSilently);
    EXPECT_EQ(policy, state);
  }
}

TEST(LidSleepPolicyTable, GivesTheMaximumAsReasonWhenExpiredWithAStartOnRecord) {
  LidSleepPolicy policy{.disabledSince = kStart, .expired = true};
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart), restore(RevertReason::maxDuration));
  EXPECT_EQ(policy, (LidSleepPolicy{.expired = true}));
}

TEST(LidSleepPolicyTable, GivesNoReasonWhenExpiredWithoutAStart) {
  LidSleepPolicy policy{.expired = true};
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart), kRestoreSilently);
  EXPECT_EQ(policy, (LidSleepPolicy{.expired = true}));
}

TEST(LidSleepPolicyTable, KeepsTheStartWhileTheLimitIsNotReached) {
  LidSleepPolicy policy{.disabledSince = kStart};
  EXPECT_EQ(policy.decide(kOn, kHolding, kHour, kStart + Seconds{3599.999}), kDisable);
  EXPECT_EQ(policy, (LidSleepPolicy{.disabledSince = kStart}));
}

TEST(LidSleepDecision, IsADisableOnlyWhenItIsOne) {
  EXPECT_TRUE(isDisable(kDisable));
  EXPECT_FALSE(isDisable(kRestoreSilently));
  EXPECT_FALSE(isDisable(restore(RevertReason::thermal)));
  EXPECT_NE(restore(RevertReason::thermal), kRestoreSilently);
}

}  // namespace
}  // namespace brindle
