// Whether the machine is to be held awake right now, and why not.
//
// The host gathers the working sessions, the power and the heat, asks for the status at each change, and applies it;
// the lid-sleep policy reads the same status. Plain values, one thread a policy.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "logic/power/keep_awake_rules.h"
#include "logic/power/thermal_level.h"

namespace brindle {

/// The machine's power as the platform tells it; the neutral value is on power, nothing known about a battery.
struct PowerState {
  bool onBattery = false;
  /// Absent when there is no battery or it tells nothing.
  std::optional<std::int64_t> batteryPercent;
  bool charging = false;

  bool operator==(const PowerState&) const = default;
};

struct KeepAwakeHolding {
  /// The working sessions as they were given, repeats included.
  std::vector<std::string> names;
  bool operator==(const KeepAwakeHolding&) const = default;
};

struct KeepAwakeReleasedBattery {
  std::int64_t percent = 0;
  std::int64_t floor = 0;
  bool operator==(const KeepAwakeReleasedBattery&) const = default;
};

struct KeepAwakeReleasedThermal {
  /// The level that caused the release.
  ThermalLevel level = ThermalLevel::nominal;
  bool operator==(const KeepAwakeReleasedThermal&) const = default;
};

struct KeepAwakeOff {
  bool operator==(const KeepAwakeOff&) const = default;
};

struct KeepAwakeWaiting {
  bool operator==(const KeepAwakeWaiting&) const = default;
};

using KeepAwakeStatus =
    std::variant<KeepAwakeHolding, KeepAwakeReleasedBattery, KeepAwakeReleasedThermal, KeepAwakeOff, KeepAwakeWaiting>;

struct KeepAwakePolicy {
  /// The battery floor released the hold, and the battery has not recovered since.
  bool batteryReleased = false;

  /// How far above the floor a battery must recover before the hold is taken again, so that the status does not flap.
  static constexpr std::int64_t kBatteryRecovery = 5;

  /// The status, looked at in this order: switched off; heat at or above its limit; on battery, at or below the floor,
  /// or below floor + kBatteryRecovery after a release; then holding or waiting by whether any session works. Being
  /// off battery or an unknown percentage forgets a release. `power.charging` is not looked at.
  [[nodiscard]] KeepAwakeStatus status(const KeepAwakeRules& rules, std::vector<std::string> working,
                                       const PowerState& power, ThermalLevel thermal);

  bool operator==(const KeepAwakePolicy&) const = default;
};

}  // namespace brindle
