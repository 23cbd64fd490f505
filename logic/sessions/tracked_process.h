// One process of a snapshot, as every later stage reads it: session building, reports, idle plans, the quit planner
// and the MCP tools.
//
// Filled in once by whoever takes the snapshot and never changed after. A plain value: safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/date.h"
#include "base/json_value.h"
#include "logic/sessions/process_role.h"

namespace brindle {

struct TrackedProcess {
  std::int32_t pid = 0;
  std::int32_t ppid = 0;
  std::uint32_t uid = 0;
  /// The executable's name.
  std::string name;
  /// The executable's path; absent when it cannot be told.
  std::optional<std::string> path;
  /// The full command line.
  std::string commandLine;
  std::optional<std::string> cwd;
  /// When the process started. In JSON a number, seconds since 1970.
  Date start{};
  /// The start stamp as the kernel reports it, in the kernel's own unit. With `pid` it tells a process from a later
  /// one that reuses the pid.
  std::int64_t startTime = 0;
  /// Memory in bytes.
  std::uint64_t footprint = 0;
  /// Percent of one core; absent when not sampled.
  std::optional<double> cpuPercent;
  /// The TCP ports it listens on.
  std::vector<int> ports;
  /// Absent for everything that is no agent, IDE or terminal.
  std::optional<ProcessRole> role;
  /// The agent's display name; set for agents.
  std::optional<std::string> agentName;
  /// The dev-server framework recognised in the process.
  std::optional<std::string> framework;
  /// The project the process belongs to.
  std::optional<std::string> project;
  /// The agent that a hook record says started this process.
  std::optional<std::int32_t> recordedAgentPID;
  std::optional<std::string> recordedAgentName;
  /// Whether that recorded agent is still running.
  bool recordedAgentAlive = false;

  bool operator==(const TrackedProcess&) const = default;
};

/// The processes under their parents' pids, each list in input order. The pointers are into `processes` and live as
/// long as it does; a pid that occurs twice is listed twice.
[[nodiscard]] std::unordered_map<std::int32_t, std::vector<const TrackedProcess*>> groupByParent(
    const std::vector<TrackedProcess>& processes);

/// All fields in declaration order under their names; absent ones have no key. JSON has no text for a number that is
/// not finite, so its key is left out too: such a CPU figure reads back as absent, such a start as no record.
[[nodiscard]] JsonObject encode(const TrackedProcess& process);

/// The record, or none when a field that is not optional is missing, of another type or out of range. An optional
/// field with such a value counts as absent; unknown keys are ignored.
[[nodiscard]] std::optional<TrackedProcess> decodeTrackedProcess(const JsonObject& object);

/// A whole snapshot as a document: an array of records in their order.
[[nodiscard]] JsonArray encodeSnapshot(const std::vector<TrackedProcess>& processes);

/// Starts further from 1970 than this many seconds are not taken from outside: they are no dates of processes, and
/// spans between them would not fit the whole seconds of reports.
inline constexpr double kFarthestStart = 1e15;

/// None when the document is no array, or one of its elements is no record (half a snapshot would show the rest as
/// gone), or a start is beyond kFarthestStart, or all footprints together do not fit 64 bits.
[[nodiscard]] std::optional<std::vector<TrackedProcess>> decodeSnapshot(const JsonValue& json);

}  // namespace brindle

/// Equal records have equal hashes; the fields that identify a process decide.
template <>
struct std::hash<brindle::TrackedProcess> {
  [[nodiscard]] std::size_t operator()(const brindle::TrackedProcess& process) const noexcept;
};
