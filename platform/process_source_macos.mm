#include "platform/process_source.h"

#include <sys/sysctl.h>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "platform/process_table_macos.h"
#include "platform/socket_table_macos.h"

namespace brindle {
namespace {

constexpr std::size_t kChainLimit = 64;
constexpr std::size_t kBelowLimit = 512;

/// The sockets of all processes of which they may be read.
class SocketOwners {
 public:
  /// Gives a process the ports that it listens on. A socket goes to the first that holds it: processes come in order of
  /// start, so that is the topmost of those that share it.
  void giveTo(ProcessFacts& facts) {
    const auto sockets = socketsOf(facts.pid);
    if (!sockets) return;
    for (const TcpSocket& socket : *sockets) {
      if (!taken_.insert(socket.inode).second) continue;
      if (socket.state == TcpState::established) {
        ++established_[socket.port];
        continue;
      }
      facts.ports.push_back(socket.port);
      facts.reachable |= !socket.loopback;
      owned_.insert(socket.port);
    }
    std::ranges::sort(facts.ports);
    const auto repeated = std::ranges::unique(facts.ports);
    facts.ports.erase(repeated.begin(), repeated.end());
  }

  /// After all have theirs: the established connections to the process's ports.
  [[nodiscard]] int clientsOf(const ProcessFacts& facts) const {
    int clients = 0;
    for (const int port : facts.ports) {
      if (const auto found = established_.find(port); found != established_.end()) clients += found->second;
    }
    return clients;
  }

  /// The kernel's listeners on ports of which no owner was found.
  [[nodiscard]] int unowned() const {
    const auto ports = listenerPorts();
    return static_cast<int>(std::ranges::count_if(ports, [&](int port) { return !owned_.contains(port); }));
  }

 private:
  std::unordered_set<std::uint64_t> taken_;
  std::unordered_map<int, int> established_;
  std::unordered_set<int> owned_;
};

}  // namespace

// Each call here takes microseconds, so every question gets everything.
Result<ProcessListing> listProcesses(std::uint32_t, ListingDetail) {
  ProcessListing listing{.processes = processTable(kProcessLimit)};
  if (listing.processes.empty()) return fail(EPERM, "read the process table");
  std::ranges::stable_sort(listing.processes, {}, [](const ProcessFacts& each) { return each.startTime; });
  SocketOwners owners;
  for (ProcessFacts& facts : listing.processes) {
    readProgram(facts);
    readUsage(facts);
    if (facts.inspected) owners.giveTo(facts);
  }
  for (ProcessFacts& facts : listing.processes) facts.clients = owners.clientsOf(facts);
  listing.unownedListeners = owners.unowned();
  return listing;
}

std::vector<ProcessFacts> processChain(std::int32_t pid) {
  std::vector<ProcessFacts> chain;
  while (pid > 0 && chain.size() < kChainLimit) {
    auto facts = tableEntry(pid);
    if (!facts) break;
    readProgram(*facts);
    pid = facts->ppid;
    chain.push_back(std::move(*facts));
  }
  return chain;
}

std::vector<ProcessFacts> processesBelow(std::int32_t pid) {
  const std::vector<ProcessFacts> table = processTable(kProcessLimit);
  std::vector<ProcessFacts> below;
  std::unordered_set<std::int32_t> seen{pid};
  std::vector<std::int32_t> parents{pid};
  for (std::size_t at = 0; at < parents.size(); ++at) {
    for (const ProcessFacts& facts : table) {
      if (below.size() == kBelowLimit) return below;
      if (facts.ppid != parents[at] || !seen.insert(facts.pid).second) continue;
      below.push_back(facts);
      parents.push_back(facts.pid);
    }
  }
  return below;
}

std::optional<std::int64_t> startStampOf(std::int32_t pid) {
  const auto facts = tableEntry(pid);
  return facts ? std::optional(facts->startTime) : std::nullopt;
}

std::set<int> listeningPorts() {
  const auto ports = listenerPorts();
  return {ports.begin(), ports.end()};
}

std::string bootId() {
  std::array<char, 64> text = {};
  std::size_t bytes = text.size() - 1;
  if (sysctlbyname("kern.bootsessionuuid", text.data(), &bytes, nullptr, 0) != 0) return {};
  return text.data();
}

}  // namespace brindle
