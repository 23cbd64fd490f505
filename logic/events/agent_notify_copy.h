// The titles and bodies of notifications about agents.
//
// Used by whoever posts them. Pure functions; texts are English whatever the locale. A body may begin with a short
// line of context, such as the project's name, which is joined to it by a middle dot.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"

namespace brindle::AgentNotifyCopy {

/// What comes from outside into a body.
struct Words {
  /// The line of context; absent where there is none.
  std::optional<std::string_view> context;
  /// The agent's own message.
  std::optional<std::string_view> message;
};

/// What a session left behind.
struct Leftovers {
  std::int64_t processes = 0;
  std::uint64_t bytes = 0;
};

/// Whole minutes, halves rounded away from zero: "under a minute", "12 min", "2 h", "1 h 5 min".
[[nodiscard]] std::string duration(Seconds span);

[[nodiscard]] std::string finishedTitle(std::string_view agent);
[[nodiscard]] std::string_view sessionEndedTitle();
[[nodiscard]] std::string approvalTitle(std::string_view agent);
[[nodiscard]] std::string waitingTitle(std::string_view agent);
[[nodiscard]] std::string idleGuessTitle(std::string_view agent);

/// The message as a sentence and how long it has waited; an absent or empty message reads "Waiting on a prompt.".
[[nodiscard]] std::string approvalBody(Words words, Seconds waited);

/// The message as a sentence; an absent one reads "Waiting for your input.".
[[nodiscard]] std::string waitingBody(Words words);

/// "Your turn.", and how long the session has been open where that is known.
[[nodiscard]] std::string yourTurnBody(std::optional<std::string_view> context, std::optional<Seconds> open);

/// How long the session ran and what it left behind; the bytes only when there are any.
[[nodiscard]] std::string sessionEndedBody(std::optional<std::string_view> context, Leftovers left, Seconds ran);

[[nodiscard]] std::string idleGuessBody(std::optional<std::string_view> context, Seconds quiet);

}  // namespace brindle::AgentNotifyCopy
