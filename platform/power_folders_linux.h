// Power supplies and thermal zones below /sys/class.
//
// Used by the Linux power source; tests point it at a folder of their own.
#pragma once

#include <string>
#include <vector>

#include "platform/power_reading.h"

namespace brindle {

/// Entries of each kind that are looked at.
inline constexpr std::size_t kPowerEntryLimit = 64;

/// The entries of `root`/power_supply; what cannot be read is absent.
[[nodiscard]] std::vector<SupplyReading> readSupplies(const std::string& root);

/// The zones of `root`/thermal that are switched on.
[[nodiscard]] std::vector<ThermalZoneReading> readThermalZones(const std::string& root);

}  // namespace brindle
