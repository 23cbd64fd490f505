// One tool call of the MCP server, as the application shows it.
//
// Written by the server, one a line of the request log. A plain value: safe on any thread.
#pragma once

#include <optional>
#include <string>

#include "base/date.h"
#include "base/json_value.h"

namespace brindle {

struct MCPLogEntry {
  /// When the tool was called; in JSON an ISO 8601 text, whole seconds.
  Date time{};
  std::string tool;
  /// What it was called for.
  std::string summary;
  /// How it ended.
  std::string result;

  bool operator==(const MCPLogEntry&) const = default;
};

/// All fields in declaration order under their names.
[[nodiscard]] JsonObject encode(const MCPLogEntry& entry);

/// The record, or none when a field is missing or of another type; unknown keys are ignored.
[[nodiscard]] std::optional<MCPLogEntry> decodeMCPLogEntry(const JsonObject& object);

}  // namespace brindle
