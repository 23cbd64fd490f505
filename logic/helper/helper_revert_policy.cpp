#include "logic/helper/helper_revert_policy.h"

#include "logic/helper/lid_sleep_limits.h"

namespace brindle {

void HelperRevertPolicy::revert(RevertReason reason) {
  lastRevert = reason;
  sleepDisabled = false;
  deadline.reset();
  lastHeartbeat.reset();
}

PmsetCommand HelperRevertPolicy::helperStarted() {
  revert(RevertReason::helperStart);
  expired = false;
  return PmsetCommand::restoreSleep;
}

RequestAnswer HelperRevertPolicy::request(bool disable, Date now, Seconds maxDuration) {
  if (!disable) {
    expired = false;
    if (sleepDisabled) lastRevert = RevertReason::turnedOff;
    sleepDisabled = false;
    deadline.reset();
    lastHeartbeat.reset();
    return RequestAcceptedWithCommand{PmsetCommand::restoreSleep};
  }
  if (expired) return RequestRefused{};
  lastHeartbeat = now;
  if (sleepDisabled) return RequestAccepted{};
  sleepDisabled = true;
  deadline = now + LidSleepLimits::clamp(maxDuration);
  return RequestAcceptedWithCommand{PmsetCommand::disableSleep};
}

void HelperRevertPolicy::heartbeat(Date now) {
  if (sleepDisabled) lastHeartbeat = now;
}

std::optional<PmsetCommand> HelperRevertPolicy::connectionLost() {
  if (!sleepDisabled) return std::nullopt;
  revert(RevertReason::connectionLost);
  return PmsetCommand::restoreSleep;
}

std::optional<PmsetCommand> HelperRevertPolicy::tick(Date now) {
  if (!sleepDisabled) return std::nullopt;
  if (deadline && now >= *deadline) {
    revert(RevertReason::maxDuration);
    expired = true;
    return PmsetCommand::restoreSleep;
  }
  if (!lastHeartbeat) return std::nullopt;
  if (now - *lastHeartbeat > LidSleepLimits::heartbeatTimeout) {
    revert(RevertReason::heartbeatLost);
    return PmsetCommand::restoreSleep;
  }
  return std::nullopt;
}

Seconds HelperRevertPolicy::remaining(Date now) const {
  if (!sleepDisabled || !deadline) return Seconds{0};
  const Seconds left = *deadline - now;
  return left > Seconds{0} ? left : Seconds{0};
}

void HelperRevertPolicy::clearDisabled() {
  sleepDisabled = false;
  deadline.reset();
}

}  // namespace brindle
