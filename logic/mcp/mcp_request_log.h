// The record of every tool call of the MCP server, for the application to show: "mcp-log.jsonl".
//
// Appended to by the MCP servers, read and trimmed by the application. One JSON object a line; the file is the only
// state. Every append and the whole of a trim happen under the lock "mcp-log.lock"; reading needs none. Safe from any
// thread and process.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/result.h"
#include "logic/mcp/mcp_log_entry.h"

namespace brindle {

class MCPRequestLog {
 public:
  static constexpr std::string_view kFileName = "mcp-log.jsonl";
  static constexpr std::string_view kLockName = "mcp-log.lock";
  /// Entries this old or older are no longer shown, and go at the next trim: 30 days.
  static constexpr double kKeptForSeconds = 2'592'000;
  /// A file above this size is not read.
  static constexpr std::size_t kByteLimit = std::size_t{64} << 20;

  /// Touches nothing on disk.
  explicit MCPRequestLog(std::string directory) : directory_(std::move(directory)) {}

  /// Adds one line. Fails when the folder cannot be made, the lock cannot be had or the line cannot be written whole.
  Outcome append(const MCPLogEntry& entry) const;

  /// The entries whose age at `now` is below kKeptForSeconds, those of the future included, in file order. Lines that
  /// are no entries are left out; a missing or unreadable file is empty.
  [[nodiscard]] std::vector<MCPLogEntry> recent(Date now) const;

  /// Rewrites the file with what recent(now) answers, in one step. Fails as append does; the file is then as before.
  Outcome trim(Date now) const;

 private:
  [[nodiscard]] std::string path() const;

  std::string directory_;
};

/// The line of an entry, its line feed included.
[[nodiscard]] std::string mcpLogLine(const MCPLogEntry& entry);

/// The entries of a whole log, garbage left out; total for any bytes.
[[nodiscard]] std::vector<MCPLogEntry> readMCPLogLines(std::string_view text);

}  // namespace brindle
