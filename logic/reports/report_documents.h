// The documents that the command-line reports and the MCP tools answer with.
//
// Built by CLIReports (the one of idle processes by IdleStop), written by CLIReports::jsonText, read by scripts: JSON
// keys are the field names, and every document carries a format version and its command's name, so that a script can
// check what it reads. Plain values: safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/json_value.h"
#include "logic/reports/idle_document.h"
#include "logic/reports/left_behind_document.h"
#include "logic/reports/report_schema.h"

namespace brindle {

struct StatusDocument {
  int schema = kReportSchema;
  std::string command = "status";
  std::int64_t ghosts = 0;
  std::int64_t devServers = 0;
  std::int64_t agentSessions = 0;
  /// Memory held by what is counted, each process once, in bytes.
  std::uint64_t memoryBytes = 0;
  /// Listening ports of what is counted, ascending, each once.
  std::vector<int> ports;
  /// One line for people.
  std::string summary;

  bool operator==(const StatusDocument&) const = default;
};

struct PortListener {
  int port = 0;
  std::int32_t pid = 0;
  std::string name;
  std::optional<std::string> project;
  bool ownedByCurrentUser = false;
  /// Why the process must not be stopped; absent when it may be. The key is "protected".
  std::optional<std::string> protectedReason;

  bool operator==(const PortListener&) const = default;
};

struct PortsDocument {
  int schema = kReportSchema;
  std::string command = "ports";
  /// By port, then pid.
  std::vector<PortListener> listeners;

  bool operator==(const PortsDocument&) const = default;
};

struct AgentChildDocument {
  std::int32_t pid = 0;
  std::string name;
  /// The raw value of a SessionChildKind.
  std::string kind;
  std::vector<int> ports;
  std::uint64_t memoryBytes = 0;

  bool operator==(const AgentChildDocument&) const = default;
};

struct AgentSessionDocument {
  std::int32_t pid = 0;
  std::string agent;
  std::optional<std::string> project;
  /// The raw value of a SessionActivity.
  std::string activity;
  std::int64_t uptimeSeconds = 0;
  /// Of the whole session.
  std::uint64_t memoryBytes = 0;
  std::vector<int> ports;
  /// The processes that the session started, in the session's order.
  std::vector<AgentChildDocument> started;

  bool operator==(const AgentSessionDocument&) const = default;
};

struct AgentsDocument {
  int schema = kReportSchema;
  std::string command = "agents";
  std::vector<AgentSessionDocument> sessions;
  std::vector<LeftBehindDocument> leftBehind;

  bool operator==(const AgentsDocument&) const = default;
};

/// Absent fields have no key and are never written as null.
[[nodiscard]] JsonObject encode(const StatusDocument& document);
[[nodiscard]] JsonObject encode(const PortsDocument& document);
[[nodiscard]] JsonObject encode(const AgentsDocument& document);

}  // namespace brindle
