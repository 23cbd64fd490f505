#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <unordered_map>
#include <unordered_set>

#include "platform/kernel_processes_macos.h"
#include "platform/process_source.h"

namespace brindle {
namespace {

constexpr std::size_t kChainLimit = 64;
constexpr std::size_t kBelowLimit = 512;

/// Gives each listening socket to the first process that holds it; processes come in order of start, so that is the
/// topmost of those that share it.
void findListeners(std::vector<ProcessFacts>& processes, std::uint32_t user) {
  std::unordered_set<std::uint64_t> taken;
  std::unordered_map<int, int> clients;
  for (ProcessFacts& facts : processes) {
    if (facts.uid != user) continue;
    for (const TcpSocket& socket : socketsOf(facts.pid)) {
      if (socket.state == TcpState::established) {
        ++clients[socket.port];
      } else if (taken.insert(socket.inode).second) {
        facts.ports.push_back(socket.port);
        facts.reachable = facts.reachable || !socket.loopback;
      }
    }
    std::ranges::sort(facts.ports);
    const auto repeated = std::ranges::unique(facts.ports);
    facts.ports.erase(repeated.begin(), repeated.end());
  }
  for (ProcessFacts& facts : processes) {
    for (const int port : facts.ports) {
      if (const auto found = clients.find(port); found != clients.end()) facts.clients += found->second;
    }
  }
}

std::vector<ProcessFacts> table() {
  std::vector<ProcessFacts> processes;
  for (const kinfo_proc& entry : kernelProcesses()) {
    if (entry.kp_proc.p_pid <= 0 || hasEnded(entry) || processes.size() == kProcessLimit) continue;
    processes.push_back(factsOf(entry));
  }
  std::ranges::stable_sort(processes, {}, [](const ProcessFacts& each) { return each.startTime; });
  return processes;
}

}  // namespace

// Arguments and environment come in one call here, so every question reads them all.
Result<ProcessListing> listProcesses(const ListingQuestion& question) {
  std::vector<ProcessFacts> processes = table();
  if (processes.empty()) return fail(EPERM, "read the process table");
  const std::uint32_t currentUser = question.currentUser;
  findListeners(processes, currentUser);
  for (ProcessFacts& facts : processes) {
    facts.inspected = facts.uid == currentUser || geteuid() == 0;
    readProgram(facts);
    if (facts.uid == currentUser) readDetails(facts);
  }
  return ProcessListing{std::move(processes), 0};
}

std::vector<ProcessFacts> processChain(std::int32_t pid) {
  std::vector<ProcessFacts> chain;
  while (pid > 0 && chain.size() < kChainLimit) {
    const auto entry = kernelProcess(pid);
    if (!entry) break;
    chain.push_back(factsOf(*entry));
    readProgram(chain.back());
    pid = chain.back().ppid;
  }
  return chain;
}

std::vector<ProcessFacts> processesBelow(std::int32_t pid) {
  const std::vector<ProcessFacts> processes = table();
  std::vector<ProcessFacts> below;
  std::vector<std::int32_t> parents{pid};
  for (std::size_t at = 0; at < parents.size(); ++at) {
    for (const ProcessFacts& facts : processes) {
      if (facts.ppid != parents[at] || facts.pid == pid || below.size() == kBelowLimit) continue;
      below.push_back(facts);
      parents.push_back(facts.pid);
    }
  }
  return below;
}

std::optional<std::int64_t> startStampOf(std::int32_t pid) {
  const auto entry = kernelProcess(pid);
  if (!entry || hasEnded(*entry)) return std::nullopt;
  return startStampOf(*entry);
}

std::set<int> listeningPorts() {
  std::set<int> ports;
  for (const ProcessFacts& facts : table()) {
    for (const TcpSocket& socket : socketsOf(facts.pid)) {
      if (socket.state == TcpState::listening) ports.insert(socket.port);
    }
  }
  return ports;
}

std::string bootId() {
  std::array<char, 64> text = {};
  std::size_t size = text.size();
  if (sysctlbyname("kern.bootsessionuuid", text.data(), &size, nullptr, 0) != 0 || size == 0) return {};
  return std::string(text.data(), size - 1);
}

}  // namespace brindle
