// Which processes are never treated as the user's own work.
//
// Used by session building, the quit planner and the safety gate's input, which must all be given the same rules.
// A plain value; the two stated sets are built once, on first use, and safe on any thread.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace brindle {

struct TrackedProcess;

struct SystemProcessRules {
  /// Processes with a smaller pid are system processes; this one is the first that may be a user's.
  std::int32_t minimumPid = 0;
  /// Exact matches on the process name.
  std::unordered_set<std::string> names;
  /// Prefixes of the executable path, tested in this order.
  std::vector<std::string> pathPrefixes;

  /// The rules of the home platform, and the default of every function that takes rules.
  [[nodiscard]] static const SystemProcessRules& forMacOS();
  /// The rules of hosts with systemd: the home platform's would hide every program in /usr/bin and every process
  /// of a small container.
  [[nodiscard]] static const SystemProcessRules& forLinux();

  bool operator==(const SystemProcessRules&) const = default;
};

/// Whether the pid is below the minimum, the name is one of the names, or the path starts with one of the prefixes.
/// A process without a path passes the path test. Whose process it is does not matter.
[[nodiscard]] bool isSystemProcess(const TrackedProcess& process,
                                   const SystemProcessRules& rules = SystemProcessRules::forMacOS());

/// Whether the process belongs to `currentUser` and is no system process.
[[nodiscard]] bool isUserProcess(const TrackedProcess& process, std::uint32_t currentUser,
                                 const SystemProcessRules& rules = SystemProcessRules::forMacOS());

}  // namespace brindle
