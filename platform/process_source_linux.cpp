#include <unistd.h>

#include <algorithm>

#include "base/file.h"
#include "base/text.h"
#include "inventory/proc_text.h"
#include "platform/proc_facts_linux.h"
#include "platform/proc_folder_linux.h"
#include "platform/process_source.h"
#include "platform/socket_table_linux.h"

namespace brindle {
namespace {

constexpr std::size_t kChainLimit = 64;
constexpr std::size_t kBelowLimit = 512;
constexpr std::size_t kThreadLimit = 64;

}  // namespace

std::vector<ProcessFacts> processChain(std::int32_t pid) {
  std::vector<ProcessFacts> chain;
  auto proc = ProcFolder::open();
  if (!proc) return chain;
  const Machine machine = machineNow();
  while (pid > 0 && chain.size() < kChainLimit) {
    const auto entry = proc->entry(pid);
    if (!entry) break;
    chain.push_back(factsOfEntry(*entry, machine));
    readProgram(*proc, chain.back());
    pid = entry->stat.ppid;
  }
  return chain;
}

std::vector<ProcessFacts> processesBelow(std::int32_t pid) {
  std::vector<ProcessFacts> below;
  auto proc = ProcFolder::open();
  if (!proc) return below;
  const Machine machine = machineNow();
  std::vector<std::int32_t> parents{pid};
  for (std::size_t at = 0; at < parents.size() && below.size() < kBelowLimit; ++at) {
    for (const std::int32_t child : proc->childrenOf(parents[at], kThreadLimit)) {
      const auto entry = proc->entry(child);
      if (!entry || below.size() == kBelowLimit) continue;
      below.push_back(factsOfEntry(*entry, machine));
      parents.push_back(child);
    }
  }
  return below;
}

std::optional<std::int64_t> startStampOf(std::int32_t pid) {
  auto proc = ProcFolder::open();
  const auto entry = proc ? proc->entry(pid) : std::nullopt;
  if (!entry || entry->stat.state == 'Z' || entry->stat.state == 'X') return std::nullopt;
  return entry->stat.startTicks;
}

std::set<int> listeningPorts() {
  std::set<int> ports;
  const auto proc = ProcFolder::open();
  if (!proc) return ports;
  for (const TcpSocket& socket : tcpSockets(*proc, false)) ports.insert(socket.port);
  return ports;
}

bool showsWholeMachine() {
  // The first process namespace has had this number ever since namespaces have numbers.
  constexpr std::string_view kFirst = "pid:[4026531836]";
  const auto proc = ProcFolder::open();
  const auto own = proc ? proc->link(static_cast<std::int32_t>(::getpid()), "ns/pid") : std::nullopt;
  return own == kFirst;
}

std::string bootId() {
  const auto text = readFile("/proc/sys/kernel/random/boot_id", 256);
  return text ? std::string(trimWhiteSpace(*text)) : std::string();
}

}  // namespace brindle
