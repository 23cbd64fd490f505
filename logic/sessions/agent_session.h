// One running agent together with everything it started.
//
// Made by AgentSessionBuilder from one snapshot; read by the reports, the idle plan, the quit planner, the MCP tools
// and the widget, which never rebuild it. Plain values: safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/date.h"
#include "base/json_value.h"
#include "logic/sessions/session_activity.h"
#include "logic/sessions/session_child_kind.h"

namespace brindle {

struct SessionChild {
  std::int32_t pid = 0;
  std::string name;
  std::string commandLine;
  SessionChildKind kind = SessionChildKind::other;
  /// The ports of this process alone, as the snapshot has them.
  std::vector<int> ports;
  /// Memory of this process alone in bytes.
  std::uint64_t footprint = 0;

  bool operator==(const SessionChild&) const = default;
};

struct AgentSession {
  /// The root agent's pid, kernel start stamp and start; in JSON the start is a number, seconds since 1970.
  std::int32_t pid = 0;
  std::int64_t startTime = 0;
  Date start{};
  /// The agent's display name.
  std::string agent;
  std::optional<std::string> project;
  /// The root's working directory.
  std::optional<std::string> cwd;
  SessionActivity activity = SessionActivity::waiting;
  /// Memory of root and children in bytes.
  std::uint64_t footprint = 0;
  /// Breadth first from the root in snapshot order, then those that only a hook record ties to the agent.
  std::vector<SessionChild> children;
  /// Ports of root and children, ascending, without duplicates.
  std::vector<int> ports;
  /// Summed CPU of root and children in percent of one core; absent when none of them was sampled.
  std::optional<double> cpuPercent;

  bool operator==(const AgentSession&) const = default;
};

/// What the session's children are, counted by kind: "2 dev servers, 1 MCP server"; "Nothing else yet" without any.
[[nodiscard]] std::string sessionSummary(const AgentSession& session);

/// All fields in declaration order under their names; absent ones and numbers that are not finite have no key.
[[nodiscard]] JsonObject encode(const SessionChild& child);
[[nodiscard]] JsonObject encode(const AgentSession& session);

/// None when a field that is not optional is missing, of another type or out of range, or a child is no record. An
/// optional field with such a value counts as absent; unknown keys are ignored.
[[nodiscard]] std::optional<SessionChild> decodeSessionChild(const JsonObject& object);
[[nodiscard]] std::optional<AgentSession> decodeAgentSession(const JsonObject& object);

}  // namespace brindle

/// Equal records have equal hashes; the fields that identify a process decide.
template <>
struct std::hash<brindle::SessionChild> {
  [[nodiscard]] std::size_t operator()(const brindle::SessionChild& child) const noexcept;
};
template <>
struct std::hash<brindle::AgentSession> {
  [[nodiscard]] std::size_t operator()(const brindle::AgentSession& session) const noexcept;
};
