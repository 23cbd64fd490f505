#include "logic/power/keep_awake_policy.h"

#include <utility>

namespace brindle {

KeepAwakeStatus KeepAwakePolicy::status(const KeepAwakeRules& rules, std::vector<std::string> working,
                                        const PowerState& power, ThermalLevel thermal) {
  if (!rules.enabled) {
    batteryReleased = false;
    return KeepAwakeOff{};
  }
  if (thermal >= rules.thermalLimit) return KeepAwakeReleasedThermal{thermal};
  if (power.onBattery && power.batteryPercent) {
    const std::int64_t percent = *power.batteryPercent;
    if (percent <= rules.batteryFloor) {
      batteryReleased = true;
      return KeepAwakeReleasedBattery{percent, rules.batteryFloor};
    }
    // The percentage is above the floor here, so the difference cannot overflow where a sum could.
    if (batteryReleased && percent - rules.batteryFloor < kBatteryRecovery) {
      return KeepAwakeReleasedBattery{percent, rules.batteryFloor};
    }
  }
  batteryReleased = false;
  if (working.empty()) return KeepAwakeWaiting{};
  return KeepAwakeHolding{std::move(working)};
}

}  // namespace brindle
