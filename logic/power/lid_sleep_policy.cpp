#include "logic/power/lid_sleep_policy.h"

#include "logic/helper/lid_sleep_limits.h"

namespace brindle {
namespace {

/// Why a status ends the hold; none for the one that does not.
struct ReasonToRestore {
  std::optional<RevertReason> operator()(const KeepAwakeHolding&) const { return std::nullopt; }
  std::optional<RevertReason> operator()(const KeepAwakeReleasedBattery&) const { return RevertReason::batteryFloor; }
  std::optional<RevertReason> operator()(const KeepAwakeReleasedThermal&) const { return RevertReason::thermal; }
  std::optional<RevertReason> operator()(const KeepAwakeOff&) const { return RevertReason::turnedOff; }
  std::optional<RevertReason> operator()(const KeepAwakeWaiting&) const { return RevertReason::agentsFinished; }
};

}  // namespace

LidSleepDecision LidSleepPolicy::finish(RevertReason reason) {
  const bool wasActive = isActive();
  disabledSince.reset();
  return wasActive ? LidSleepRestore{reason} : LidSleepRestore{};
}

LidSleepDecision LidSleepPolicy::decide(LidSleepSwitches switches, const KeepAwakeStatus& status, Seconds maxDuration,
                                        Date now) {
  if (!switches.enabled) {
    expired = false;
    return LidSleepRestore{RevertReason::turnedOff};
  }
  if (const auto reason = std::visit(ReasonToRestore{}, status)) {
    expired = false;
    return LidSleepRestore{reason};
  }
  if (!switches.allowed) return LidSleepRestore{};
  if (expired) return finish(RevertReason::maxDuration);
  if (disabledSince && now - *disabledSince >= LidSleepLimits::clamp(maxDuration)) {
    expired = true;
    return finish(RevertReason::maxDuration);
  }
  if (!disabledSince) disabledSince = now;
  return LidSleepDisable{};
}

}  // namespace brindle
