// Recorded processes that take the place of this machine's: what `--snapshot FILE` names.
//
// Used by the reports, and by the MCP server for each of its calls. A plain value.
#pragma once

#include <cstdint>
#include <string>
#include <tl/expected.hpp>
#include <vector>

#include "base/date.h"
#include "cli/report_options.h"
#include "inventory/host_snapshot.h"

namespace brindle {

struct RecordedSnapshot {
  std::vector<TrackedProcess> processes;
  /// The moment, the user and the rules that the options give, or this machine's.
  Date now{};
  std::uint32_t currentUser = 0;
  const SystemProcessRules& rules;

  /// What the processes come to, protected by `protections` of the user.
  [[nodiscard]] HostSnapshot host(const ProtectionRules& protections) const;
};

/// Reads the file of `options`, which name one. Fails with a line of text: what failed and why.
[[nodiscard]] tl::expected<RecordedSnapshot, std::string> readRecordedSnapshot(const ReportOptions& options);

}  // namespace brindle
