#include "helper/logind_switch.h"

#include <utility>

namespace brindle {

LogindSwitch::LogindSwitch(Inhibitor& inhibitor, HelperLog& log) : inhibitor_(inhibitor), log_(log) {}

bool LogindSwitch::run(PmsetCommand command, std::optional<RevertReason> reason) {
  needsRecheck_ = false;
  if (disablesSleep(command)) {
    wanted_ = takeLock(reason);
    if (!wanted_) held_.reset();
    return wanted_;
  }
  wanted_ = false;
  const bool held = static_cast<bool>(held_);
  held_.reset();
  log_.event(switchLogLine(held ? "close(" + callText() + ")" : "close(no lock)", 0, reason));
  return true;
}

bool LogindSwitch::takeLock(std::optional<RevertReason> reason) {
  auto lock = inhibitor_.inhibit(LogindSwitch::lock());
  if (!lock) {
    log_.error("logind gave no lock: " + lock.error().doing);
    log_.event(switchLogLine(callText(), lock.error().code, reason));
    return false;
  }
  held_ = std::move(*lock);
  log_.event(switchLogLine(callText(), 0, reason));
  return true;
}

void LogindSwitch::recheck() {
  needsRecheck_ = false;
  if (!wanted_) return;
  const auto listed = inhibitor_.isListed(lock());
  if (listed && *listed) return;
  if (!listed) {
    log_.error("logind does not say whether it holds the lock: " + listed.error().doing);
    needsRecheck_ = true;
    return;
  }
  log_.error("logind has lost the lock, taking it again");
  needsRecheck_ = !takeLock(std::nullopt);
}

const InhibitorRequest& LogindSwitch::lock() {
  static const InhibitorRequest request{
      .what = "sleep:handle-lid-switch", .who = "Brindle", .why = "Coding agents are working", .mode = "block"};
  return request;
}

std::string LogindSwitch::callText() {
  const auto& [what, who, why, mode] = lock();
  return "Inhibit(\"" + what + "\", \"" + who + "\", \"" + why + "\", \"" + mode + "\")";
}

}  // namespace brindle
