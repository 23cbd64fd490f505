#include "inventory/host_snapshot.h"

#include <unordered_map>
#include <utility>

#include "inventory/protections.h"
#include "inventory/tracked_processes.h"
#include "logic/sessions/agent_session_builder.h"

namespace brindle {
namespace {

void finish(HostSnapshot& snapshot) {
  snapshot.sessions =
      AgentSessionBuilder::build(snapshot.processes, snapshot.currentUser, snapshot.now, *snapshot.rules);
  snapshot.protections = protectionReasons(snapshot);
}

HostSnapshot begun(const SnapshotContext& context) {
  HostSnapshot snapshot;
  snapshot.now = context.now;
  snapshot.currentUser = context.currentUser;
  snapshot.rules = &context.rules;
  snapshot.protectionRules = context.protections;
  snapshot.frontmost = context.frontmost;
  return snapshot;
}

}  // namespace

ReportSnapshot HostSnapshot::report() const {
  return {.processes = processes,
          .sessions = sessions,
          .leftBehind = leftBehind,
          .protections = protections,
          .currentUser = currentUser,
          .rules = *rules};
}

HostSnapshot snapshotOf(std::span<const ProcessFacts> processes, std::span<const OwnershipRecord> records,
                        ProjectFinder& projects, const SnapshotContext& context) {
  HostSnapshot snapshot = begun(context);
  const std::vector<ProcessOrigin> origins =
      findOrigins({processes, records, context.currentUser, context.rules, context.outOfSight});
  snapshot.processes = trackedProcesses(processes, origins, context.currentUser, projects);
  for (const ProcessFacts& facts : processes) {
    if (facts.hasTerminal) snapshot.withTerminal.insert(facts.pid);
    if (facts.clients > 0) snapshot.clients.insert_or_assign(facts.pid, facts.clients);
    if (!facts.inspected) ++snapshot.uninspected;
    if (facts.reachable) snapshot.reachablePorts.insert(facts.ports.begin(), facts.ports.end());
  }
  std::unordered_map<std::int32_t, const TrackedProcess*> byPid;
  for (const TrackedProcess& process : snapshot.processes) byPid.try_emplace(process.pid, &process);
  for (const ProcessOrigin& origin : origins) {
    if (origin.tie == OriginTie::owned) continue;
    auto& list = origin.tie == OriginTie::leftBehind ? snapshot.leftBehind : snapshot.likely;
    list.push_back({*byPid.at(origin.pid), originText(origin)});
  }
  finish(snapshot);
  return snapshot;
}

HostSnapshot snapshotOf(std::vector<TrackedProcess> processes, const SnapshotContext& context) {
  HostSnapshot snapshot = begun(context);
  snapshot.processes = std::move(processes);
  finish(snapshot);
  std::unordered_set<std::int32_t> inSessions;
  for (const AgentSession& session : snapshot.sessions) {
    for (const SessionChild& child : session.children) inSessions.insert(child.pid);
  }
  for (const TrackedProcess& process : snapshot.processes) {
    const bool names = process.recordedAgentName || process.recordedAgentPID;
    if (!names || process.recordedAgentAlive || process.role || inSessions.contains(process.pid)) continue;
    if (!isUserProcess(process, snapshot.currentUser, *snapshot.rules)) continue;
    snapshot.leftBehind.push_back({process, originText({.pid = process.pid,
                                                        .tie = OriginTie::leftBehind,
                                                        .evidence = OriginEvidence::record,
                                                        .agent = process.recordedAgentName.value_or("An agent")})});
  }
  return snapshot;
}

std::vector<OwnershipRecord> ownershipOf(const HostSnapshot& snapshot, const std::string& boot) {
  std::unordered_map<std::int32_t, std::int64_t> startOf;
  for (const TrackedProcess& process : snapshot.processes) startOf.try_emplace(process.pid, process.startTime);
  std::vector<OwnershipRecord> records;
  for (const AgentSession& session : snapshot.sessions) {
    for (const SessionChild& child : session.children) {
      records.push_back({boot, child.pid, startOf.at(child.pid), session.pid, session.startTime, session.agent});
    }
  }
  return records;
}

}  // namespace brindle
