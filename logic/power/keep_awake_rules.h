// The user's settings for keeping the machine awake.
//
// Kept in the settings file, read by the keep-awake policy and by the composition around it. The member names are the
// JSON keys; a default-constructed value is the defaults.
#pragma once

#include <array>
#include <cstdint>

#include "base/date.h"
#include "base/json_value.h"
#include "logic/helper/lid_sleep_limits.h"
#include "logic/power/thermal_level.h"

namespace brindle {

struct KeepAwakeRules {
  bool enabled = false;
  /// Percent; at or below it the hold is let go while on battery.
  std::int64_t batteryFloor = 20;
  /// At or above it the hold is let go.
  ThermalLevel thermalLimit = ThermalLevel::serious;
  Seconds idleRelease{600};
  bool lidClosedOnBattery = false;
  /// The longest stretch of disabled sleep.
  Seconds maxDuration = LidSleepLimits::defaultDuration;

  [[nodiscard]] static constexpr KeepAwakeRules defaults() { return {}; }

  bool operator==(const KeepAwakeRules&) const = default;
};

namespace KeepAwakeChoices {

/// The bounds of the battery floor, both inclusive, and the steps in which a settings screen offers it.
inline constexpr std::int64_t kMinBatteryFloor = 5;
inline constexpr std::int64_t kMaxBatteryFloor = 90;
inline constexpr std::int64_t kBatteryFloorStep = 5;
inline constexpr std::array<ThermalLevel, 2> thermalLimits{ThermalLevel::serious, ThermalLevel::critical};
inline constexpr std::array<Seconds, 4> idleReleases{Seconds{120}, Seconds{300}, Seconds{600}, Seconds{1800}};

}  // namespace KeepAwakeChoices

/// All six members in the order of the record. Precondition: finite durations, as decoding yields them.
[[nodiscard]] JsonObject encode(const KeepAwakeRules& rules);

/// The rules in `object`: a member that is missing, null, of another type, or no known level takes its default, the
/// battery floor and the maximum duration are clamped to their bounds. Every object decodes.
[[nodiscard]] KeepAwakeRules decodeKeepAwakeRules(const JsonObject& object);

}  // namespace brindle
