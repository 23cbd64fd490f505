// The machine itself as the MCP server's source.
#pragma once

#include <memory>

#include "cli/mcp_snapshot_source.h"
#include "platform/environment.h"

namespace brindle {

/// A source that looks at the running processes each time it is asked; making it looks at nothing.
[[nodiscard]] std::unique_ptr<SnapshotSource> liveSource(const Environment& environment);

}  // namespace brindle
