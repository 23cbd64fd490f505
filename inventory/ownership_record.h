// That a process was once seen below an agent: what is left of the tie when the agent is gone and the process has
// been adopted by the system.
//
// Written by hook commands and by snapshots into the store of platform/; read by the evidence for processes left
// behind. Start stamps make reused pids harmless; the boot id does the same across restarts of the machine.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindle {

struct OwnershipRecord {
  /// The kernel's id of the boot in which the pids and stamps are valid.
  std::string boot;
  std::int32_t pid = 0;
  std::int64_t startTime = 0;
  /// The root process of the agent.
  std::int32_t agentPid = 0;
  std::int64_t agentStartTime = 0;
  /// The agent's display name.
  std::string agent;

  bool operator==(const OwnershipRecord&) const = default;
};

/// The longest line that is read, in bytes.
inline constexpr std::size_t kOwnershipLineLimit = 1024;

/// One line of compact JSON with its line end; names that make it longer than kOwnershipLineLimit are cut.
[[nodiscard]] std::string ownershipLine(const OwnershipRecord& record);

/// None for a line that is no record, has a pid below 2, or is longer than kOwnershipLineLimit.
[[nodiscard]] std::optional<OwnershipRecord> ownershipFromLine(std::string_view line);

}  // namespace brindle
