// The one way in which the MCP side turns JSON into text.
#pragma once

#include <string>

#include "base/json_value.h"

namespace brindle {

/// Compact text with sorted keys; "{}" when the value holds a text that is not valid UTF-8, which no JSON reader
/// would take.
[[nodiscard]] std::string mcpText(JsonValue value);

}  // namespace brindle
