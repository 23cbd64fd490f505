#include "inventory/process_origin.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "inventory/agent_recognition.h"
#include "inventory/program_recognition.h"
#include "inventory/tracked_processes.h"
#include "logic/sessions/process_forest.h"

namespace brindle {
namespace {

using Index = ProcessForest::Index;

/// Claude Code writes the file into every shell command it runs; the text survives the agent.
constexpr std::string_view kShellSnapshot = "/.claude/shell-snapshots/snapshot-";

std::vector<ProcessForest::Link> linksOf(std::span<const ProcessFacts> processes) {
  std::vector<ProcessForest::Link> links;
  links.reserve(processes.size());
  for (const ProcessFacts& facts : processes) links.push_back({facts.pid, facts.ppid});
  return links;
}

bool namesShellSnapshot(const ProcessFacts& facts) {
  return std::ranges::any_of(
      facts.arguments, [](const std::string& argument) { return argument.find(kShellSnapshot) != std::string::npos; });
}

struct Verdict {
  OriginTie tie;
  OriginEvidence evidence;
  AgentKind kind;
  std::optional<std::int32_t> agentPid;
  std::string agent;
};

class Judge {
 public:
  explicit Judge(const OriginQuestion& question)
      : question_(question), processes_(question.processes), forest_(linksOf(question.processes)) {
    kinds_.reserve(processes_.size());
    for (const ProcessFacts& facts : processes_) kinds_.push_back(recogniseAgent(facts));
    collectLiving();
    for (const OwnershipRecord& record : question.records) records_[{record.pid, record.startTime}] = &record;
  }

  std::vector<ProcessOrigin> judge() {
    std::vector<std::optional<ProcessOrigin>> found(processes_.size());
    for (Index index = 0; index < processes_.size(); ++index) {
      if (!forest_.exists(index) || !isAdoptedRoot(index)) continue;
      if (const auto verdict = verdictOf(index)) spread(index, *verdict, found);
    }
    std::vector<ProcessOrigin> origins;
    for (std::optional<ProcessOrigin>& each : found) {
      if (each) origins.push_back(std::move(*each));
    }
    return origins;
  }

 private:
  /// The oldest living agent of each kind and user, and the session ids seen at and below living agents.
  void collectLiving() {
    std::vector<Index> roots;
    for (Index index = 0; index < processes_.size(); ++index) {
      if (!forest_.exists(index) || !kinds_[index]) continue;
      const ProcessFacts& facts = processes_[index];
      const auto [oldest, added] = oldest_.try_emplace({*kinds_[index], facts.uid}, facts.startTime);
      if (!added) oldest->second = std::min(oldest->second, facts.startTime);
      roots.push_back(index);
    }
    std::vector<std::uint32_t> seen(processes_.size(), 0);
    std::vector<Index> below = roots;
    for (const Index root : roots) forest_.appendDescendants(root, 1, seen, below);
    hangsBelowAgent_.assign(processes_.size(), false);
    for (const Index index : below) {
      hangsBelowAgent_[index] = true;
      collectSessions(processes_[index]);
    }
  }

  void collectSessions(const ProcessFacts& facts) {
    for (const AgentRow& row : agentTable()) {
      for (const std::string_view name : row.sessionVariables) {
        if (const auto value = facts.variable(name)) sessions_.insert({row.kind, *value});
      }
    }
  }

  bool mayBeJudged(Index index) const {
    const ProcessFacts& facts = processes_[index];
    if (facts.uid != question_.currentUser || kinds_[index]) return false;
    return !isSystemProcess(trackedIdentityOf(facts), question_.rules) && !livesOnByDesign(identityOf(facts));
  }

  bool isAdoptedRoot(Index index) const {
    // An agent may itself have started a program that looks like a system's manager, as in a container.
    if (!mayBeJudged(index) || hangsBelowAgent_[index]) return false;
    // What launchd itself started has never had another parent.
    if (processes_[index].adopted == false) return false;
    const auto parent = forest_.parentOf(index);
    if (!parent || *parent == index || processes_[*parent].pid <= 1) return true;
    return classOf(identityOf(processes_[*parent])) == ProgramClass::systemManager;
  }

  std::optional<Verdict> verdictOf(Index index) const {
    const ProcessFacts& facts = processes_[index];
    const std::vector<AgentKind> kinds = agentsNamedByVariables(facts);
    const bool isUnsure = std::ranges::find_first_of(kinds, question_.outOfSight) != kinds.end();
    auto owner = byOwnerPid(facts, kinds);
    if (owner && (owner->tie == OriginTie::owned || !isUnsure)) return owner;
    if (auto verdict = byRecord(facts)) return verdict;
    if (isUnsure) return std::nullopt;
    if (auto verdict = byEnvironment(facts, kinds)) return verdict;
    return bySession(facts, kinds);
  }

