#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>

#include "base/text.h"
#include "inventory/agent_recognition.h"
#include "inventory/host_snapshot.h"
#include "inventory/proc_stat.h"
#include "inventory/process_origin.h"
#include "inventory/valid_text.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 1000;

rc::Gen<ProcessFacts> anyProcess() {
  const auto program = rc::gen::elementOf(
      std::vector<std::string>{"claude", "codex", "node", "vite", "bash", "tmux", "postgres", "systemd", "python3"});
  const auto variables = rc::gen::elementOf(std::vector<std::vector<NamedVariable>>{
      {}, {{"CLAUDECODE", "1"}}, {{"CLAUDE_PID", "3"}}, {{"CODEX_THREAD_ID", "t"}}, {{"AGENT", "amp"}}});
  return rc::gen::apply(
      [](std::int32_t pid, std::int32_t ppid, bool mine, const std::string& name,
         const std::vector<NamedVariable>& carried, std::int64_t start) {
        return ProcessFacts{.pid = pid,
                            .ppid = ppid,
                            .uid = mine ? kUser : 0U,
                            .name = name,
                            .path = "/opt/" + name,
                            .arguments = {name},
                            .startTime = start,
                            .variables = carried};
      },
      rc::gen::inRange(1, 25), rc::gen::inRange(0, 25), rc::gen::arbitrary<bool>(), program, variables,
      rc::gen::inRange<std::int64_t>(0, 20));
}

RC_GTEST_PROP(OriginProperty, OnlyTheUsersOwnPlainProcessesAreEverTiedAndEachOnce, ()) {
  const auto processes = *rc::gen::container<std::vector<ProcessFacts>>(anyProcess());
  const auto origins = findOrigins({processes, {}, kUser, SystemProcessRules::forLinux()});
  std::set<std::int32_t> seen;
  for (const ProcessOrigin& origin : origins) {
    RC_ASSERT(seen.insert(origin.pid).second);
    const auto facts = std::ranges::find(processes, origin.pid, &ProcessFacts::pid);
    RC_ASSERT(facts != processes.end());
    RC_ASSERT(facts->uid == kUser);
    RC_ASSERT(!recogniseAgent(*facts));
    RC_ASSERT(facts->name != "tmux" && facts->name != "postgres" && facts->name != "systemd");
  }
}

RC_GTEST_PROP(OriginProperty, NothingIsLeftBehindByAnAgentThatIsOlderAndAlive, ()) {
  auto processes = *rc::gen::container<std::vector<ProcessFacts>>(anyProcess());
  std::int32_t pid = 100;
  for (const auto& name : {"claude", "codex", "amp"}) {
    processes.insert(processes.begin(), {.pid = pid++,
                                         .ppid = 1,
                                         .uid = kUser,
                                         .name = name,
                                         .path = std::string("/opt/") + name,
                                         .arguments = {name},
                                         .startTime = -1});
  }
  for (const ProcessOrigin& origin : findOrigins({processes, {}, kUser, SystemProcessRules::forLinux()})) {
    RC_ASSERT(origin.evidence != OriginEvidence::environment);
  }
}

RC_GTEST_PROP(HostSnapshotProperty, WhatIsLeftBehindIsInNoSession, ()) {
  const auto processes = *rc::gen::container<std::vector<ProcessFacts>>(anyProcess());
  ProjectFinder projects("", [](const std::string&) { return std::nullopt; });
  const ProtectionRules none;
  const HostSnapshot host =
      snapshotOf(processes, {}, projects, {dateFromSeconds(1000), kUser, SystemProcessRules::forLinux(), none});
  std::set<std::int32_t> inSessions;
  for (const AgentSession& session : host.sessions) {
    inSessions.insert(session.pid);
    for (const SessionChild& child : session.children) inSessions.insert(child.pid);
  }
  for (const LeftBehind& each : host.leftBehind) RC_ASSERT(!inSessions.contains(each.process.pid));
}

RC_GTEST_PROP(ProcStatProperty, TheNameIsReadWhateverItsBytes, (const std::string& name)) {
  const auto stat = parseProcStat("7 (" + name + ") S 1 7 7 0 -1 4194304 0 0 0 0 1 2 0 0 20 0 1 0 99 0 0\n");
  RC_ASSERT(stat);
  RC_ASSERT(stat->name == name);
  RC_ASSERT(stat->startTicks == 99);
}

RC_GTEST_PROP(ValidTextProperty, CleaningTwiceChangesNothingMore, (const std::string& text)) {
  const std::string clean = terminalText(text);
  RC_ASSERT(isValidUtf8(clean));
  RC_ASSERT(terminalText(clean) == clean);
  RC_ASSERT(validText(validText(text)) == validText(text));
}

}  // namespace
}  // namespace brindle
