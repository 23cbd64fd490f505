// The application's side of the lid-sleep rule: one decision an evaluation, switch sleep off or back on.
//
// Whoever holds sleep off through the daemon asks it at each change of the keep-awake status and on a timer, and
// carries the decision out. The daemon enforces its own limits; this applies the same maximum so that the application
// stops asking before the daemon refuses. A plain value without clock; one thread a policy.
#pragma once

#include <optional>
#include <variant>

#include "base/date.h"
#include "logic/helper/revert_reason.h"
#include "logic/power/keep_awake_policy.h"

namespace brindle {

/// Switch sleep back on.
struct LidSleepRestore {
  /// What to show and to report; absent when there is nothing new to say.
  std::optional<RevertReason> reason;
  bool operator==(const LidSleepRestore&) const = default;
};

/// Switch sleep off, or keep it off.
struct LidSleepDisable {
  bool operator==(const LidSleepDisable&) const = default;
};

using LidSleepDecision = std::variant<LidSleepRestore, LidSleepDisable>;

[[nodiscard]] inline bool isDisable(const LidSleepDecision& decision) {
  return std::holds_alternative<LidSleepDisable>(decision);
}

/// The two switches that must both be on.
struct LidSleepSwitches {
  /// The user's switch for the feature.
  bool enabled = false;
  /// The caller's verdict that sleep may be disabled at this moment.
  bool allowed = false;
};

struct LidSleepPolicy {
  /// When the current stretch of disabled sleep began, as the application sees it.
  std::optional<Date> disabledSince;
  /// The stretch reached its maximum; nothing is disabled until the status leaves "holding".
  bool expired = false;

  [[nodiscard]] bool isActive() const { return disabledSince.has_value(); }

  /// The decision. While the status holds, sleep stays disabled until LidSleepLimits::clamp(maxDuration) has passed
  /// since the first disable (at the limit it ends); then one restore with the reason maxDuration, and after it only
  /// restores without a reason until the status leaves "holding". A status other than "holding", a switch that is off,
  /// and a missing permission leave disabledSince as it is: the next stretch measures from the old start.
  [[nodiscard]] LidSleepDecision decide(LidSleepSwitches switches, const KeepAwakeStatus& status, Seconds maxDuration,
                                        Date now);

  bool operator==(const LidSleepPolicy&) const = default;

 private:
  [[nodiscard]] LidSleepDecision finish(RevertReason reason);
};

}  // namespace brindle
