// What quitting an agent session would stop, and what it would leave alone and why.
//
// Candidates are filled in by the host from live processes; plans are made by SessionQuitPlanner, shown to the person
// and then carried out by the host. Plain values: safe on any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// One live process offered to the planner.
struct QuitCandidate {
  std::int32_t pid = 0;
  std::int32_t ppid = 0;
  std::uint32_t uid = 0;
  std::string name;
  /// The executable's path; empty when it cannot be told.
  std::string path;
  std::string commandLine;
  /// Memory in bytes.
  std::uint64_t footprint = 0;
  /// The TCP ports it listens on.
  std::vector<std::uint16_t> ports;
  bool hasControllingTTY = false;
  /// The root pid of the agent session that is recorded as having started it.
  std::optional<std::int32_t> recordedSessionPID;
  /// A rule of the user protects it.
  bool userProtected = false;
  /// It is Brindle itself.
  bool brindle = false;
  /// It is the application in front.
  bool frontmost = false;
  /// The label of the built-in protection that covers it.
  std::optional<std::string> defaultProtection;

  bool operator==(const QuitCandidate&) const = default;
};

/// One process of a plan.
struct QuitMember {
  std::int32_t pid = 0;
  std::string name;
  std::string commandLine;
  std::uint64_t footprint = 0;
  std::vector<std::uint16_t> ports;
  /// It will be stopped.
  bool included = false;
  /// Why it is left alone; set exactly when it is not included.
  std::optional<std::string> skipReason;
  /// It will be stopped, but no longer hangs under the root or another member.
  bool detached = false;

  bool operator==(const QuitMember&) const = default;
};

struct SessionQuitPlan {
  /// The session's root process.
  std::int32_t rootPID = 0;
  /// The agent's display name.
  std::string agent;
  /// The root first, then in the order of the walk; empty when the root is not among the live processes.
  std::vector<QuitMember> members;

  /// The included members in member order.
  [[nodiscard]] std::vector<QuitMember> includedMembers() const;
  /// The ports of the included members in member order, each once.
  [[nodiscard]] std::vector<std::uint16_t> portsFreed() const;
  /// The pids that need a signal of their own: the included members that are the root or detached. Stopping the
  /// root's tree reaches the others.
  [[nodiscard]] std::vector<std::int32_t> signalTargets() const;

  bool operator==(const SessionQuitPlan&) const = default;
};

}  // namespace brindle
