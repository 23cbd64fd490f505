// Where the MCP server's knowledge of the machine comes from: the machine itself, or a recorded snapshot.
//
// Used by MCPService, which asks once for each call that needs to look. Single-threaded.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/date.h"
#include "base/result.h"
#include "inventory/host_snapshot.h"
#include "inventory/protection_rules.h"

namespace brindle {

class SnapshotSource {
 public:
  virtual ~SnapshotSource() = default;
  /// One moment, protected by `rules` of the user; why not when the machine cannot be looked at.
  [[nodiscard]] virtual Result<HostSnapshot> take(const ProtectionRules& rules) = 0;
};

/// What --snapshot and its companions say.
struct RecordedSnapshot {
  /// A JSON array of process records.
  std::string file;
  Date now{};
  std::uint32_t currentUser = 0;
  const SystemProcessRules* rules = &SystemProcessRules::forMacOS();
};

/// A source that answers the recorded processes each time. The file is read once; fails when it cannot be read or is
/// no snapshot.
[[nodiscard]] Result<std::unique_ptr<SnapshotSource>> recordedSource(const RecordedSnapshot& recorded);

}  // namespace brindle
