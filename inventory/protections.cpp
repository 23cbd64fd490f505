#include "inventory/protections.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "inventory/program_recognition.h"
#include "inventory/tracked_processes.h"
#include "logic/sessions/process_forest.h"
#include "logic/sessions/protection_text.h"
#include "logic/sessions/session_quit_planner.h"

namespace brindle {
namespace {

constexpr int kHighestPort = 65535;

std::unordered_set<std::int32_t> sessionPids(const HostSnapshot& snapshot, std::int32_t rootPid) {
  std::vector<ProcessForest::Link> links;
  for (const TrackedProcess& process : snapshot.processes) links.push_back({process.pid, process.ppid});
  const ProcessForest forest(links);
  const auto root = forest.find(rootPid);
  if (!root) return {rootPid};
  std::vector<std::uint32_t> seen(links.size(), 0);
  std::vector<ProcessForest::Index> below;
  forest.appendDescendants(*root, 1, seen, below);
  std::unordered_set<std::int32_t> pids{rootPid};
  for (const ProcessForest::Index index : below) pids.insert(links[index].pid);
  return pids;
}

/// The frontmost application: its process, and the helpers beside it in its folder. What it has started of other
/// programs is not: in front of most dev servers there is a terminal or an editor.
class Frontmost {
 public:
  explicit Frontmost(const HostSnapshot& snapshot) : pid_(snapshot.frontmost) {
    const TrackedProcess* process = pid_ ? processOf(snapshot, *pid_) : nullptr;
    if (process != nullptr && process->path) folder_ = applicationFolder(*process->path);
  }

  [[nodiscard]] bool covers(const TrackedProcess& process) const {
    if (pid_ == process.pid) return true;
    return !folder_.empty() && process.path && applicationFolder(*process.path) == folder_;
  }

