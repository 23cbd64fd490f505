// One thing that a coding agent reported through its hooks.
//
// Made by the hook commands (agent_event_parser.h), carried through the event inbox as one line of JSON, and turned
// into notifications by the notifier. A plain value; the member names are the JSON keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/date.h"
#include "base/enum_text.h"
#include "base/json_value.h"

namespace brindle {

enum class AgentEventKind {
  /// The agent finished its turn.
  finished,
  /// The agent is blocked on a permission or approval question.
  needsApproval,
  /// The agent is idle and waits for the user's input.
  waiting,
};

template <>
inline constexpr auto kEnumTexts<AgentEventKind> = std::to_array<EnumText<AgentEventKind>>({
    {AgentEventKind::finished, "finished"},
    {AgentEventKind::needsApproval, "needsApproval"},
    {AgentEventKind::waiting, "waiting"},
});

struct AgentEvent {
  /// A random UUID in upper case, fresh for each event.
  std::string id;
  /// When it happened.
  Date time{};
  /// The agent's display name: "Claude Code" or "Codex".
  std::string agent;
  AgentEventKind kind = AgentEventKind::finished;
  /// The cleaned first line of the agent's own message; absent where the agent sent none.
  std::optional<std::string> message;
  /// The agent's working directory as it reported it.
  std::optional<std::string> cwd;
  /// The agent's process.
  std::optional<std::int32_t> pid;
  /// The agent's own identifier of its session or thread.
  std::optional<std::string> sessionID;

  bool operator==(const AgentEvent&) const = default;
};

/// What identifies the session of an event: the agent, ":", and the session's identifier; without one the agent,
/// ":pid", and the pid, 0 when that is absent too.
[[nodiscard]] std::string sessionKey(const AgentEvent& event);

/// How dates are written inside a document; whoever owns the document chooses.
enum class DateForm {
  /// Text such as "2026-03-01T08:00:00Z"; the fraction is dropped.
  iso8601,
  /// A number, seconds since 1970.
  seconds,
};

/// The members in the order of the record; absent ones have no key. Precondition for DateForm::seconds: a finite time.
[[nodiscard]] JsonObject encode(const AgentEvent& event, DateForm dates);

/// The event; none when `id`, `time`, `agent` or `kind` is missing or of another type or form. An optional member of
/// another type counts as absent; unknown keys are ignored.
[[nodiscard]] std::optional<AgentEvent> decodeAgentEvent(const JsonObject& object, DateForm dates);

}  // namespace brindle
