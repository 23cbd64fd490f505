#include <dirent.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/file.h"
#include "base/number_text.h"
#include "base/text.h"
#include "platform/power_folders_linux.h"
#include "platform/power_source.h"

namespace brindle {
namespace {

constexpr std::size_t kAttributeLimit = 4096;
/// Zones have a dozen trip points at most.
constexpr int kTripLimit = 16;

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

std::vector<std::string> entriesOf(const std::string& path, std::string_view head) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, CloseFolder> folder(::opendir(path.c_str()));
  if (!folder) return names;
  while (const dirent* entry = ::readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (name.front() != '.' && name.starts_with(head) && names.size() < kPowerEntryLimit) names.emplace_back(name);
  }
  std::ranges::sort(names);
  return names;
}

std::optional<std::string> textOfAttribute(const std::string& path) {
  const auto text = readFile(path, kAttributeLimit);
  return text ? std::optional(std::string(trimWhiteSpace(*text))) : std::nullopt;
}

std::optional<std::int64_t> numberOfAttribute(const std::string& path) {
  const auto text = textOfAttribute(path);
  return text ? integerFromText(*text) : std::nullopt;
}

}  // namespace

std::vector<SupplyReading> readSupplies(const std::string& root) {
  std::vector<SupplyReading> supplies;
  for (const std::string& name : entriesOf(root + "/power_supply", "")) {
    const std::string folder = root + "/power_supply/" + name + "/";
    SupplyReading supply{.type = textOfAttribute(folder + "type").value_or(""),
                         .scope = textOfAttribute(folder + "scope").value_or(""),
                         .status = textOfAttribute(folder + "status").value_or(""),
                         .online = numberOfAttribute(folder + "online"),
                         .present = numberOfAttribute(folder + "present"),
                         .capacity = numberOfAttribute(folder + "capacity"),
                         .energyNow = numberOfAttribute(folder + "energy_now"),
                         .energyFull = numberOfAttribute(folder + "energy_full")};
    if (!supply.energyNow || !supply.energyFull) {
      supply.energyNow = numberOfAttribute(folder + "charge_now");
      supply.energyFull = numberOfAttribute(folder + "charge_full");
    }
    supplies.push_back(std::move(supply));
  }
  return supplies;
}

std::vector<ThermalZoneReading> readThermalZones(const std::string& root) {
  std::vector<ThermalZoneReading> zones;
  for (const std::string& name : entriesOf(root + "/thermal", "thermal_zone")) {
    const std::string folder = root + "/thermal/" + name + "/";
    if (textOfAttribute(folder + "mode") == "disabled") continue;
    ThermalZoneReading zone{.temperature = numberOfAttribute(folder + "temp")};
    for (int trip = 0; trip < kTripLimit; ++trip) {
      const std::string point = folder + "trip_point_" + std::to_string(trip);
      const auto type = textOfAttribute(point + "_type");
      if (!type) break;
      const auto temperature = numberOfAttribute(point + "_temp");
      if (*type == "passive") zone.passive = temperature;
      if (*type == "hot") zone.hot = temperature;
      if (*type == "critical") zone.critical = temperature;
    }
    zones.push_back(zone);
  }
  return zones;
}

PowerReading readPowerAndHeat() {
  const std::string root = "/sys/class";
  return {powerStateOf(readSupplies(root)), thermalLevelOf(readThermalZones(root))};
}

}  // namespace brindle
