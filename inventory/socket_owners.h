// Which process a listening socket belongs to, when several may hold it.
//
// Used by the process sources, which show it the sockets that one process after the other holds. Plain state without a
// lock: one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "inventory/process_facts.h"
#include "inventory/tcp_sockets.h"

namespace brindle {

class SocketOwners {
 public:
  /// Looks for the listening ones among `sockets`, which outlive it.
  explicit SocketOwners(std::span<const TcpSocket> sockets);

  /// Gives those of the held sockets that have no owner yet to `facts`: their ports, ascending and each once, and
  /// whether other machines reach one. Whoever is shown first owns a shared socket, so parents come first.
  void give(const std::vector<std::uint64_t>& held, ProcessFacts& facts);

  /// The listening sockets that have no owner yet.
  [[nodiscard]] std::size_t left() const { return wanted_.size(); }
  /// Whether a listening socket belongs to the user; nearly always one of his processes holds it.
  [[nodiscard]] bool isOfUser(std::uint32_t uid) const { return users_.contains(uid); }

 private:
  std::unordered_map<std::uint64_t, const TcpSocket*> wanted_;
  std::unordered_set<std::uint32_t> users_;
};

/// Counts the established connections to the ports of each process.
void countClients(std::span<const TcpSocket> sockets, std::vector<ProcessFacts>& processes);

}  // namespace brindle
