// What a stopping command would stop and what it would leave alone, before anybody is asked.
//
// Made from a snapshot by the commands quit, stop, idle and ghosts; shown, agreed to, and then carried out by
// StopRunner. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "inventory/host_snapshot.h"
#include "logic/reports/idle_plan.h"

namespace brindle {

struct StopItem {
  std::int32_t pid = 0;
  /// With the pid, the process that is meant; a later one with the same pid is not.
  std::int64_t startTime = 0;
  std::string name;
  std::string commandLine;
  std::uint64_t footprint = 0;
  std::vector<int> ports;
  /// Signalled in the first round; the others only when they are still there after it.
  bool first = false;
  /// Why it is left alone; absent when it will be stopped.
  std::optional<std::string> leftAlone;

  bool operator==(const StopItem&) const = default;
};

struct StopList {
  std::vector<StopItem> items;
  /// It comes from the idle plan, which has its own words for nothing to stop and names its ports ascending.
  bool ofIdlePlan = false;

  /// How many will be stopped.
  [[nodiscard]] std::size_t stopping() const;
  /// What that frees, as one sentence, each port once and in the order of the items; StopSummary::kNothing, or
  /// kNothingIdle, when nothing will be stopped.
  [[nodiscard]] std::string summary() const;

  bool operator==(const StopList&) const = default;
};

/// Why the command itself and whatever started it are left alone.
inline constexpr std::string_view kOwnChainReason = "Runs this command";

/// The tree below `root` with the processes tied to it, root first. When the root is to be left alone, so is all the
/// rest, and only the root is listed. `ownChain` holds the command's own pid and its ancestors'. An agent's session is
/// spared its own protection only by `asSession`. Empty when there is no such process.
struct TreeQuestion {
  std::int32_t root = 0;
  bool asSession = false;
};
[[nodiscard]] StopList stopTree(const HostSnapshot& snapshot, TreeQuestion question,
                                const std::unordered_set<std::int32_t>& ownChain);

/// Everything that was left behind, the roots of its trees first.
[[nodiscard]] StopList stopLeftBehind(const HostSnapshot& snapshot, const std::unordered_set<std::int32_t>& ownChain);

/// What the idle plan lists.
[[nodiscard]] StopList stopIdle(const HostSnapshot& snapshot, const IdlePlan& plan,
                                const std::unordered_set<std::int32_t>& ownChain);

}  // namespace brindle