  /// A living owner of any of the kinds decides before a dead one of another: nested agents leave both behind.
  std::optional<Verdict> byOwnerPid(const ProcessFacts& facts, const std::vector<AgentKind>& kinds) const {
    std::optional<Verdict> gone;
    if (facts.otherPids) return gone;
    for (const AgentKind kind : kinds) {
      const auto pid = ownerPidOf(agentRow(kind), facts);
      if (!pid || *pid == facts.pid) continue;
      const auto owner = forest_.find(*pid);
      const bool older = owner && processes_[*owner].startTime <= facts.startTime;
      if (older && kinds_[*owner]) {
        return Verdict{OriginTie::owned, OriginEvidence::ownerPid, kind, outermostAgent(*owner), {}};
      }
      // A program that is older but no agent has the pid of one that was there before: nothing follows.
      if (!older && !gone) gone = Verdict{OriginTie::leftBehind, OriginEvidence::ownerPid, kind, pid, {}};
    }
    return gone;
  }

  std::optional<Verdict> byRecord(const ProcessFacts& facts) const {
    const auto found = records_.find({facts.pid, facts.startTime});
    if (found == records_.end()) return std::nullopt;
    const OwnershipRecord& record = *found->second;
    const auto agent = forest_.find(record.agentPid);
    if (agent && processes_[*agent].startTime == record.agentStartTime) {
      return Verdict{OriginTie::owned, OriginEvidence::record, {}, outermostAgent(*agent), record.agent};
    }
    return Verdict{OriginTie::leftBehind, OriginEvidence::record, {}, record.agentPid, record.agent};
  }

  std::optional<Verdict> byEnvironment(const ProcessFacts& facts, const std::vector<AgentKind>& kinds) const {
    if (kinds.empty()) return std::nullopt;
    for (const AgentKind kind : kinds) {
      const auto oldest = oldest_.find({kind, facts.uid});
      if (oldest != oldest_.end() && oldest->second <= facts.startTime) return std::nullopt;
    }
    return Verdict{OriginTie::leftBehind, OriginEvidence::environment, kinds.front(), std::nullopt, {}};
  }

  std::optional<Verdict> bySession(const ProcessFacts& facts, const std::vector<AgentKind>& kinds) const {
    const auto likely = [](AgentKind kind) {
      return Verdict{OriginTie::likely, OriginEvidence::session, kind, std::nullopt, {}};
    };
    for (const AgentKind kind : kinds) {
      for (const std::string_view name : agentRow(kind).sessionVariables) {
        const auto value = facts.variable(name);
        if (value && !sessions_.contains({kind, *value})) return likely(kind);
      }
    }
    if (!kinds.empty()) return std::nullopt;
    return namesShellSnapshot(facts) ? std::optional(likely(AgentKind::claudeCode)) : std::nullopt;
  }

  std::int32_t outermostAgent(Index agent) const {
    Index outermost = agent;
    Index at = agent;
    for (std::size_t steps = 0; steps < processes_.size(); ++steps) {
      const auto parent = forest_.parentOf(at);
      if (!parent || *parent == at) break;
      at = *parent;
      if (kinds_[at]) outermost = at;
    }
    return processes_[outermost].pid;
  }

  void spread(Index root, const Verdict& verdict, std::vector<std::optional<ProcessOrigin>>& found) const {
    const std::string agent = verdict.agent.empty() ? std::string(textOf(verdict.kind)) : verdict.agent;
    std::vector<Index> queue{root};
    for (std::size_t at = 0; at < queue.size(); ++at) {
      const Index index = queue[at];
      if (found[index] || !mayBeJudged(index)) continue;
      found[index] =
          ProcessOrigin{processes_[index].pid, verdict.tie, verdict.evidence, agent, verdict.agentPid, index == root};
      const auto children = forest_.childrenOf(index);
      queue.insert(queue.end(), children.begin(), children.end());
    }
  }

  const OriginQuestion& question_;
  std::span<const ProcessFacts> processes_;
  ProcessForest forest_;
  std::vector<std::optional<AgentKind>> kinds_;
  std::vector<bool> hangsBelowAgent_;
  std::map<std::pair<AgentKind, std::uint32_t>, std::int64_t> oldest_;
  std::set<std::pair<AgentKind, std::string_view>> sessions_;
  std::map<std::pair<std::int32_t, std::int64_t>, const OwnershipRecord*> records_;
};

}  // namespace

std::vector<ProcessOrigin> findOrigins(const OriginQuestion& question) { return Judge(question).judge(); }

bool showsTrace(const ProcessFacts& facts) {
  return namesShellSnapshot(facts) || !agentsNamedByVariables(facts).empty();
}

std::string originText(const ProcessOrigin& origin) {
  std::string text = origin.agent;
  switch (origin.tie) {
    case OriginTie::owned:
      break;
    case OriginTie::leftBehind:
      text += " (exited)";
      break;
    case OriginTie::likely:
      text += " (perhaps exited)";
      break;
  }
  return text + ", by " + std::string(textOf(origin.evidence));
}

}  // namespace brindle
