#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <vector>

#include "logic/power/lid_sleep_policy.h"

namespace brindle {
namespace {

KeepAwakeStatus anyStatus() {
  return *rc::gen::elementOf(std::vector<KeepAwakeStatus>{
      KeepAwakeHolding{{"a"}}, KeepAwakeHolding{{"a"}}, KeepAwakeHolding{{"a"}}, KeepAwakeReleasedBattery{10, 20},
      KeepAwakeReleasedThermal{ThermalLevel::critical}, KeepAwakeOff{}, KeepAwakeWaiting{}});
}

RC_GTEST_PROP(LidSleepPolicyProperty, NeverDisablesAtOrPastTheLimitOfAStretch, ()) {
  LidSleepPolicy policy;
  double now = 0;
  const int length = *rc::gen::inRange(0, 80);
  for (int i = 0; i < length; ++i) {
    now += *rc::gen::elementOf(std::vector<double>{0, 1, 30, 59, 60, 3599, 3600});
    const LidSleepSwitches switches{*rc::gen::arbitrary<bool>(), *rc::gen::arbitrary<bool>()};
    const auto decision = policy.decide(switches, anyStatus(), Seconds{3600}, dateFromSeconds(now));
    if (!isDisable(decision)) continue;
    RC_ASSERT(switches.enabled);
    RC_ASSERT(switches.allowed);
    RC_ASSERT(policy.isActive());
    RC_ASSERT(!policy.expired);
    RC_ASSERT(now - secondsSince1970(*policy.disabledSince) < 3600);
  }
}

RC_GTEST_PROP(LidSleepPolicyProperty, DisablesAgainOnlyAfterLeavingHoldingOnceExpired, ()) {
  LidSleepPolicy policy{.expired = true};
  double now = 0;
  bool left = false;
  const int length = *rc::gen::inRange(1, 40);
  for (int i = 0; i < length; ++i) {
    now += *rc::gen::inRange(0, 5000);
    const KeepAwakeStatus status = anyStatus();
    if (!std::holds_alternative<KeepAwakeHolding>(status)) left = true;
    const auto decision = policy.decide({true, true}, status, Seconds{3600}, dateFromSeconds(now));
    if (!left) RC_ASSERT(decision == LidSleepDecision{LidSleepRestore{}});
  }
}

}  // namespace
}  // namespace brindle
