#include "logic/power/keep_awake_rules.h"

#include <algorithm>

#include "base/json_record.h"

namespace brindle {
namespace {

Seconds secondsMember(const JsonObject& object, std::string_view key, Seconds otherwise) {
  const auto number = realMember(object, key);
  return number ? Seconds{*number} : otherwise;
}

}  // namespace

JsonObject encode(const KeepAwakeRules& rules) {
  JsonObject object;
  object.append("enabled", rules.enabled);
  object.append("batteryFloor", rules.batteryFloor);
  object.append("thermalLimit", rawValue(rules.thermalLimit));
  object.append("idleRelease", rules.idleRelease.count());
  object.append("lidClosedOnBattery", rules.lidClosedOnBattery);
  object.append("maxDuration", rules.maxDuration.count());
  return object;
}

KeepAwakeRules decodeKeepAwakeRules(const JsonObject& object) {
  constexpr KeepAwakeRules kDefaults = KeepAwakeRules::defaults();
  KeepAwakeRules rules;
  rules.enabled = booleanMember(object, "enabled").value_or(kDefaults.enabled);
  rules.batteryFloor = std::clamp(integerMember(object, "batteryFloor").value_or(kDefaults.batteryFloor),
                                  KeepAwakeChoices::kMinBatteryFloor, KeepAwakeChoices::kMaxBatteryFloor);
  if (const auto raw = integerMember(object, "thermalLimit")) {
    rules.thermalLimit = thermalLevelFromRaw(*raw).value_or(kDefaults.thermalLimit);
  }
  rules.idleRelease = secondsMember(object, "idleRelease", kDefaults.idleRelease);
  rules.lidClosedOnBattery = booleanMember(object, "lidClosedOnBattery").value_or(kDefaults.lidClosedOnBattery);
  rules.maxDuration = LidSleepLimits::clamp(secondsMember(object, "maxDuration", kDefaults.maxDuration));
  return rules;
}

}  // namespace brindle
