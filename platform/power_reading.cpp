#include "platform/power_reading.h"

#include <algorithm>
#include <cmath>

namespace brindle {
namespace {

/// Sensors that are broken or not there answer with numbers that no running machine has.
constexpr std::int64_t kColdest = -40'000;
constexpr std::int64_t kHottest = 150'000;

bool isOwnBattery(const SupplyReading& supply) {
  return supply.type == "Battery" && supply.scope != "Device" && supply.present.value_or(1) != 0;
}

std::optional<std::int64_t> percentOf(std::span<const SupplyReading> supplies) {
  double now = 0;
  double full = 0;
  double capacities = 0;
  int batteries = 0;
  int withCapacity = 0;
  int withEnergy = 0;
  for (const SupplyReading& supply : supplies) {
    if (!isOwnBattery(supply)) continue;
    ++batteries;
    if (supply.capacity) {
      capacities += static_cast<double>(*supply.capacity);
      ++withCapacity;
    }
    if (supply.energyNow && supply.energyFull.value_or(0) > 0) {
      now += static_cast<double>(*supply.energyNow);
      full += static_cast<double>(*supply.energyFull);
      ++withEnergy;
    }
  }
  double percent = 0;
  if (batteries > 1 && withEnergy == batteries) {
    percent = now / full * 100;
  } else if (withCapacity > 0) {
    percent = capacities / withCapacity;
  } else if (withEnergy > 0) {
    percent = now / full * 100;
  } else {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(std::clamp(std::floor(percent), 0.0, 100.0));
}

std::optional<std::int64_t> plausible(const std::optional<std::int64_t>& temperature) {
  return temperature && *temperature > kColdest && *temperature < kHottest ? temperature : std::nullopt;
}

/// Whether `temperature` has reached a trip point, `margin` below it. Points at or below freezing are placeholders.
bool reaches(std::int64_t temperature, const std::optional<std::int64_t>& point, std::int64_t margin) {
  const auto trip = plausible(point);
  return trip && *trip > 0 && temperature >= *trip - margin;
}

ThermalLevel levelOf(const ThermalZoneReading& zone) {
  const auto temperature = plausible(zone.temperature);
  if (!temperature) return ThermalLevel::nominal;
  if (reaches(*temperature, zone.critical, kCriticalMargin)) return ThermalLevel::critical;
  if (reaches(*temperature, zone.hot, 0) || reaches(*temperature, zone.critical, kSeriousMargin)) {
    return ThermalLevel::serious;
  }
  return reaches(*temperature, zone.passive, 0) ? ThermalLevel::fair : ThermalLevel::nominal;
}

}  // namespace

PowerState powerStateOf(std::span<const SupplyReading> supplies) {
  bool hasBattery = false;
  bool discharges = false;
  bool charges = false;
  bool fed = false;
  bool unfed = false;
  for (const SupplyReading& supply : supplies) {
    if (isOwnBattery(supply)) {
      hasBattery = true;
      discharges = discharges || supply.status == "Discharging";
      charges = charges || supply.status == "Charging";
    } else if (supply.type == "Mains" || supply.type == "USB") {
      fed = fed || supply.online.value_or(0) != 0;
      unfed = unfed || supply.online == 0;
    }
  }
  // A battery may discharge beside a weak charger, and one that is full says so without being in use.
  const bool onBattery = hasBattery && !fed && (discharges || unfed);
  return {.onBattery = onBattery, .batteryPercent = percentOf(supplies), .charging = charges};
}

ThermalLevel thermalLevelOf(std::span<const ThermalZoneReading> zones) {
  ThermalLevel worst = ThermalLevel::nominal;
  for (const ThermalZoneReading& zone : zones) worst = std::max(worst, levelOf(zone));
  return worst;
}

}  // namespace brindle
