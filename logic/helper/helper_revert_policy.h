// The daemon's whole sleep bookkeeping: for each event, whether sleep goes off, comes back on, or stays as it is.
//
// Owned by the daemon and only ever used on its serial queue; a plain value without clock, input or output, so that
// every rule can be exercised at any time of one's choosing. Whoever calls an operation runs the command that it
// returns, at once and exactly once.
//
// Invariant: while sleepDisabled is false, deadline and lastHeartbeat are none; the one exception is lastHeartbeat
// after clearDisabled(), which the next operation that changes the state puts right.
#pragma once

#include <optional>
#include <variant>

#include "base/date.h"
#include "logic/helper/pmset_command.h"
#include "logic/helper/revert_reason.h"

namespace brindle {

/// The last disable ran into its deadline and nobody has switched sleep on since.
struct RequestRefused {
  bool operator==(const RequestRefused&) const = default;
};

/// What was asked for holds already.
struct RequestAccepted {
  bool operator==(const RequestAccepted&) const = default;
};

struct RequestAcceptedWithCommand {
  PmsetCommand command = PmsetCommand::restoreSleep;

  bool operator==(const RequestAcceptedWithCommand&) const = default;
};

using RequestAnswer = std::variant<RequestRefused, RequestAccepted, RequestAcceptedWithCommand>;

struct HelperRevertPolicy {
  /// Sleep is switched off at a client's request.
  bool sleepDisabled = false;
  /// When the current disable ends at the latest.
  std::optional<Date> deadline;
  /// The last sign of life from a client while sleep is disabled.
  std::optional<Date> lastHeartbeat;
  /// The last disable ended by reaching its deadline, and no client has switched sleep on since.
  bool expired = false;
  /// Why sleep was last switched back on.
  std::optional<RevertReason> lastRevert;

  /// Forgets every hold and any expiry. Always restoreSleep: the machine may have been left in any state.
  [[nodiscard]] PmsetCommand helperStarted();

  /// A client asks. Disabling is refused while `expired`, and otherwise counts as a heartbeat; the first disable sets
  /// the deadline to `now` + LidSleepLimits::clamp(maxDuration), later ones keep it. Enabling clears `expired` and
  /// always yields restoreSleep, also when sleep was not disabled.
  [[nodiscard]] RequestAnswer request(bool disable, Date now, Seconds maxDuration);

  /// A sign of life; nothing while sleep is not disabled.
  void heartbeat(Date now);

  /// A connection ended. restoreSleep while sleep is disabled, whoever asked for it; else none.
  [[nodiscard]] std::optional<PmsetCommand> connectionLost();

  /// The timer. restoreSleep when `now` is at or after the deadline (which sets `expired`), or when the last
  /// heartbeat is strictly more than LidSleepLimits::heartbeatTimeout old; the deadline is looked at first. A late
  /// or doubled tick changes nothing.
  [[nodiscard]] std::optional<PmsetCommand> tick(Date now);

  /// Until the deadline; 0 when there is none, when sleep is not disabled, or when it has passed.
  [[nodiscard]] Seconds remaining(Date now) const;

  /// Takes a disable back that the switch could not carry out. lastHeartbeat stays.
  void clearDisabled();

  bool operator==(const HelperRevertPolicy&) const = default;

 private:
  void revert(RevertReason reason);
};

}  // namespace brindle
