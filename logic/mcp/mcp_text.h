// The one way in which the MCP side turns JSON into text.
#pragma once

#include <string>

#include "base/json_writer.h"

namespace brindle {

/// Compact text with sorted keys. Never fails: bytes that are not UTF-8 become U+FFFD, so a process with a broken name
/// cannot make a reply unreadable.
[[nodiscard]] inline std::string mcpText(const JsonValue& value) {
  return writeJson(value, JsonStyle{.sortedKeys = true});
}

}  // namespace brindle
