#include <unistd.h>

#include <algorithm>
#include <optional>

#include "inventory/agent_recognition.h"
#include "inventory/proc_text.h"
#include "inventory/process_origin.h"
#include "inventory/program_recognition.h"
#include "inventory/socket_owners.h"
#include "logic/sessions/process_forest.h"
#include "platform/in_parallel_linux.h"
#include "platform/proc_facts_linux.h"
#include "platform/proc_folder_linux.h"
#include "platform/process_source.h"
#include "platform/socket_table_linux.h"

namespace brindle {
namespace {

using Index = ProcessForest::Index;

/// Descriptors looked at in one process; listening sockets are among a server's first.
constexpr std::size_t kDescriptorLimit = 4096;

/// Processes that are looked into before it is asked whether all sockets have been found.
constexpr std::size_t kSocketRound = 512;

constexpr const char* kPidNamespace = "ns/pid";

class Listing {
 public:
  Listing(ProcFolder proc, const ListingQuestion& question)
      : proc_(std::move(proc)),
        machine_(machineNow()),
        question_(question),
        currentUser_(question.currentUser),
        seesAll_(::geteuid() == 0),
        swapIsUsed_(swapIsUsed()),
        ownPids_(proc_.link(::getpid(), kPidNamespace)) {}

  ProcessListing take() {
    readTable();
    const std::vector<TcpSocket> sockets = tcpSockets(proc_, question_.detail != ListingDetail::listeners);
    switch (question_.detail) {
      case ListingDetail::listeners:
        readListeners(sockets);
        break;
      case ListingDetail::agents:
        readAgents(sockets);
        break;
      case ListingDetail::everything:
        readEverything(sockets);
        break;
    }
    countClients(sockets, processes_);
    return {std::move(processes_), unownedListeners_};
  }

 private:
  void readTable() {
    const std::vector<std::int32_t> pids = proc_.pids(kProcessLimit);
    std::vector<std::optional<ProcessFacts>> found(pids.size());
    inParallel(proc_, pids.size(), [&](ProcFolder& proc, std::size_t at) {
      const auto entry = proc.entry(pids[at]);
      if (!entry || entry->stat.kernelThread || entry->stat.state == 'Z' || entry->stat.state == 'X') return;
      found[at] = factsOfEntry(*entry, machine_);
      found[at]->inspected = seesAll_ || entry->uid == ::geteuid();
    });
    for (auto& facts : found) {
      if (facts) processes_.push_back(std::move(*facts));
    }
    std::ranges::stable_sort(processes_, {}, [](const ProcessFacts& each) { return each.startTime; });
    std::vector<ProcessForest::Link> links;
    for (const ProcessFacts& facts : processes_) links.push_back({facts.pid, facts.ppid});
    forest_.emplace(links);
  }

  void readListeners(const std::vector<TcpSocket>& sockets) {
    findListeners(sockets, allIndices());
    const std::vector<Index> found = listeners();
    readPrograms(withAncestors(found));
    for (const Index index : found) processes_[index].cwd = proc_.link(processes_[index].pid, "cwd");
  }

  void readAgents(const std::vector<TcpSocket>& sockets) {
    readPrograms(ownIndices());
    const std::vector<Index> agents = withBelow(agentIndices());
    const std::vector<Index> roots = adoptedRoots();
    readEnvironments(agents);
    readEnvironments(roots);
    std::vector<Index> traced;
    for (const Index index : roots) {
      const ProcessFacts& facts = processes_[index];
      if (showsTrace(facts) || question_.recorded.contains({facts.pid, facts.startTime})) traced.push_back(index);
    }
    std::vector<Index> interest = withBelow(traced);
    interest.insert(interest.end(), agents.begin(), agents.end());
    std::ranges::sort(interest);
    const auto repeated = std::ranges::unique(interest);
    interest.erase(repeated.begin(), repeated.end());
    findListeners(sockets, interest);
    readDetails(interest);
  }

  void readEverything(const std::vector<TcpSocket>& sockets) {
    readPrograms(allIndices());
    findListeners(sockets, allIndices());
    std::vector<Index> interest = ownIndices();
    for (const Index index : listeners()) {
      if (!mayInspect(index)) interest.push_back(index);
    }
    readDetails(interest);
    readEnvironments(withBelow(agentIndices()));
    readEnvironments(adoptedRoots());
  }

  bool mayInspect(Index index) const { return processes_[index].uid == currentUser_ || processes_[index].pid == 1; }

  std::vector<Index> allIndices() const {
    return indicesOf([](Index) { return true; });
  }

  template <typename Wanted>
  std::vector<Index> indicesOf(Wanted&& wanted) const {
    std::vector<Index> found;
    for (Index index = 0; index < processes_.size(); ++index) {
      if (wanted(index)) found.push_back(index);
    }
    return found;
  }

  std::vector<Index> ownIndices() const {
    return indicesOf([&](Index index) { return mayInspect(index); });
  }

