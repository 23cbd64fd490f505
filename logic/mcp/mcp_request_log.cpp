#include "logic/mcp/mcp_request_log.h"

#include "base/file.h"
#include "base/json_reader.h"
#include "base/json_writer.h"
#include "base/line_file.h"
#include "base/lines.h"
#include "base/store_lock.h"

namespace brindle {

Outcome MCPRequestLog::append(const MCPLogEntry& entry) const {
  const std::string line = mcpLogLine(entry);
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  return appendLines(path(), line);
}

std::vector<MCPLogEntry> MCPRequestLog::recent(Date now) const {
  const Result<std::string> text = readFile(path(), kByteLimit);
  if (!text) return {};
  std::vector<MCPLogEntry> entries = readMCPLogLines(*text);
  // Not "age >= limit": an age that is not a number is not below the limit either.
  std::erase_if(entries, [&](const MCPLogEntry& entry) { return !((now - entry.time).count() < kKeptForSeconds); });
  return entries;
}

Outcome MCPRequestLog::trim(Date now) const {
  const Result<FileLock> lock = lockStore({directory_, kLockName});
  if (!lock) return tl::make_unexpected(lock.error());
  std::string text;
  for (const MCPLogEntry& entry : recent(now)) text += mcpLogLine(entry);
  return replaceFile(path(), text);
}

std::string MCPRequestLog::path() const { return directory_ + "/" + std::string(kFileName); }

std::string mcpLogLine(const MCPLogEntry& entry) { return writeJson(encode(entry)) + "\n"; }

std::vector<MCPLogEntry> readMCPLogLines(std::string_view text) {
  std::vector<MCPLogEntry> entries;
  for (const std::string_view line : nonEmptyLines(text)) {
    const std::optional<JsonValue> value = parseJson(line);
    const JsonObject* object = value ? value->object() : nullptr;
    if (object == nullptr) continue;
    if (auto entry = decodeMCPLogEntry(*object)) entries.push_back(*std::move(entry));
  }
  return entries;
}

}  // namespace brindle
