// How much do the decisions cost that run at every refresh, and how much does a hook payload cost?
// Budgets: each policy, forecast and notifier call that makes no text under 1 µs and without a single allocation; a
// payload of 1 KB under 15 µs.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "logic/events/agent_event_parser.h"
#include "logic/events/agent_notifier.h"
#include "logic/events/session_idle_tracker.h"
#include "logic/helper/helper_revert_policy.h"
#include "logic/plan/plan_forecast.h"
#include "logic/plan/plan_usage_parser.h"
#include "logic/power/energy_math.h"
#include "logic/power/lid_sleep_policy.h"

namespace {

std::size_t allocations = 0;

/// Fails the benchmark when its loop allocated: the budget of time alone would not notice.
class WithoutAllocation {
 public:
  explicit WithoutAllocation(benchmark::State& state) : state_(state), before_(allocations) {}
  WithoutAllocation(const WithoutAllocation&) = delete;
  WithoutAllocation& operator=(const WithoutAllocation&) = delete;
  ~WithoutAllocation() {
    if (allocations != before_) state_.SkipWithError("allocated");
  }

 private:
  benchmark::State& state_;
  std::size_t before_;
};

}  // namespace

// Out of line, or GCC sees malloc behind one and free behind the other and takes them for a mismatched pair.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);

void revertPolicyTick(benchmark::State& state) {
  HelperRevertPolicy policy;
  benchmark::DoNotOptimize(policy.request(true, kNow, Seconds{43200}));
  Date now = kNow;
  const WithoutAllocation check(state);
  for (auto _ : state) {
    now += Seconds{0.001};
    policy.heartbeat(now);
    benchmark::DoNotOptimize(policy.tick(now));
  }
}
BENCHMARK(revertPolicyTick);

void lidSleepDecision(benchmark::State& state) {
  LidSleepPolicy policy;
  const KeepAwakeStatus status = KeepAwakeHolding{{"shop"}};
  const WithoutAllocation check(state);
  for (auto _ : state) benchmark::DoNotOptimize(policy.decide({true, true}, status, Seconds{3600}, kNow));
}
BENCHMARK(lidSleepDecision);

void keepAwakeStatus(benchmark::State& state) {
  KeepAwakePolicy policy;
  const KeepAwakeRules rules{.enabled = true};
  const PowerState power{.onBattery = true, .batteryPercent = 50};
  const WithoutAllocation check(state);
  for (auto _ : state) benchmark::DoNotOptimize(policy.status(rules, {}, power, ThermalLevel::fair));
}
BENCHMARK(keepAwakeStatus);

void planForecast(benchmark::State& state) {
  double used = 1;
  const WithoutAllocation check(state);
  for (auto _ : state) {
    used = used < 99 ? used + 0.5 : 1;
    benchmark::DoNotOptimize(PlanForecast::outcome(kNow + Seconds{9000}, PlanWindowKind::session, kNow, used));
  }
}
BENCHMARK(planForecast);

void energyPercent(benchmark::State& state) {
  double value = 0;
  const WithoutAllocation check(state);
  for (auto _ : state) benchmark::DoNotOptimize(EnergyMath::percent({value += 0.1, 200, 100}));
}
BENCHMARK(energyPercent);

void notifierWithNothingDue(benchmark::State& state) {
  AgentNotifier notifier;
  const AgentNotifyRules rules{.finished = true, .needsApproval = true};
  for (int i = 0; i < 20; ++i) {
    benchmark::DoNotOptimize(notifier.handle(
        {.agent = "Codex", .kind = AgentEventKind::needsApproval, .sessionID = std::to_string(i)}, rules, kNow));
  }
  const WithoutAllocation check(state);
  for (auto _ : state) benchmark::DoNotOptimize(notifier.releaseDue(kNow, rules, [](const auto&) { return true; }));
}
BENCHMARK(notifierWithNothingDue);

void notifierEvent(benchmark::State& state) {
  AgentNotifier notifier;
  const AgentNotifyRules rules{.finished = true, .needsApproval = true};
  const AgentEvent event{.agent = "Codex", .kind = AgentEventKind::finished, .sessionID = "835f39ae-4a05"};
  Date now = kNow;
  for (auto _ : state) {
    now += Seconds{1};
    benchmark::DoNotOptimize(notifier.handle(event, rules, now));
  }
}
BENCHMARK(notifierEvent);

void idleTrackerPass(benchmark::State& state) {
  SessionIdleTracker tracker;
  std::vector<SessionIdleTracker::Sample> samples;
  for (int i = 0; i < 20; ++i) samples.push_back({"Codex:pid" + std::to_string(i), i % 2 == 0 ? 80.0 : 0.0});
  Date now = kNow;
  benchmark::DoNotOptimize(tracker.update(samples, now, Seconds{120}));
  const WithoutAllocation check(state);
  for (auto _ : state) {
    now += Seconds{1};
    benchmark::DoNotOptimize(tracker.update(samples, now, Seconds{120}));
  }
}
BENCHMARK(idleTrackerPass);

void hookPayloadOfOneKilobyte(benchmark::State& state) {
  std::string payload =
      R"({"session_id":"835f39ae-4a05-4bff-95ec-9ff21ca99141","transcript_path":"/home/u/.claude/projects/t.jsonl",)"
      R"("cwd":"/home/u/shop","hook_event_name":"Notification","message":"Claude needs your permission to use Bash",)"
      R"("title":"Permission needed","notification_type":"permission_prompt","tool_input":{"command":")";
  payload += std::string(1024 - payload.size() - 3, 'x') + "\"}}";
  for (auto _ : state) benchmark::DoNotOptimize(AgentEventParser::parseClaudeHook(payload, 4711, kNow));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(payload.size()));
}
BENCHMARK(hookPayloadOfOneKilobyte);

void usageDocument(benchmark::State& state) {
  const std::string document = R"({"five_hour":{"utilization":42.5,"resets_at":"2026-03-01T10:00:00.123Z"},)"
                               R"("seven_day":{"utilization":7,"resets_at":"2026-03-04T10:00:00Z"}})";
  for (auto _ : state) benchmark::DoNotOptimize(PlanUsageParser::parse(document));
}
BENCHMARK(usageDocument);

}  // namespace
}  // namespace brindle
