// Turns what agents hand to their hook commands into events.
//
// Used by the hook commands. The payloads come from outside: any bytes yield an event or none, never an exception,
// and a payload that is not understood yields none rather than a guess. No state; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "logic/events/agent_event.h"

namespace brindle::AgentEventParser {

inline constexpr std::string_view claudeName = "Claude Code";
inline constexpr std::string_view codexName = "Codex";
/// The most user-perceived characters of a message.
inline constexpr std::size_t messageLimit = 160;

/// The event of a Claude Code hook payload, the JSON on the hook command's standard input. "Stop" is a finished turn;
/// a "Notification" is an approval request or a wait, by its type, and without a type by its message; everything
/// else, an unknown type of notification included, is none. `pid` and `time` are taken over as they are.
[[nodiscard]] std::optional<AgentEvent> parseClaudeHook(std::string_view data, std::optional<std::int32_t> pid,
                                                        Date time);

/// The event of a Codex notify document, the JSON in the notify command's last argument. Never has a message.
[[nodiscard]] std::optional<AgentEvent> parseCodexNotify(std::string_view json, std::optional<std::int32_t> pid,
                                                         Date time);

/// The first line of `text` that is not empty, cut to messageLimit characters, the last three of them then "...";
/// the empty text when there is no such line.
[[nodiscard]] std::string cleanMessage(std::string_view text);

}  // namespace brindle::AgentEventParser
