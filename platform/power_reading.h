// The machine's power and heat, worked out from what its supplies and sensors say.
//
// Used by the power source of Linux; pure, so that the odd machines are tests. What a supply or sensor does not tell
// is absent, and what nothing tells allows a hold: a desktop has no battery and a container no sensors.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "logic/power/keep_awake_policy.h"
#include "logic/power/thermal_level.h"

namespace brindle {

struct PowerReading {
  PowerState power;
  ThermalLevel thermal = ThermalLevel::nominal;

  bool operator==(const PowerReading&) const = default;
};

/// One entry of the system's power supplies, in its own words.
struct SupplyReading {
  /// "Mains", "USB", "Battery", "UPS".
  std::string type;
  /// "Device" for the battery of a mouse or headset; empty for the machine's own.
  std::string scope;
  /// "Charging", "Discharging", "Full", "Not charging", "Unknown".
  std::string status;
  /// Mains and USB: 1 while it feeds the machine.
  std::optional<std::int64_t> online;
  std::optional<std::int64_t> present;
  /// Percent.
  std::optional<std::int64_t> capacity;
  /// What is left in the battery, and what fits in, both in one unit.
  std::optional<std::int64_t> energyNow;
  std::optional<std::int64_t> energyFull;

  bool operator==(const SupplyReading&) const = default;
};

/// On battery when there is a battery of the machine, no supply says that it feeds the machine, and the battery
/// discharges or a supply says that it does not feed. The percentage is of all batteries together, by energy where each
/// tells it, else the mean of theirs.
[[nodiscard]] PowerState powerStateOf(std::span<const SupplyReading> supplies);

/// One thermal zone; temperatures in thousandths of a degree Celsius.
struct ThermalZoneReading {
  std::optional<std::int64_t> temperature;
  /// The trip points that the zone names; implausible ones count as absent.
  std::optional<std::int64_t> passive;
  std::optional<std::int64_t> hot;
  std::optional<std::int64_t> critical;

  bool operator==(const ThermalZoneReading&) const = default;
};

/// How far below the critical trip point a zone is serious, and how far below it is critical already: the machine
/// switches itself off at the point.
inline constexpr std::int64_t kSeriousMargin = 8000;
inline constexpr std::int64_t kCriticalMargin = 3000;

/// The worst of the zones: critical from kCriticalMargin below the critical point on; serious from the hot point or
/// kSeriousMargin below the critical one on; fair from the passive point on. All bounds inclusive.
[[nodiscard]] ThermalLevel thermalLevelOf(std::span<const ThermalZoneReading> zones);

}  // namespace brindle
