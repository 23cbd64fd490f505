// Answers and actions as the tests of a hold spell them.
#pragma once

#include <ostream>

#include "platform/sleep_hold.h"

namespace brindle {

inline HelperAnswer<SleepReply> yes(std::string text = "Sleep disabled") { return SleepReply{true, std::move(text)}; }
inline HelperAnswer<SleepReply> no(std::string text) { return SleepReply{false, std::move(text)}; }
inline tl::unexpected<HelperProblem> trouble(HelperProblemKind kind) {
  return tl::make_unexpected(HelperProblem{kind, std::string(textOf(kind))});
}

constexpr Seconds at(double seconds) { return Seconds{1000 + seconds}; }

inline void PrintTo(HoldPhase phase, std::ostream* stream) { *stream << textOf(phase); }
inline void PrintTo(HoldEnd end, std::ostream* stream) { *stream << textOf(end); }

/// "ask 3600", "beat", "enable" or "nothing"; tickets are the machine's own business.
inline std::string shown(const HoldAction& action) {
  if (!action) return "nothing";
  if (const auto* ask = std::get_if<AskToDisable>(&*action)) {
    return "ask " + std::to_string(static_cast<int>(ask->maxDuration.count()));
  }
  return std::holds_alternative<SendHeartbeat>(*action) ? "beat" : "enable";
}

inline HoldTicket ticketOf(const HoldAction& action) {
  return action ? std::visit([](const auto& call) { return call.ticket; }, *action) : 0;
}

/// A hold of an hour that began at at(0) and is held since at(1).
inline SleepHold heldHold() {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{3600}, false);
  static_cast<void>(hold.sleepAnswered(ticketOf(asked), yes(), at(1)));
  return hold;
}

}  // namespace brindle
