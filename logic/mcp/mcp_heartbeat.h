// The sign of life of the application, from which an MCP server tells whether anyone will see a request soon:
// "mcp-heartbeat.json".
//
// Written by the application alone, read by every MCP server. One small document, replaced in one step; no lock.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/result.h"

namespace brindle::MCPHeartbeat {

inline constexpr std::string_view kFileName = "mcp-heartbeat.json";
/// How often the application writes, and the age from which on a server takes it for gone, in seconds.
inline constexpr double kWriteIntervalSeconds = 5;
inline constexpr double kMaximumAgeSeconds = 15;

/// What the file holds.
struct Stamp {
  Date time;

  bool operator==(const Stamp&) const = default;
};

/// The document's text, and the stamp of a text; none for anything that is no stamp.
[[nodiscard]] std::string encodeStamp(const Stamp& stamp);
[[nodiscard]] std::optional<Stamp> decodeStamp(std::string_view text);

/// Stores a stamp of `now`, whole seconds, creating the folder where needed.
Outcome write(const std::string& directory, Date now);

/// Whether there is a stamp whose age at `now` is below `maximumAge` (strictly; one of the future counts). False when
/// it is missing or unreadable.
[[nodiscard]] bool isFresh(const std::string& directory, Date now, Seconds maximumAge);

}  // namespace brindle::MCPHeartbeat
