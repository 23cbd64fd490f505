#include "logic/reports/cli_reports.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>

#include "base/enum_text.h"
#include "base/json_writer.h"
#include "logic/reports/status_summary.h"
#include "logic/reports/whole_seconds.h"
#include "logic/sessions/byte_sum.h"
#include "logic/sessions/session_child_kind.h"

namespace brindle::CLIReports {
namespace {

constexpr JsonStyle kDocumentStyle{.pretty = true, .sortedKeys = true, .escapeSlashes = false};

bool isDevServer(const TrackedProcess& process, const ReportSnapshot& snapshot) {
  return !process.role && isUserProcess(process, snapshot.currentUser, snapshot.rules) &&
         classifyChild(process) == SessionChildKind::devServer;
}

void sortUnique(std::vector<int>& numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

/// Adds up processes, each pid once, however many counts it belongs to.
class Holdings {
 public:
  void add(const TrackedProcess& process, StatusDocument& document) {
    if (!seen_.insert(process.pid).second) return;
    document.memoryBytes = addedBytes(document.memoryBytes, process.footprint);
    document.ports.insert(document.ports.end(), process.ports.begin(), process.ports.end());
  }

 private:
  std::unordered_set<std::int32_t> seen_;
};

AgentSessionDocument documentOf(const AgentSession& session, Date now) {
  AgentSessionDocument document{.pid = session.pid,
                                .agent = session.agent,
                                .project = session.project,
                                .activity = std::string(textOf(session.activity)),
                                .uptimeSeconds = wholeSeconds(Seconds(now - session.start).count()),
                                .memoryBytes = session.footprint,
                                .ports = session.ports};
  document.started.reserve(session.children.size());
  for (const SessionChild& child : session.children) {
    document.started.push_back({.pid = child.pid,
                                .name = child.name,
                                .kind = std::string(textOf(child.kind)),
                                .ports = child.ports,
                                .memoryBytes = child.footprint});
  }
  return document;
}

}  // namespace

StatusDocument status(const ReportSnapshot& snapshot) {
  StatusDocument document{.ghosts = static_cast<std::int64_t>(snapshot.leftBehind.size()),
                          .agentSessions = static_cast<std::int64_t>(snapshot.sessions.size())};
  Holdings holdings;
  for (const LeftBehind& ghost : snapshot.leftBehind) holdings.add(ghost.process, document);

  std::unordered_set<std::int32_t> inSessions;
  for (const AgentSession& session : snapshot.sessions) {
    inSessions.insert(session.pid);
    for (const SessionChild& child : session.children) inSessions.insert(child.pid);
  }
  std::unordered_set<std::int32_t> known;
  known.reserve(snapshot.processes.size());
  for (const TrackedProcess& process : snapshot.processes) {
    if (!known.insert(process.pid).second) continue;
    const bool devServer = isDevServer(process, snapshot);
    if (devServer) ++document.devServers;
    if (devServer || inSessions.contains(process.pid)) holdings.add(process, document);
  }
  sortUnique(document.ports);
  document.summary = statusSummary(document);
  return document;
}

PortsDocument ports(const ReportSnapshot& snapshot) {
  PortsDocument document;
  std::unordered_set<std::int32_t> known;
  known.reserve(snapshot.processes.size());
  for (const TrackedProcess& process : snapshot.processes) {
    if (!known.insert(process.pid).second || process.ports.empty()) continue;
    std::vector<int> portsOnce = process.ports;
    sortUnique(portsOnce);
    const auto reason = snapshot.protections.find(process.pid);
    for (const int port : portsOnce) {
      PortListener& listener =
          document.listeners.emplace_back(PortListener{.port = port,
                                                       .pid = process.pid,
                                                       .name = process.name,
                                                       .project = process.project,
                                                       .ownedByCurrentUser = process.uid == snapshot.currentUser});
      if (reason != snapshot.protections.end()) listener.protectedReason = reason->second;
    }
  }
  std::sort(document.listeners.begin(), document.listeners.end(),
            [](const PortListener& left, const PortListener& right) {
              return std::tie(left.port, left.pid) < std::tie(right.port, right.pid);
            });
  return document;
}

AgentsDocument agents(const ReportSnapshot& snapshot, Date now) {
  AgentsDocument document;
  document.sessions.reserve(snapshot.sessions.size());
  for (const AgentSession& session : snapshot.sessions) document.sessions.push_back(documentOf(session, now));
  document.leftBehind = leftBehindRows(snapshot.leftBehind);
  return document;
}

GhostsDocument ghosts(const ReportSnapshot& snapshot, const std::vector<LeftBehind>& likely) {
  return {.leftBehind = leftBehindRows(snapshot.leftBehind), .likely = leftBehindRows(likely)};
}

std::string jsonText(const StatusDocument& document) { return writeJson(encode(document), kDocumentStyle); }
std::string jsonText(const PortsDocument& document) { return writeJson(encode(document), kDocumentStyle); }
std::string jsonText(const AgentsDocument& document) { return writeJson(encode(document), kDocumentStyle); }
std::string jsonText(const IdleDocument& document) { return writeJson(encode(document), kDocumentStyle); }
std::string jsonText(const GhostsDocument& document) { return writeJson(encode(document), kDocumentStyle); }

}  // namespace brindle::CLIReports