  std::vector<Index> listeners() const {
    return indicesOf([&](Index index) { return !processes_[index].ports.empty(); });
  }

  std::vector<Index> agentIndices() const {
    return indicesOf([&](Index index) {
      return processes_[index].uid == currentUser_ && recogniseAgent(processes_[index]).has_value();
    });
  }

  /// What the system has adopted of the current user, but for programs that live on by design.
  std::vector<Index> adoptedRoots() const {
    return indicesOf([&](Index index) {
      const auto parent = forest_->parentOf(index);
      const bool adopted = !parent || processes_[*parent].pid == 1 ||
                           classOf(identityOf(processes_[*parent])) == ProgramClass::systemManager;
      return adopted && processes_[index].uid == currentUser_ && !livesOnByDesign(identityOf(processes_[index]));
    });
  }

  std::vector<Index> withBelow(const std::vector<Index>& roots) const {
    std::vector<std::uint32_t> seen(processes_.size(), 0);
    std::vector<Index> found;
    for (const Index root : roots) {
      if (seen[root] != 0) continue;
      seen[root] = 1;
      found.push_back(root);
      forest_->appendDescendants(root, 1, seen, found);
    }
    return found;
  }

  std::vector<Index> withAncestors(const std::vector<Index>& begin) const {
    std::vector<bool> taken(processes_.size(), false);
    std::vector<Index> found;
    for (const Index first : begin) {
      std::optional<Index> at = first;
      while (at && !taken[*at]) {
        taken[*at] = true;
        found.push_back(*at);
        at = forest_->parentOf(*at);
      }
    }
    return found;
  }

  /// Processes come in order of start, so that the topmost of those that share a socket is shown first; the sockets'
  /// own users come before the others.
  void findListeners(const std::vector<TcpSocket>& sockets, const std::vector<Index>& candidates) {
    SocketOwners owners(sockets);
    std::vector<Index> order = candidates;
    std::ranges::stable_partition(order, [&](Index index) { return owners.isOfUser(processes_[index].uid); });
    for (std::size_t begin = 0; begin < order.size() && owners.left() > 0; begin += kSocketRound) {
      const std::size_t count = std::min(kSocketRound, order.size() - begin);
      std::vector<std::optional<std::vector<std::uint64_t>>> held(count);
      inParallel(proc_, count, [&](const ProcFolder& proc, std::size_t at) {
        held[at] = proc.sockets(processes_[order[begin + at]].pid, kDescriptorLimit);
      });
      for (std::size_t at = 0; at < count; ++at) {
        if (held[at]) owners.give(*held[at], processes_[order[begin + at]]);
      }
    }
    // Of a part of the processes alone, the others' sockets are none that could not be found.
    if (candidates.size() == processes_.size()) unownedListeners_ = static_cast<int>(owners.left());
  }

  void readPrograms(const std::vector<Index>& indices) {
    inParallel(proc_, indices.size(),
               [&](ProcFolder& proc, std::size_t at) { readProgram(proc, processes_[indices[at]]); });
  }

  void readDetails(const std::vector<Index>& indices) {
    inParallel(proc_, indices.size(), [&](ProcFolder& proc, std::size_t at) {
      ProcessFacts& facts = processes_[indices[at]];
      facts.cwd = proc.link(facts.pid, "cwd");
      const auto statm = proc.read(facts.pid, "statm");
      const auto pages = statm ? parsePrivatePages(*statm) : std::nullopt;
      facts.footprint = pages.value_or(0) * machine_.pageBytes;
      const auto status = swapIsUsed_ ? proc.read(facts.pid, "status") : std::nullopt;
      if (status) facts.footprint += parseSwapBytes(*status).value_or(0);
    });
  }

  void readEnvironments(const std::vector<Index>& indices) {
    inParallel(proc_, indices.size(), [&](ProcFolder& proc, std::size_t at) {
      ProcessFacts& facts = processes_[indices[at]];
      const auto text = proc.read(facts.pid, "environ");
      if (text) facts.variables = parseNamedVariables(*text, namedVariables());
      if (!facts.variables.empty()) facts.otherPids = proc.link(facts.pid, kPidNamespace) != ownPids_;
    });
  }

  ProcFolder proc_;
  Machine machine_;
  const ListingQuestion& question_;
  std::uint32_t currentUser_;
  bool seesAll_;  // the superuser reads everything of everybody
  bool swapIsUsed_;
  std::optional<std::string> ownPids_;
  std::vector<ProcessFacts> processes_;
  std::optional<ProcessForest> forest_;
  int unownedListeners_ = 0;
};

}  // namespace

Result<ProcessListing> listProcesses(const ListingQuestion& question) {
  auto proc = ProcFolder::open();
  if (!proc) return tl::make_unexpected(proc.error());
  return Listing(std::move(*proc), question).take();
}

}  // namespace brindle
