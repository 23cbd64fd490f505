// Where the MCP server's knowledge of the machine comes from: the machine itself, or a recorded snapshot.
//
// Used by MCPService, which asks once for each call that needs to look. Single-threaded.
#pragma once

#include <memory>
#include <string>

#include "base/result.h"
#include "cli/report_options.h"
#include "inventory/host_snapshot.h"
#include "inventory/protection_rules.h"

namespace brindle {

class SnapshotSource {
 public:
  virtual ~SnapshotSource() = default;
  /// One moment, protected by `rules` of the user; why not when the machine cannot be looked at.
  [[nodiscard]] virtual Result<HostSnapshot> take(const ProtectionRules& rules) = 0;
};

/// The source that the options ask for. A recorded snapshot is read here, once; a line of text says why when it cannot
/// be read or is none. Making a source of this machine looks at nothing.
[[nodiscard]] tl::expected<std::unique_ptr<SnapshotSource>, std::string> snapshotSource(const ReportOptions& options,
                                                                                        const Environment& environment);

}  // namespace brindle
