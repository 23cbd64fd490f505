// The requests to quit something that agents have filed and a person has yet to answer: "mcp-inbox.json".
//
// Written by the MCP server (add) and by the application (set status); the application shows what is pending. The
// file is the only state: a JSON array, changed as a whole under the lock "mcp-inbox.lock" and replaced in one step, so
// that reading needs no lock. A missing or unreadable file is an empty list. Safe from any thread and process.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "logic/mcp/mcp_quit_request.h"

namespace brindle {

class MCPQuitInbox {
 public:
  static constexpr std::string_view kFileName = "mcp-inbox.json";
  static constexpr std::string_view kLockName = "mcp-inbox.lock";
  static constexpr std::string_view kPendingStatus = "pending";
  /// addOnce: the most requests that may wait at once, and how long answered ones are kept, in seconds.
  static constexpr std::size_t kPendingLimit = 64;
  static constexpr double kKeptForSeconds = 2'592'000;
  /// A file above this size is not read.
  static constexpr std::size_t kByteLimit = std::size_t{16} << 20;

  /// Touches nothing on disk.
  explicit MCPQuitInbox(std::string directory) : directory_(std::move(directory)) {}

  /// Appends the request, whatever the list holds. Fails when the folder cannot be made, the lock cannot be had or the
  /// list cannot be written; the list is then as before.
  Outcome add(const MCPQuitRequest& request) const;

  /// As add, unless a pending request for the same target waits already: answers the id of the one that waits. Drops
  /// answered requests that are kKeptForSeconds old or older at `request.time`. Fails also, with EAGAIN, when
  /// kPendingLimit requests wait.
  [[nodiscard]] Result<std::string> addOnce(const MCPQuitRequest& request) const;

  /// The requests whose status is "pending", in file order.
  [[nodiscard]] std::vector<MCPQuitRequest> pending() const;

  struct StatusChange {
    std::string_view id;
    std::string_view status;
  };
  /// Sets the status of the first request with the id; without one nothing is written. Fails as add does.
  Outcome setStatus(StatusChange change) const;

 private:
  [[nodiscard]] std::string path() const;
  [[nodiscard]] std::vector<MCPQuitRequest> read() const;
  Outcome write(const std::vector<MCPQuitRequest>& requests) const;

  std::string directory_;
};

}  // namespace brindle