 private:
  std::optional<std::int32_t> pid_;
  std::string_view folder_;
};

QuitCandidate candidateOf(const HostSnapshot& snapshot, const Frontmost& frontmost, const TrackedProcess& process) {
  QuitCandidate candidate{.pid = process.pid,
                          .ppid = process.ppid,
                          .uid = process.uid,
                          .name = process.name,
                          .path = process.path.value_or(""),
                          .commandLine = process.commandLine,
                          .footprint = process.footprint,
                          .hasControllingTTY = snapshot.withTerminal.contains(process.pid),
                          .userProtected = isProtectedBy(snapshot.protectionRules, process),
                          .brindle = isBrindle(process),
                          .frontmost = frontmost.covers(process),
                          .defaultProtection = builtInProtection(process)};
  for (const int port : process.ports) {
    if (port >= 0 && port <= kHighestPort) candidate.ports.push_back(static_cast<std::uint16_t>(port));
  }
  if (process.recordedAgentAlive) candidate.recordedSessionPID = process.recordedAgentPID;
  return candidate;
}

}  // namespace

std::optional<std::string> builtInProtection(const TrackedProcess& process) {
  if (process.role == ProcessRole::agent) return std::string(SafetyGate::kAgentsLabel);
  const ProcessFacts facts = factsOf(process);
  const auto programClass = classOf(identityOf(facts));
  if (!programClass) return std::nullopt;
  switch (*programClass) {
    case ProgramClass::ide:
    case ProgramClass::terminal:
    case ProgramClass::database:
    case ProgramClass::container:
      return std::string(textOf(*programClass));
    case ProgramClass::daemon:
    case ProgramClass::systemManager:
      return std::nullopt;
  }
  return std::nullopt;
}

std::string_view applicationFolder(std::string_view path) {
  constexpr std::string_view kEnd = ".app/";
  const std::size_t at = path.find(kEnd);
  return at == std::string_view::npos ? std::string_view() : path.substr(0, at + kEnd.size());
}

bool isBrindle(const TrackedProcess& process) {
  const std::string_view file = baseName(process.path ? std::string_view(*process.path) : process.name);
  return file == "brindle" || file == "BrindleHelper";
}

std::vector<QuitCandidate> quitCandidates(const HostSnapshot& snapshot, std::optional<std::int32_t> quitting) {
  const auto session = quitting ? sessionPids(snapshot, *quitting) : std::unordered_set<std::int32_t>{};
  const Frontmost frontmost(snapshot);
  std::vector<QuitCandidate> candidates;
  candidates.reserve(snapshot.processes.size());
  for (const TrackedProcess& process : snapshot.processes) {
    candidates.push_back(candidateOf(snapshot, frontmost, process));
    QuitCandidate& candidate = candidates.back();
    const bool ofSession = session.contains(process.pid) || (quitting && candidate.recordedSessionPID == quitting);
    if (process.role == ProcessRole::agent && ofSession) candidate.defaultProtection.reset();
  }
  return candidates;
}

ProtectionReasons protectionReasons(const HostSnapshot& snapshot) {
  ProtectionReasons reasons;
  const Frontmost frontmost(snapshot);
  for (const TrackedProcess& process : snapshot.processes) {
    auto reason = SessionQuitPlanner::skipReason(candidateOf(snapshot, frontmost, process), snapshot.currentUser,
                                                 *snapshot.rules);
    if (reason) reasons.try_emplace(process.pid, std::move(*reason));
  }
  return reasons;
}

ProtectionReasons unaskedReasons(const HostSnapshot& snapshot) {
  ProtectionReasons reasons = snapshot.protections;
  for (const auto& [pid, clients] : snapshot.clients) {
    if (clients > 0) reasons.try_emplace(pid, kConnectedReason);
  }
  return reasons;
}

const TrackedProcess* processOf(const HostSnapshot& snapshot, std::int32_t pid) {
  const auto found = std::ranges::find(snapshot.processes, pid, &TrackedProcess::pid);
  return found == snapshot.processes.end() ? nullptr : &*found;
}

const TrackedProcess* listenerOn(const HostSnapshot& snapshot, int port) {
  std::vector<const TrackedProcess*> listeners;
  for (const TrackedProcess& process : snapshot.processes) {
    if (std::ranges::find(process.ports, port) != process.ports.end()) listeners.push_back(&process);
  }
  const auto mine = [&](const TrackedProcess* each) { return each->uid == snapshot.currentUser; };
  if (std::ranges::any_of(listeners, mine)) std::erase_if(listeners, [&](const auto* each) { return !mine(each); });
  for (const TrackedProcess* each : listeners) {
    const bool below = std::ranges::any_of(
        listeners, [&](const TrackedProcess* other) { return other != each && other->pid == each->ppid; });
    if (!below) return each;
  }
  return listeners.empty() ? nullptr : listeners.front();
}

SafetyGate::Input safetyInput(const HostSnapshot& snapshot, const SafetyTarget& target) {
  const TrackedProcess* process = nullptr;
  const std::int32_t wanted = target.pid.value_or(target.sessionPid.value_or(0));
  const bool isSession = (target.pid || !target.port) &&
                         std::ranges::find(snapshot.sessions, wanted, &AgentSession::pid) != snapshot.sessions.end();
  if (target.pid) {
    process = processOf(snapshot, *target.pid);
  } else if (target.port) {
    process = listenerOn(snapshot, *target.port);
  } else if (isSession) {
    process = processOf(snapshot, wanted);
  }
  if (process == nullptr) return {};
  SafetyGate::Input input{.found = true, .name = process->name};
  input.otherUser = process->uid != snapshot.currentUser;
  input.system = isSystemProcess(*process, *snapshot.rules);
  input.brindle = isBrindle(*process);
  input.isSession = isSession;
  if (isSession) input.name = process->agentName.value_or(process->name);
  if (isSession) {
    // As the quit plan sees the root: the protection of agents must not stand before a rule of the user.
    QuitCandidate candidate = candidateOf(snapshot, Frontmost(snapshot), *process);
    candidate.defaultProtection.reset();
    input.protectedReason = SessionQuitPlanner::skipReason(candidate, snapshot.currentUser, *snapshot.rules);
  } else if (const auto reason = snapshot.protections.find(process->pid); reason != snapshot.protections.end()) {
    input.protectedReason = reason->second;
  }
  return input;
}

}  // namespace brindle
