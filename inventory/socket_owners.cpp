#include "inventory/socket_owners.h"

#include <algorithm>

namespace brindle {

SocketOwners::SocketOwners(std::span<const TcpSocket> sockets) {
  for (const TcpSocket& socket : sockets) {
    if (socket.state != TcpState::listening || socket.inode == 0) continue;
    wanted_.try_emplace(socket.inode, &socket);
    users_.insert(socket.uid);
  }
}

void SocketOwners::give(const std::vector<std::uint64_t>& held, ProcessFacts& facts) {
  for (const std::uint64_t inode : held) {
    const auto found = wanted_.find(inode);
    if (found == wanted_.end()) continue;
    facts.ports.push_back(found->second->port);
    facts.reachable = facts.reachable || !found->second->loopback;
    wanted_.erase(found);
  }
  std::ranges::sort(facts.ports);
  const auto repeated = std::ranges::unique(facts.ports);
  facts.ports.erase(repeated.begin(), repeated.end());
}

void countClients(std::span<const TcpSocket> sockets, std::vector<ProcessFacts>& processes) {
  std::unordered_map<int, int> clients;
  for (const TcpSocket& socket : sockets) {
    if (socket.state == TcpState::established) ++clients[socket.port];
  }
  for (ProcessFacts& facts : processes) {
    for (const int port : facts.ports) {
      if (const auto found = clients.find(port); found != clients.end()) facts.clients += found->second;
    }
  }
}

}  // namespace brindle
