// Which long-running processes could be stopped to free memory and ports, and which must be kept.
//
// Candidates are chosen by idleCandidates, plans made by IdleStop; nothing here signals a process. Plain values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// One process considered.
struct IdleCandidate {
  std::int32_t pid = 0;
  /// The TCP ports it listens on.
  std::vector<int> ports;
  std::string name;
  std::optional<std::string> project;
  /// Seconds since it started.
  double uptime = 0;
  /// Memory in bytes.
  std::uint64_t footprint = 0;
  bool ownedByCurrentUser = false;
  /// Why it must not be stopped; absent when it may be.
  std::optional<std::string> protectedReason;

  bool operator==(const IdleCandidate&) const = default;
};

/// Both lists by memory, largest first, then pid.
struct IdlePlan {
  /// To be stopped, once the person agrees.
  std::vector<IdleCandidate> stop;
  /// Old enough, but protected.
  std::vector<IdleCandidate> skipped;

  bool operator==(const IdlePlan&) const = default;
};

}  // namespace brindle
