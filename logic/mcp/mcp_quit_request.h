// A request to quit something, filed by the MCP server for the person to confirm in the application.
//
// Kept in the quit inbox, which both processes read and write. Plain values: safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/date.h"
#include "base/json_value.h"

namespace brindle {

struct MCPQuitRequest {
  std::string id;
  /// When it was filed; in JSON an ISO 8601 text, whole seconds.
  Date time{};
  /// "session", "pid" or "port".
  std::string kind;
  /// The target, by kind.
  std::optional<std::int32_t> pid;
  std::optional<std::int32_t> port;
  std::optional<std::int32_t> sessionPID;
  /// The agent's reason, secrets already replaced.
  std::optional<std::string> note;
  /// "pending" when filed; set by the application when the person answers.
  std::string status;

  bool operator==(const MCPQuitRequest&) const = default;
};

/// What the one who filed a request is told.
struct MCPQuitReceipt {
  std::string id;
  std::string message;

  bool operator==(const MCPQuitReceipt&) const = default;
};

/// All fields in declaration order under their names; absent ones have no key.
[[nodiscard]] JsonObject encode(const MCPQuitRequest& request);

/// The record, or none when a field that is not optional is missing or of another type. An optional field with such
/// a value counts as absent; unknown keys are ignored.
[[nodiscard]] std::optional<MCPQuitRequest> decodeMCPQuitRequest(const JsonObject& object);

}  // namespace brindle
