#include "logic/sessions/agent_session_builder.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <unordered_map>

#include "base/text.h"
#include "logic/sessions/byte_sum.h"
#include "logic/sessions/process_forest.h"

namespace brindle::AgentSessionBuilder {
namespace {

using Index = ProcessForest::Index;

/// A walk towards the top of a tree ends here: these are the kernel and the init process.
constexpr std::int32_t kFirstOrdinaryPid = 2;

ProcessForest forestOf(const std::vector<TrackedProcess>& processes) {
  std::vector<ProcessForest::Link> links;
  links.reserve(processes.size());
  for (const TrackedProcess& process : processes) links.push_back({.pid = process.pid, .ppid = process.ppid});
  return ProcessForest(links);
}

/// Answers for each process whether an agent stands above it, remembering what it met on the way: many agents below
/// one deep tree would otherwise walk it again and again.
class AgentAncestors {
 public:
  AgentAncestors(const std::vector<TrackedProcess>& processes, const ProcessForest& forest)
      : processes_(processes), forest_(forest), nearest_(processes.size(), kUnknown) {}

  /// An agent is not above itself, not even in a cycle of parents.
  [[nodiscard]] bool hasAgentAbove(Index index) {
    const auto parent = above(index);
    if (!parent) return false;
    const Index agent = nearestFrom(*parent);
    return agent != kNobody && agent != index;
  }

 private:
  static constexpr Index kUnknown = ~Index{0};
  static constexpr Index kNobody = kUnknown - 1;

  [[nodiscard]] std::optional<Index> above(Index index) const {
    if (processes_[index].ppid < kFirstOrdinaryPid) return std::nullopt;
    return forest_.parentOf(index);
  }

  /// The first agent met from `start`, itself included, upwards; kNobody at the top or where a cycle closes.
  [[nodiscard]] Index nearestFrom(Index start) {
    way_.clear();
    Index found = kNobody;
    for (std::optional<Index> at = start; at; at = above(*at)) {
      if (processes_[*at].role == ProcessRole::agent) {
        found = *at;
        break;
      }
      if (nearest_[*at] != kUnknown) {
        found = nearest_[*at];
        break;
      }
      nearest_[*at] = kNobody;  // what is found when the way closes to a cycle
      way_.push_back(*at);
    }
    for (const Index passed : way_) nearest_[passed] = found;
    return found;
  }

  const std::vector<TrackedProcess>& processes_;
  const ProcessForest& forest_;
  std::vector<Index> nearest_;
  std::vector<Index> way_;
};

/// Dates that are no number come last, so that the order is a strict one.
bool startsEarlier(const TrackedProcess& left, const TrackedProcess& right) {
  const double leftStart = secondsSince1970(left.start);
  const double rightStart = secondsSince1970(right.start);
  if (std::isnan(leftStart) != std::isnan(rightStart)) return std::isnan(rightStart);
  if (leftStart < rightStart || rightStart < leftStart) return leftStart < rightStart;
  return left.pid < right.pid;
}

std::optional<std::string> projectOf(const TrackedProcess& root) {
  if (root.project && !root.project->empty()) return root.project;
  if (!root.cwd || root.cwd->empty() || *root.cwd == "/") return std::nullopt;
  std::string folder = lastPathComponent(*root.cwd);
  if (folder.empty()) return std::nullopt;
  return folder;
}

struct CpuSamples {
  std::optional<double> sum;
  double largest = 0;

