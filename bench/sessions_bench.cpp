// What do one snapshot's sessions and the documents made of it cost? The application builds sessions at every snapshot
// and a report answers while the user waits, so that even a machine with 100,000 processes must be done within 60 ms,
// an ordinary one with 1,000 within half a millisecond, and a document of 10,000 rows within 30 ms.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "logic/mcp/note_redaction.h"
#include "logic/reports/cli_reports.h"
#include "logic/reports/idle_candidates.h"
#include "logic/reports/idle_stop.h"
#include "logic/sessions/agent_session_builder.h"
#include "logic/sessions/session_quit_planner.h"

namespace brindle {
namespace {

constexpr std::uint32_t kUser = 501;
constexpr Date kNow = dateFromSeconds(1'772'352'000);
constexpr std::int32_t kChildrenPerAgent = 30;

TrackedProcess worker(std::int32_t pid, std::int32_t ppid) {
  const std::string number = std::to_string(pid);
  return {.pid = pid,
          .ppid = ppid,
          .uid = kUser,
          .name = "node",
          .path = "/home/ada/.nvm/versions/node/v22.11.0/bin/node",
          .commandLine = "node /home/ada/projects/shop-" + number +
                         "/node_modules/.bin/tsx watch src/server.ts --port " + number + " --env-file=.env.local",
          .cwd = "/home/ada/projects/shop",
          .start = kNow - Seconds{10'000.0 + pid % 977},
          .startTime = pid,
          .footprint = 50'000'000,
          .cpuPercent = 0.25};
}

/// Agents with thirty children each, three levels deep, and as many ordinary processes as fill the snapshot up.
std::vector<TrackedProcess> snapshotOf(std::int32_t processes, std::int32_t agents) {
  std::vector<TrackedProcess> snapshot;
  snapshot.reserve(static_cast<std::size_t>(processes));
  std::int32_t pid = 100;
  for (std::int32_t index = 0; index < agents; ++index) {
    const std::int32_t root = pid++;
    snapshot.push_back(worker(root, 1));
    snapshot.back().role = ProcessRole::agent;
    snapshot.back().agentName = "Claude Code";
    for (std::int32_t child = 0; child < kChildrenPerAgent; ++child) {
      snapshot.push_back(worker(pid, child < 10 ? root : pid - 10));
      if (child % 10 == 9) snapshot.back().ports = {3000 + child};
      ++pid;
    }
  }
  while (snapshot.size() < static_cast<std::size_t>(processes)) {
    snapshot.push_back(worker(pid, 1 + pid % 50));
    ++pid;
  }
  return snapshot;
}

void buildSessions(benchmark::State& state, const std::vector<TrackedProcess>& snapshot, std::size_t agents) {
  for (auto _ : state) {
    const auto sessions = AgentSessionBuilder::build(snapshot, kUser, kNow);
    if (sessions.size() != agents || sessions.front().children.size() != kChildrenPerAgent) std::abort();
    benchmark::DoNotOptimize(sessions.data());
  }
}

void SessionsOf100000(benchmark::State& state) { buildSessions(state, snapshotOf(100'000, 1'000), 1'000); }
BENCHMARK(SessionsOf100000)->Unit(benchmark::kMillisecond);

void SessionsOf10000(benchmark::State& state) { buildSessions(state, snapshotOf(10'000, 100), 100); }
BENCHMARK(SessionsOf10000)->Unit(benchmark::kMillisecond);

void SessionsOf1000(benchmark::State& state) { buildSessions(state, snapshotOf(1'000, 10), 10); }
BENCHMARK(SessionsOf1000)->Unit(benchmark::kMicrosecond);

constexpr std::int32_t kRows = 10'000;

/// A snapshot of which every process is a row of every list.
struct ReportInput {
  std::vector<TrackedProcess> processes;
  std::vector<AgentSession> sessions;
  std::vector<LeftBehind> leftBehind;
  ProtectionReasons protections;

  ReportInput() {
    for (std::int32_t pid = 100; pid < 100 + kRows; ++pid) {
      processes.push_back(worker(pid, 1));
      processes.back().ports = {pid};
      if (pid % 3 == 0) protections.emplace(pid, "Protected by your rule");
      leftBehind.push_back({processes.back(), "Claude Code (exited), by its environment"});
    }
  }
  [[nodiscard]] ReportSnapshot snapshot() const {
    return {.processes = processes,
            .sessions = sessions,
            .leftBehind = leftBehind,
            .protections = protections,
            .currentUser = kUser};
  }
};

void PortsDocumentOf10000(benchmark::State& state) {
  const ReportInput input;
  for (auto _ : state) {
    const PortsDocument document = CLIReports::ports(input.snapshot());
    if (document.listeners.size() != kRows) std::abort();
    benchmark::DoNotOptimize(CLIReports::jsonText(document));
  }
}
BENCHMARK(PortsDocumentOf10000)->Unit(benchmark::kMillisecond);

void AgentsDocumentOf10000(benchmark::State& state) {
  const ReportInput input;
  for (auto _ : state) {
    const AgentsDocument document = CLIReports::agents(input.snapshot(), kNow);
    if (document.leftBehind.size() != kRows) std::abort();
    benchmark::DoNotOptimize(CLIReports::jsonText(document));
  }
}
BENCHMARK(AgentsDocumentOf10000)->Unit(benchmark::kMillisecond);

void StatusDocumentOf10000(benchmark::State& state) {
  const ReportInput input;
  for (auto _ : state) {
    const StatusDocument document = CLIReports::status(input.snapshot());
    if (document.devServers != kRows) std::abort();
    benchmark::DoNotOptimize(CLIReports::jsonText(document));
  }
}
BENCHMARK(StatusDocumentOf10000)->Unit(benchmark::kMillisecond);

void IdleDocumentOf10000(benchmark::State& state) {
  const ReportInput input;
  for (auto _ : state) {
    const IdlePlan plan = IdleStop::plan(idleCandidates(input.snapshot(), kNow), 7200);
    if (plan.stop.size() + plan.skipped.size() != kRows) std::abort();
    benchmark::DoNotOptimize(CLIReports::jsonText(IdleStop::document(plan, 7200)));
  }
}
BENCHMARK(IdleDocumentOf10000)->Unit(benchmark::kMillisecond);

void QuitPlanOf10000(benchmark::State& state) {
  std::vector<QuitCandidate> candidates;
  for (const TrackedProcess& process : snapshotOf(kRows, kRows / (kChildrenPerAgent + 1))) {
    candidates.push_back({.pid = process.pid,
                          .ppid = process.ppid,
                          .uid = process.uid,
                          .name = process.name,
                          .path = *process.path,
                          .commandLine = process.commandLine});
  }
  for (auto _ : state) {
    const SessionQuitPlan plan = SessionQuitPlanner::plan({.rootPID = 100, .agent = "Claude Code"}, candidates, kUser);
    if (plan.members.size() != kChildrenPerAgent + 1) std::abort();
    benchmark::DoNotOptimize(plan.members.data());
  }
}
BENCHMARK(QuitPlanOf10000)->Unit(benchmark::kMicrosecond);

void RedactNote(benchmark::State& state) {
  const std::string note =
      "please stop the dev server on port 3000, it was started with --token=0123456789abcdef by "
      "mistake and 0123456789abcdef0123456789abcdef0123 is in its log";
  for (auto _ : state) benchmark::DoNotOptimize(redactNote(note));
}
BENCHMARK(RedactNote)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace brindle
