#include "logic/mcp/mcp_text.h"

#include "base/json_writer.h"
#include "base/text.h"

namespace brindle {

std::string mcpText(JsonValue value) {
  std::string text = writeJson(value, JsonStyle{.sortedKeys = true});
  if (!isValidUtf8(text)) return "{}";
  return text;
}

}  // namespace brindle
