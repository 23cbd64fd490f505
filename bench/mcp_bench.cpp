// What do the shared files cost those who wait for them, and a question about safety an agent that asks it?
// A hook command appends while its agent waits: less than 60 us. The application drains a full inbox (256 KiB) between
// two frames: less than 5 ms. A safety question on a snapshot at hand, settings, heartbeat and log included, is
// answered within 100 us for 99 of 100 calls.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "base/json_reader.h"
#include "cli/mcp_service.h"
#include "inventory/protections.h"
#include "logic/events/agent_event_inbox.h"
#include "logic/mcp/mcp_request_log.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);

struct Folder {
  Folder() {
    if (::mkdtemp(path.data()) == nullptr) std::abort();
  }
  ~Folder() { std::filesystem::remove_all(path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string path = (std::filesystem::temp_directory_path() / "brindle-bench-XXXXXX").string();
};

AgentEvent event() {
  return {.id = "6A1C3E55-7D8B-4F2A-9C0D-000010000000",
          .time = kNow,
          .agent = "Claude Code",
          .kind = AgentEventKind::needsApproval,
          .message = "Claude needs your permission to use Bash",
          .cwd = "/home/someone/projects/brindle",
          .pid = 4242,
          .sessionID = "0f8fad5b-d9cb-469f-a165-70867728950e"};
}

void AppendEvent(benchmark::State& state) {
  const Folder folder;
  const AgentEventInbox inbox(folder.path);
  for (auto _ : state) {
    if (!inbox.append(event())) std::abort();
  }
}
BENCHMARK(AppendEvent)->Unit(benchmark::kMicrosecond);

void DrainFullInbox(benchmark::State& state) {
  const Folder folder;
  const AgentEventInbox inbox(folder.path);
  const std::string file = folder.path + "/" + std::string(AgentEventInbox::kFileName);
  for (auto _ : state) {
    state.PauseTiming();
    do {
      if (!inbox.append(event())) std::abort();
    } while (std::filesystem::file_size(file) <= AgentEventInbox::kSizeLimit);
    state.ResumeTiming();
    if (inbox.drain(kNow).size() < 500) std::abort();
  }
}
BENCHMARK(DrainFullInbox)->Unit(benchmark::kMillisecond);

void AppendLogEntry(benchmark::State& state) {
  const Folder folder;
  const MCPRequestLog log(folder.path);
  for (auto _ : state) {
    if (!log.append({.time = kNow, .tool = "safety", .summary = "pid 42", .result = "askFirst"})) std::abort();
  }
}
BENCHMARK(AppendLogEntry)->Unit(benchmark::kMicrosecond);

// A machine of 1,000 processes: one agent with children, and many others.
class FixedSource : public SnapshotSource {
 public:
  Result<HostSnapshot> take(const ProtectionRules& rules) override {
    std::vector<TrackedProcess> processes;
    for (std::int32_t pid = 1000; pid < 2000; ++pid) {
      TrackedProcess process{.pid = pid, .ppid = pid % 10 == 0 ? 1 : pid - 1, .uid = 1000, .name = "node"};
      process.commandLine = "node server.js --port " + std::to_string(pid);
      if (pid == 1000) {
        process.role = ProcessRole::agent;
        process.agentName = "Claude Code";
      }
      processes.push_back(std::move(process));
    }
    return snapshotOf(std::move(processes), SnapshotContext{kNow, 1000, SystemProcessRules::forLinux(), rules});
  }
};

// Each iteration is the 99th percentile of 500 calls.
void ToolsCallSafetyP99(benchmark::State& state) {
  const Folder folder;
  FixedSource source;
  MCPService service({.source = source,
                      .stateFolder = folder.path,
                      .settingsFile = folder.path + "/settings.json",
                      .remark = [](std::string_view) { std::abort(); }});
  const auto message = parseJson(
      R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"safety","arguments":{"pid":1500}}})");
  for (auto _ : state) {
    std::vector<double> spans;
    for (int i = 0; i < 500; ++i) {
      const auto began = std::chrono::steady_clock::now();
      benchmark::DoNotOptimize(service.answer(*message->object(), kNow));
      spans.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count());
    }
    std::sort(spans.begin(), spans.end());
    state.SetIterationTime(spans[spans.size() * 99 / 100]);
  }
}
BENCHMARK(ToolsCallSafetyP99)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(10);

}  // namespace
}  // namespace brindle
