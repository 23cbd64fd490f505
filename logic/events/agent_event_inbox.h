// The spool between hook commands and the application: each hook command appends one event, the application drains.
//
// Used by `brindle hook` and `brindle notify` (append) and by the application (drain). The files in the folder are the
// only state: "agent-events.jsonl", one JSON object a line, and "agent-events.lock", which every appender and the
// drainer lock. Never more than 256 KiB and one line long. Safe from any thread and process.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/result.h"
#include "logic/events/agent_event.h"

namespace brindle {

class AgentEventInbox {
 public:
  static constexpr std::string_view kFileName = "agent-events.jsonl";
  static constexpr std::string_view kLockName = "agent-events.lock";
  /// A file above this size, in bytes, loses all its lines at the next append.
  static constexpr std::size_t kSizeLimit = 262'144;
  /// Drained events of this age in seconds, or older, are dropped.
  static constexpr double kFreshnessSeconds = 600;
  /// A file above this size is not read; the next append starts it afresh.
  static constexpr std::size_t kReadLimit = std::size_t{16} << 20;

  /// Touches nothing on disk.
  explicit AgentEventInbox(std::string directory) : directory_(std::move(directory)) {}

  /// Adds one line, creating the folder where needed. Fails with the file system's error when the folder cannot be
  /// made, with kFileWriteNoPermission when the lock file or the events file cannot be opened. A line that cannot be
  /// written whole (a full disk) is taken back and is no failure: an agent's hook must not fail for it.
  Outcome append(const AgentEvent& event) const;

  /// Whether there is something to drain; false when that cannot be told.
  [[nodiscard]] bool hasPending() const;

  /// Takes every line out of the file and answers the events younger than kFreshnessSeconds at `now`, those of the
  /// future included, in file order. Lines that are no events are dropped. Empty when the folder or the lock cannot be
  /// had, or the file cannot be read or emptied; its lines then stay.
  [[nodiscard]] std::vector<AgentEvent> drain(Date now) const;

 private:
  [[nodiscard]] std::string path() const;
  [[nodiscard]] std::string takeAll() const;

  std::string directory_;
};

/// The line of an event, its line feed included; its time in whole seconds.
[[nodiscard]] std::string agentEventLine(const AgentEvent& event);

/// The events of a whole file, garbage left out; total for any bytes.
[[nodiscard]] std::vector<AgentEvent> readAgentEventLines(std::string_view text);

}  // namespace brindle
