#include <unistd.h>

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <unordered_set>

#include "inventory/agent_recognition.h"
#include "inventory/proc_text.h"
#include "inventory/program_recognition.h"
#include "logic/sessions/process_forest.h"
#include "platform/proc_facts_linux.h"
#include "platform/proc_folder_linux.h"
#include "platform/process_source.h"
#include "platform/socket_table_linux.h"

namespace brindle {
namespace {

using Index = ProcessForest::Index;

/// Descriptors looked at in one process; a process with more is a server with that many clients, and its listening
/// sockets are among its first.
constexpr std::size_t kDescriptorLimit = 4096;

class Listing {
 public:
  Listing(ProcFolder proc, std::uint32_t currentUser, ListingDetail detail)
      : proc_(std::move(proc)),
        machine_(machineNow()),
        currentUser_(currentUser),
        detail_(detail),
        // The superuser reads everything of everybody.
        seesAll_(::geteuid() == 0) {}

  ProcessListing take() {
    readTable();
    const std::vector<TcpSocket> sockets = tcpSockets(proc_, detail_ != ListingDetail::listeners);
    if (detail_ == ListingDetail::listeners) {
      findListeners(sockets, allIndices());
      for (const Index index : withAncestors(listeners())) readDetails(index);
    } else {
      const bool all = detail_ == ListingDetail::everything;
      for (Index index = 0; index < processes_.size(); ++index) {
        if (all || mayInspect(index)) readProgram(proc_, processes_[index]);
      }
      const std::vector<Index> interest = detail_ == ListingDetail::agents ? agentsAndOrphans() : ownIndices();
      findListeners(sockets, detail_ == ListingDetail::agents ? interest : allIndices());
      for (const Index index : withListeners(interest)) readDetails(index);
      for (const Index index : agentsAndOrphans()) readEnvironment(index);
    }
    countClients(sockets);
    return {std::move(processes_), unownedListeners_};
  }

 private:
  void readTable() {
    for (const std::int32_t pid : proc_.pids(kProcessLimit)) {
      const auto entry = proc_.entry(pid);
      if (!entry || entry->stat.kernelThread || entry->stat.state == 'Z' || entry->stat.state == 'X') continue;
      processes_.push_back(factsOfEntry(*entry, machine_));
      processes_.back().inspected = seesAll_ || entry->uid == ::geteuid();
    }
    std::ranges::stable_sort(processes_, {}, [](const ProcessFacts& each) { return each.startTime; });
  }

  bool mayInspect(Index index) const { return processes_[index].uid == currentUser_ || processes_[index].pid == 1; }

  std::vector<Index> allIndices() const {
    std::vector<Index> all(processes_.size());
    std::iota(all.begin(), all.end(), Index{0});
    return all;
  }

  std::vector<Index> ownIndices() const {
    std::vector<Index> own = allIndices();
    std::erase_if(own, [&](Index index) { return !mayInspect(index); });
    return own;
  }

  std::vector<Index> listeners() const {
    std::vector<Index> found = allIndices();
    std::erase_if(found, [&](Index index) { return processes_[index].ports.empty(); });
    return found;
  }

  ProcessForest forest() const {
    std::vector<ProcessForest::Link> links;
    for (const ProcessFacts& facts : processes_) links.push_back({facts.pid, facts.ppid});
    return ProcessForest(links);
  }

  std::vector<Index> withAncestors(const std::vector<Index>& begin) const {
    const ProcessForest tree = forest();
    std::vector<bool> taken(processes_.size(), false);
    std::vector<Index> found;
    for (const Index first : begin) {
      std::optional<Index> at = first;
      while (at && !taken[*at]) {
        taken[*at] = true;
        found.push_back(*at);
        at = tree.parentOf(*at);
      }
    }
    return found;
  }

  std::vector<Index> withListeners(std::vector<Index> interest) const {
    const std::unordered_set<Index> known(interest.begin(), interest.end());
    for (const Index index : listeners()) {
      if (!known.contains(index)) interest.push_back(index);
    }
    return interest;
  }

