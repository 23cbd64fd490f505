// Answers the messages of the Model Context Protocol (JSON-RPC 2.0): a read-only server whose knowledge is injected.
//
// Used by the host of `brindle mcp`, which builds the value and passes it each message it has cut from its input.
// Never signals a process and keeps nothing between messages; the functions it is given own every effect. They must
// not be empty. One message at a time: as thread-safe as those functions.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/json_value.h"
#include "base/result.h"
#include "logic/mcp/mcp_log_entry.h"
#include "logic/mcp/safety_gate.h"

namespace brindle {

/// What a `safety` or `request_quit` call is about; absent what was not given. A target of a call has at least one.
struct MCPTarget {
  std::optional<std::int32_t> pid;
  std::optional<std::int32_t> port;
  std::optional<std::int32_t> sessionPid;

  bool operator==(const MCPTarget&) const = default;
};

/// A quit request as the `request_quit` tool hands it on.
struct MCPQuitCall {
  /// "session", "pid" or "port".
  std::string kind;
  MCPTarget target;
  /// The agent's reason, secrets already replaced.
  std::optional<std::string> note;

  bool operator==(const MCPQuitCall&) const = default;
};

struct MCPServer {
  /// Whether the person has the server turned on; while off every tool answers `offMessage` as an error.
  bool enabled = false;
  /// Whether the application is open to show a request soon.
  bool appRunning = false;
  /// The documents' texts.
  std::function<std::string()> status;
  std::function<std::string()> ports;
  std::function<Result<std::string>()> agents;
  std::function<MCPSafetyVerdict(const MCPTarget&)> safety;
  /// Files a pending request and answers its id.
  std::function<Result<std::string>(const MCPQuitCall&)> requestQuit;
  /// Records a tool call; called exactly once for each.
  std::function<void(const MCPLogEntry&)> log;
  std::string offMessage;

  /// The reply to one message, without framing; none for a notification. `now` becomes the time of log entries.
  /// Bytes that are no JSON object are answered with a "Parse error".
  [[nodiscard]] std::optional<std::string> handle(std::string_view message, Date now) const;

  /// The same for a message that was parsed already.
  [[nodiscard]] std::optional<std::string> handle(const JsonObject& message, Date now) const;
};

namespace MCPReply {

inline constexpr int kParseError = -32700;
inline constexpr int kInvalidRequest = -32600;
inline constexpr int kMethodNotFound = -32601;

/// The text of a success or an error reply. `id` is left out when it is null (the pointer or the JSON value).
[[nodiscard]] std::string success(const JsonValue* id, JsonValue result);
struct Error {
  int code = 0;
  std::string_view message;
};
[[nodiscard]] std::string error(const JsonValue* id, Error error);

}  // namespace MCPReply
}  // namespace brindle