  void add(const std::optional<double>& sample) {
    if (!sample) return;
    largest = sum ? std::max(largest, *sample) : *sample;
    sum = sum.value_or(0) + *sample;
  }
};

SessionActivity activityOf(const CpuSamples& samples, Seconds age) {
  if (!samples.sum) return age < kWorkingAgeWithoutSamples ? SessionActivity::working : SessionActivity::waiting;
  if (samples.largest >= kWorkingCpuPercent) return SessionActivity::working;
  if (age >= kIdleAge && samples.largest < kIdleCpuPercent) return SessionActivity::idle;
  return SessionActivity::waiting;
}

AgentSession sessionOf(const TrackedProcess& root, const std::vector<const TrackedProcess*>& children, Date now) {
  AgentSession session{.pid = root.pid,
                       .startTime = root.startTime,
                       .start = root.start,
                       .agent = root.agentName.value_or(root.name),
                       .project = projectOf(root),
                       .cwd = root.cwd,
                       .footprint = root.footprint,
                       .ports = root.ports};
  CpuSamples samples;
  samples.add(root.cpuPercent);
  session.children.reserve(children.size());
  for (const TrackedProcess* child : children) {
    session.children.push_back({.pid = child->pid,
                                .name = child->name,
                                .commandLine = child->commandLine,
                                .kind = classifyChild(*child),
                                .ports = child->ports,
                                .footprint = child->footprint});
    session.footprint = addedBytes(session.footprint, child->footprint);
    session.ports.insert(session.ports.end(), child->ports.begin(), child->ports.end());
    samples.add(child->cpuPercent);
  }
  std::sort(session.ports.begin(), session.ports.end());
  session.ports.erase(std::unique(session.ports.begin(), session.ports.end()), session.ports.end());
  session.activity = activityOf(samples, now - root.start);
  session.cpuPercent = samples.sum;
  return session;
}

/// The part of the work that is the same for all sessions of a snapshot.
class Snapshot {
 public:
  Snapshot(const std::vector<TrackedProcess>& processes, std::uint32_t currentUser, const SystemProcessRules& rules)
      : processes_(processes),
        currentUser_(currentUser),
        rules_(rules),
        forest_(forestOf(processes)),
        seen_(processes.size(), 0) {
    for (Index index = 0; index < processes_.size(); ++index) {
      const TrackedProcess& process = processes_[index];
      if (process.recordedAgentAlive && process.recordedAgentPID && isOfUser(index)) {
        recorded_[*process.recordedAgentPID].push_back(index);
      }
    }
  }

  [[nodiscard]] std::vector<Index> roots() const {
    AgentAncestors ancestors(processes_, forest_);
    std::vector<Index> roots;
    for (Index index = 0; index < processes_.size(); ++index) {
      const TrackedProcess& process = processes_[index];
      if (process.role == ProcessRole::agent && process.agentName && isOfUser(index) &&
          !ancestors.hasAgentAbove(index)) {
        roots.push_back(index);
      }
    }
    std::sort(roots.begin(), roots.end(),
              [&](Index left, Index right) { return startsEarlier(processes_[left], processes_[right]); });
    return roots;
  }

  /// The user processes that belong to `root`; `mark` differs for each root of the snapshot and is not 0.
  [[nodiscard]] std::vector<const TrackedProcess*> childrenOf(Index root, std::uint32_t mark) {
    std::vector<Index> members;
    seen_[root] = mark;
    forest_.appendDescendants(root, mark, seen_, members);
    if (const auto records = recorded_.find(processes_[root].pid); records != recorded_.end()) {
      std::copy_if(records->second.begin(), records->second.end(), std::back_inserter(members),
                   [&](Index member) { return seen_[member] != mark; });
    }
    std::vector<const TrackedProcess*> children;
    for (const Index member : members) {
      if (isOfUser(member)) children.push_back(&processes_[member]);
    }
    return children;
  }

 private:
  /// Asked only about processes that matter for another reason: most of a large snapshot never is.
  [[nodiscard]] bool isOfUser(Index index) const {
    return forest_.exists(index) && isUserProcess(processes_[index], currentUser_, rules_);
  }

  const std::vector<TrackedProcess>& processes_;
  std::uint32_t currentUser_;
  const SystemProcessRules& rules_;
  ProcessForest forest_;
  /// User processes under the pid of the running agent that a hook record names, in snapshot order.
  std::unordered_map<std::int32_t, std::vector<Index>> recorded_;
  std::vector<std::uint32_t> seen_;
};

}  // namespace

std::vector<AgentSession> build(const std::vector<TrackedProcess>& processes, std::uint32_t currentUser, Date now,
                                const SystemProcessRules& rules) {
  Snapshot snapshot(processes, currentUser, rules);
  std::vector<AgentSession> sessions;
  std::uint32_t mark = 0;
  for (const Index root : snapshot.roots()) {
    sessions.push_back(sessionOf(processes[root], snapshot.childrenOf(root, ++mark), now));
  }
  return sessions;
}

}  // namespace brindle::AgentSessionBuilder