  /// The current user's agents and what the system has adopted, with everything below both.
  std::vector<Index> agentsAndOrphans() const {
    const ProcessForest tree = forest();
    std::vector<std::uint32_t> seen(processes_.size(), 0);
    std::vector<Index> found;
    for (Index index = 0; index < processes_.size(); ++index) {
      if (processes_[index].uid != currentUser_ || seen[index] != 0) continue;
      const auto parent = tree.parentOf(index);
      const bool adopted = !parent || processes_[*parent].pid == 1 ||
                           classOf(identityOf(processes_[*parent])) == ProgramClass::systemManager;
      const bool agent = recogniseAgent(processes_[index]).has_value();
      if (!agent && (!adopted || livesOnByDesign(identityOf(processes_[index])))) continue;
      seen[index] = 1;
      found.push_back(index);
      tree.appendDescendants(index, 1, seen, found);
    }
    return found;
  }

  /// Gives each listening socket to the first process that holds it. Processes come in order of start, so that is the
  /// topmost of those that share it; the sockets' own users come first, since theirs it nearly always is.
  void findListeners(const std::vector<TcpSocket>& sockets, const std::vector<Index>& candidates) {
    std::unordered_map<std::uint64_t, const TcpSocket*> wanted;
    std::unordered_set<std::uint32_t> users;
    for (const TcpSocket& socket : sockets) {
      if (socket.state != TcpState::listening || socket.inode == 0) continue;
      wanted.try_emplace(socket.inode, &socket);
      users.insert(socket.uid);
    }
    std::vector<Index> order = candidates;
    std::ranges::stable_partition(order, [&](Index index) { return users.contains(processes_[index].uid); });
    for (const Index index : order) {
      if (wanted.empty()) break;
      const auto held = proc_.sockets(processes_[index].pid, kDescriptorLimit);
      if (!held) continue;
      for (const std::uint64_t inode : *held) {
        const auto found = wanted.find(inode);
        if (found == wanted.end()) continue;
        processes_[index].ports.push_back(found->second->port);
        processes_[index].reachable |= !found->second->loopback;
        wanted.erase(found);
      }
    }
    for (ProcessFacts& facts : processes_) {
      std::ranges::sort(facts.ports);
      const auto repeated = std::ranges::unique(facts.ports);
      facts.ports.erase(repeated.begin(), repeated.end());
    }
    unownedListeners_ = static_cast<int>(wanted.size());
  }

  void readDetails(Index index) {
    ProcessFacts& facts = processes_[index];
    if (facts.arguments.empty() && !facts.path) readProgram(proc_, facts);
    facts.cwd = proc_.link(facts.pid, "cwd");
    const auto statm = proc_.read(facts.pid, "statm");
    const auto pages = statm ? parsePrivatePages(*statm) : std::nullopt;
    facts.footprint = pages.value_or(0) * machine_.pageBytes;
    const auto status = proc_.read(facts.pid, "status");
    if (status) facts.footprint += parseSwapBytes(*status).value_or(0);
  }

  void readEnvironment(Index index) {
    ProcessFacts& facts = processes_[index];
    const auto text = proc_.read(facts.pid, "environ");
    if (text) facts.variables = parseNamedVariables(*text, namedVariables());
  }

  void countClients(const std::vector<TcpSocket>& sockets) {
    std::unordered_map<int, int> clients;
    for (const TcpSocket& socket : sockets) {
      if (socket.state == TcpState::established) ++clients[socket.port];
    }
    for (ProcessFacts& facts : processes_) {
      for (const int port : facts.ports) {
        if (const auto found = clients.find(port); found != clients.end()) facts.clients += found->second;
      }
    }
  }

  ProcFolder proc_;
  Machine machine_;
  std::uint32_t currentUser_;
  ListingDetail detail_;
  bool seesAll_;
  std::vector<ProcessFacts> processes_;
  int unownedListeners_ = 0;
};

}  // namespace

Result<ProcessListing> listProcesses(std::uint32_t currentUser, ListingDetail detail) {
  auto proc = ProcFolder::open();
  if (!proc) return tl::make_unexpected(proc.error());
  return Listing(std::move(*proc), currentUser, detail).take();
}

}  // namespace brindle
