// The five tools that the MCP server offers to an agent: three reports, a safety question, a request to quit.
//
// Used by MCPServer alone. Nothing here signals a process; every call is recorded through the server's `log` exactly
// once. Failures are tool results with `isError`, never protocol errors. No state.
#pragma once

#include <string_view>

#include "base/date.h"
#include "base/json_value.h"
#include "logic/mcp/mcp_server.h"

namespace brindle::MCPTools {

/// The result of "tools/list": name, description and input schema of each tool.
[[nodiscard]] JsonArray descriptors();

/// The result of "tools/call" with these `params`. A member of the wrong type counts as not given; so does a number
/// beyond 32 signed bits; a fraction is cut towards zero.
[[nodiscard]] JsonObject call(const MCPServer& server, const JsonObject& params, Date now);

/// A tool result of one text.
[[nodiscard]] JsonObject textResult(std::string_view text, bool isError);

}  // namespace brindle::MCPTools
