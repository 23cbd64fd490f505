#include "inventory/tracked_processes.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "inventory/agent_recognition.h"
#include "inventory/framework_recognition.h"
#include "inventory/proc_text.h"
#include "inventory/program_recognition.h"
#include "inventory/valid_text.h"

namespace brindle {
namespace {

/// The longest name that the kernel keeps, in bytes.
constexpr std::size_t kKernelNameLength = 15;
/// Ancestors that are looked at for a listener's framework.
constexpr std::size_t kChainLimit = 16;

using ByPid = std::unordered_map<std::int32_t, const ProcessFacts*>;

std::vector<const ProcessFacts*> chainOf(const ProcessFacts& facts, const ByPid& byPid) {
  std::vector<const ProcessFacts*> chain{&facts};
  while (chain.size() < kChainLimit) {
    const auto parent = byPid.find(chain.back()->ppid);
    if (parent == byPid.end() || std::ranges::find(chain, parent->second) != chain.end()) break;
    chain.push_back(parent->second);
  }
  return chain;
}

void setRole(const ProgramIdentity& program, TrackedProcess& process) {
  if (const auto agent = recogniseAgent(program)) {
    process.role = ProcessRole::agent;
    process.agentName = textOf(*agent);
    return;
  }
  const auto programClass = classOf(program);
  if (programClass == ProgramClass::ide) process.role = ProcessRole::ide;
  if (programClass == ProgramClass::terminal) process.role = ProcessRole::terminal;
}

void setOrigin(const ProcessOrigin& origin, TrackedProcess& process) {
  if (origin.tie == OriginTie::likely) return;
  process.recordedAgentPID = origin.agentPid;
  process.recordedAgentName = origin.agent;
  process.recordedAgentAlive = origin.tie == OriginTie::owned;
}

}  // namespace

std::string shownName(const ProcessFacts& facts) {
  if (facts.name.size() >= kKernelNameLength && facts.path) {
    const std::string_view file = baseName(*facts.path);
    if (file.starts_with(facts.name)) return validText(file);
  }
  return validText(facts.name);
}

TrackedProcess trackedIdentityOf(const ProcessFacts& facts) {
  TrackedProcess process;
  process.pid = facts.pid;
  process.ppid = facts.ppid;
  process.uid = facts.uid;
  process.name = shownName(facts);
  if (facts.path) process.path = validText(*facts.path);
  return process;
}

std::vector<TrackedProcess> trackedProcesses(std::span<const ProcessFacts> processes,
                                             std::span<const ProcessOrigin> origins, std::uint32_t currentUser,
                                             ProjectFinder& projects) {
  ByPid byPid;
  for (const ProcessFacts& facts : processes) byPid.try_emplace(facts.pid, &facts);
  std::unordered_map<std::int32_t, const ProcessOrigin*> originOf;
  for (const ProcessOrigin& origin : origins) originOf.try_emplace(origin.pid, &origin);

  std::vector<TrackedProcess> tracked;
  tracked.reserve(processes.size());
  for (const ProcessFacts& facts : processes) {
    TrackedProcess process = trackedIdentityOf(facts);
    process.commandLine = validText(commandLineOf(facts.arguments));
    if (facts.cwd) process.cwd = validText(*facts.cwd);
    process.start = facts.start;
    process.startTime = facts.startTime;
    process.footprint = facts.footprint;
    process.cpuPercent = facts.cpuPercent;
    process.ports = facts.ports;
    const ProgramIdentity program = identityOf(facts);
    setRole(program, process);
    if (!process.role && !classOf(program)) {
      const auto framework =
          facts.ports.empty() ? recogniseFramework(program) : frameworkOfListener(chainOf(facts, byPid));
      if (framework) process.framework = *framework;
    }
    if (facts.cwd && facts.uid == currentUser) {
      if (const auto project = projects.projectOf(*facts.cwd)) process.project = validText(*project);
    }
    if (const auto origin = originOf.find(facts.pid); origin != originOf.end()) setOrigin(*origin->second, process);
    tracked.push_back(std::move(process));
  }
  return tracked;
}

ProcessFacts factsOf(const TrackedProcess& process) {
  ProcessFacts facts{.pid = process.pid,
                     .ppid = process.ppid,
                     .uid = process.uid,
                     .name = process.name,
                     .path = process.path,
                     .cwd = process.cwd,
                     .start = process.start,
                     .startTime = process.startTime,
                     .footprint = process.footprint,
                     .cpuPercent = process.cpuPercent,
                     .ports = process.ports};
  std::string_view rest = process.commandLine;
  while (!rest.empty() && facts.arguments.size() < kArgumentCountLimit) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    if (end > 0) facts.arguments.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return facts;
}

}  // namespace brindle
