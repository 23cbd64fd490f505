#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "inventory/socket_owners.h"
#include "platform/kernel_processes_macos.h"
#include "platform/process_source.h"

namespace brindle {
namespace {

constexpr std::size_t kChainLimit = 64;
constexpr std::size_t kBelowLimit = 512;

/// Processes come in order of start, so that the topmost of those that share a socket is shown first.
void findListeners(std::vector<ProcessFacts>& processes, std::uint32_t user) {
  std::vector<TcpSocket> all;
  std::vector<std::vector<std::uint64_t>> held(processes.size());
  for (std::size_t at = 0; at < processes.size(); ++at) {
    if (processes[at].uid != user) continue;
    for (const TcpSocket& socket : socketsOf(processes[at].pid)) {
      all.push_back(socket);
      held[at].push_back(socket.inode);
    }
  }
  SocketOwners owners(all);
  for (std::size_t at = 0; at < processes.size(); ++at) owners.give(held[at], processes[at]);
  countClients(all, processes);
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
  // Sockets are found through processes here, so there is none without one; those of others are not seen at all, and
  // that they were not inspected is told of their processes.
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

bool showsWholeMachine() { return true; }

std::string bootId() {
  std::array<char, 64> text = {};
  std::size_t size = text.size();
  if (sysctlbyname("kern.bootsessionuuid", text.data(), &size, nullptr, 0) != 0 || size == 0) return {};
  return std::string(text.data(), size - 1);
}

}  // namespace brindle
