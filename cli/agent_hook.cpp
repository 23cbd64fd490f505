#include "cli/agent_hook.h"

#include <unistd.h>

#include <csignal>
#include <exception>
#include <span>

#include "cli/exit_code.h"
#include "inventory/agent_recognition.h"
#include "logic/events/agent_event_inbox.h"
#include "logic/events/agent_event_parser.h"
#include "platform/directories.h"
#include "platform/host.h"
#include "platform/process_source.h"

namespace brindle {
namespace {

constexpr const char* kClaudePidVariable = "CLAUDE_PID";

ReportingAgent named(const ProcessFacts& process, AgentKind kind) {
  return {.process = process, .name = std::string(textOf(kind))};
}

/// The process that the agent itself named; `ancestors` begin with the parent.
std::optional<ReportingAgent> agentOfVariable(std::int32_t pid, std::span<const ProcessFacts> ancestors,
                                              const HookProcesses& processes) {
  for (const ProcessFacts& ancestor : ancestors) {
    if (ancestor.pid == pid) return named(ancestor, AgentKind::claudeCode);
  }
  const std::vector<ProcessFacts> chain = processes.chainOf(pid);
  if (chain.empty() || chain.front().uid != processes.user) return std::nullopt;
  if (!recogniseAgent(chain.front())) return std::nullopt;
  return named(chain.front(), AgentKind::claudeCode);
}

std::optional<AgentEvent> eventOf(const HookPayload& payload, std::optional<std::int32_t> pid) {
  switch (payload.origin) {
    case HookOrigin::claudeHook:
      return AgentEventParser::parseClaudeHook(payload.text, pid, payload.time);
    case HookOrigin::codexNotify:
      return AgentEventParser::parseCodexNotify(payload.text, pid, payload.time);
  }
  return std::nullopt;
}

extern "C" void endInSilence(int) { ::_exit(ExitCode::kDone); }

/// Ends the process with 0 when it lives longer than the patience. An alarm, because the wait for a lock and the
/// reading of a stream both sit in the kernel.
class Patience {
 public:
  Patience() {
    struct sigaction ending = {};
    ending.sa_handler = endInSilence;
    ::sigaction(SIGALRM, &ending, &before_);
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    ::sigprocmask(SIG_UNBLOCK, &alarms, &mask_);
    ::alarm(kHookPatienceSeconds);
  }
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;
  ~Patience() {
    ::alarm(0);
    ::sigprocmask(SIG_SETMASK, &mask_, nullptr);
    ::sigaction(SIGALRM, &before_, nullptr);
  }

 private:
  struct sigaction before_ = {};
  sigset_t mask_{};
};

}  // namespace

HookProcesses hookProcesses() {
  // A process that has ended and waits for its parent has no start stamp any more.
  return {
      .chainOf = [](std::int32_t pid) { return startStampOf(pid) ? processChain(pid) : std::vector<ProcessFacts>{}; },
      .parent = static_cast<std::int32_t>(::getppid()),
      .user = ::geteuid()};
}

std::optional<ReportingAgent> reportingAgent(HookOrigin origin, const Environment& environment,
                                             const HookProcesses& processes) {
  const std::vector<ProcessFacts> ancestors = processes.chainOf(processes.parent);
  // The variable comes down to whatever Claude Code has started, another agent's hooks included.
  if (origin == HookOrigin::claudeHook) {
    if (const auto pid = ownerPidFrom(environment(kClaudePidVariable).value_or(""))) {
      if (auto agent = agentOfVariable(*pid, ancestors, processes)) return agent;
    }
  }
  const auto nearest = nearestAgent(ancestors);
  if (!nearest) return std::nullopt;
  return named(ancestors[nearest->root], nearest->kind);
}

std::vector<std::string> recordHook(const HookPayload& payload, const Environment& environment,
                                    const HookProcesses& processes) {
  if (payload.text.empty()) return {"the payload is empty"};
  if (payload.text.size() > kHookPayloadLimit) {
    return {"the payload has more than " + std::to_string(kHookPayloadLimit) + " bytes"};
  }
  const auto folder = stateFolder(environment);
  if (!folder) return {"no folder to write to: neither HOME nor BRINDLE_DATA_DIR names one"};
  const auto agent = reportingAgent(payload.origin, environment, processes);
  std::vector<std::string> problems;
  const auto event = eventOf(payload, agent ? std::optional(agent->process.pid) : std::nullopt);
  if (!event) {
    problems.emplace_back("the payload is no event that is recorded");
  } else if (const Outcome appended = AgentEventInbox(*folder).append(*event); !appended) {
    problems.push_back(appended.error().message());
  }
  if (!agent) {
    problems.emplace_back("no agent among the ancestors of this process");
  } else if (const Outcome remembered = rememberChildren(environment, agent->process, agent->name); !remembered) {
    problems.push_back(remembered.error().message());
  }
  return problems;
}

int runHookQuietly(CommandContext& context, bool verbose, const std::function<std::vector<std::string>()>& work) {
  const Patience patience;
  std::vector<std::string> problems;
  try {
    problems = work();
  } catch (const std::exception& error) {
    problems.emplace_back(error.what());
  }
  if (verbose) {
    for (const std::string& problem : problems) context.output.remark(problem);
  }
  return ExitCode::kDone;
}

}  // namespace brindle
