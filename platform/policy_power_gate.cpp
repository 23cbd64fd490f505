#include "platform/policy_power_gate.h"

#include <utility>
#include <variant>

#include "base/text.h"

namespace brindle {
namespace {

std::string percentText(std::int64_t percent) { return std::to_string(percent) + "%"; }

std::string whyNot(const KeepAwakeStatus& status) {
  if (const auto* battery = std::get_if<KeepAwakeReleasedBattery>(&status)) {
    return "the battery is at " + percentText(battery->percent) + ", holding again above " +
           percentText(battery->floor + KeepAwakePolicy::kBatteryRecovery - 1) + " or on power";
  }
  if (const auto* heat = std::get_if<KeepAwakeReleasedThermal>(&status)) {
    return "the machine is hot (" + lowerCase(label(heat->level)) + "), holding again when it has cooled";
  }
  return {};
}

}  // namespace

PowerJudge::PowerJudge(std::int64_t batteryFloor) {
  rules_.enabled = true;
  rules_.batteryFloor = batteryFloor;
}

std::optional<PowerVerdict> PowerJudge::judge(const PowerReading& reading) {
  const KeepAwakeStatus status = policy_.status(rules_, {"this command"}, reading.power, reading.thermal);
  const PowerVerdict verdict{.mayHold = std::holds_alternative<KeepAwakeHolding>(status), .why = whyNot(status)};
  if (told_ == verdict.mayHold) return std::nullopt;
  told_ = verdict.mayHold;
  return verdict;
}

PolicyPowerGate::PolicyPowerGate(EventLoop& loop, std::int64_t batteryFloor, Read read, Seconds interval)
    : loop_(loop), judge_(batteryFloor), read_(std::move(read)), interval_(interval) {}

void PolicyPowerGate::watch(std::function<void(const PowerVerdict&)> changed) {
  changed_ = std::move(changed);
  check();
  // Without a timer the first verdict stands; the helper's own limit on the duration still ends the hold.
  if (auto timer = loop_.every(interval_, [this] { check(); })) timer_.emplace(std::move(*timer));
}

void PolicyPowerGate::check() {
  if (const auto verdict = judge_.judge(read_())) changed_(*verdict);
}

}  // namespace brindle
