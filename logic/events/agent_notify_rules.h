// The user's settings for notifications about agents.
//
// Kept in the settings file, read by the notifier and by the composition around it. The member names are the JSON
// keys; a default-constructed value is the defaults.
#pragma once

#include "base/date.h"
#include "base/json_value.h"

namespace brindle {

struct AgentNotifyRules {
  /// Announce finished turns, and waits for input.
  bool finished = false;
  /// Announce approval requests.
  bool needsApproval = false;
  /// Announce only while the user is away; what "away" is, the host decides.
  bool onlyWhenAway = true;
  /// How long an approval request must stay unanswered before it is announced.
  Seconds approvalDelay{30};
  /// Announce sessions that the idle tracker guesses to be done.
  bool idleGuess = true;
  /// Quiet time after which the idle tracker may guess.
  Seconds idleAfter{120};

  bool operator==(const AgentNotifyRules&) const = default;
};

/// All six members in the order of the record. Precondition: finite durations, as decoding yields them.
[[nodiscard]] JsonObject encode(const AgentNotifyRules& rules);

/// The rules in `object`: a member that is missing, null, or of another type takes its default. Every object decodes.
[[nodiscard]] AgentNotifyRules decodeAgentNotifyRules(const JsonObject& object);

}  // namespace brindle
