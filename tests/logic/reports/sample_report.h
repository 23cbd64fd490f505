// A snapshot that owns what a report refers to, for tests.
#pragma once

#include <vector>

#include "logic/reports/report_snapshot.h"
#include "logic/sessions/agent_session_builder.h"
#include "tests/logic/sessions/sample_processes.h"

namespace brindle {

struct SampleReport {
  std::vector<TrackedProcess> processes;
  std::vector<LeftBehind> leftBehind;
  ProtectionReasons protections;
  std::vector<AgentSession> sessions;

  /// With the sessions that are in the processes; valid until this changes.
  ReportSnapshot snapshot() {
    sessions = AgentSessionBuilder::build(processes, kUser, kNow);
    return {.processes = processes,
            .sessions = sessions,
            .leftBehind = leftBehind,
            .protections = protections,
            .currentUser = kUser};
  }
};

inline TrackedProcess listener(ProcessForest::Link link, std::vector<int> ports) {
  TrackedProcess made = process(link);
  made.ports = std::move(ports);
  return made;
}

}  // namespace brindle
