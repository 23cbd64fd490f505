#include "logic/mcp/mcp_log_entry.h"

#include <utility>

#include "base/iso8601.h"
#include "base/json_record.h"

namespace brindle {

JsonObject encode(const MCPLogEntry& entry) {
  JsonObject object;
  object.append("time", writeIso8601(entry.time));
  object.append("tool", entry.tool);
  object.append("summary", entry.summary);
  object.append("result", entry.result);
  return object;
}

std::optional<MCPLogEntry> decodeMCPLogEntry(const JsonObject& object) {
  const auto time = isoDateMember(object, "time");
  auto tool = stringMember(object, "tool");
  auto summary = stringMember(object, "summary");
  auto result = stringMember(object, "result");
  if (!time || !tool || !summary || !result) return std::nullopt;
  return MCPLogEntry{
      .time = *time, .tool = std::move(*tool), .summary = std::move(*summary), .result = std::move(*result)};
}

}  // namespace brindle
