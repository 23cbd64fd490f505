// What stands behind the MCP server of `brindle mcp`: snapshots, the shared files, the settings.
//
// Made once by the command; answers the messages of one conversation. Looks at nothing before a tool is called: some
// clients start the program only to see whether it starts. Owns the last snapshot, which serves calls that follow
// within kSnapshotAgeSeconds. Single-threaded.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/json_value.h"
#include "cli/mcp_snapshot_source.h"
#include "logic/mcp/mcp_server.h"

namespace brindle {

/// How long a snapshot serves, in seconds; agents tend to call several tools at once.
inline constexpr double kSnapshotAgeSeconds = 1;
/// The most characters of an agent's note that are filed, and of a tool's name that are logged.
inline constexpr std::size_t kNoteLimit = 1000;
inline constexpr std::size_t kLoggedToolLimit = 100;

class MCPService {
 public:
  struct Parts {
    /// Answers for the machine; outlives the service.
    SnapshotSource& source;
    /// The folder of the shared files; none: nothing is logged or filed.
    std::optional<std::string> stateFolder;
    /// The path of the settings, read at each tool call; none: the defaults.
    std::optional<std::string> settingsFile;
    /// Takes one line about something that went wrong beside the answer. The same line is told once in a row.
    std::function<void(std::string_view)> remark;
  };
  explicit MCPService(Parts parts);
  MCPService(const MCPService&) = delete;
  MCPService& operator=(const MCPService&) = delete;

  /// The reply to one message; none for a notification.
  [[nodiscard]] std::optional<std::string> answer(const JsonObject& message, Date now);

 private:
  struct Look {
    HostSnapshot exact;    // for decisions
    HostSnapshot cleaned;  // for texts that the agent reads
    Date taken{};
  };
  [[nodiscard]] Result<const Look*> look();
  void prepareToolCall();
  [[nodiscard]] std::string report(const std::function<std::string(const HostSnapshot&)>& text);
  [[nodiscard]] MCPSafetyVerdict safety(const MCPTarget& target);
  [[nodiscard]] Result<std::string> fileRequest(const MCPQuitCall& call);
  void log(const MCPLogEntry& entry);
  void remark(const std::string& line);

  Parts parts_;
  MCPServer server_;
  ProtectionRules rules_;
  std::optional<Look> look_;
  Date now_{};
  std::string lastRemark_;
};

}  // namespace brindle
