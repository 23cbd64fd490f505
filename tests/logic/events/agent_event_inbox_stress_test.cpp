// The event inbox under many processes at once, and under SIGKILL at any moment.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "base/lines.h"
#include "base/number_text.h"
#include "logic/events/agent_event_inbox.h"
#include "tests/base/shared_counters.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);
constexpr std::size_t kWriters = 16;
constexpr std::size_t kEventsEach = 2000;
constexpr std::size_t kIdSpace = 8'000'000;

std::size_t numberOf(const std::string& id) {
  const auto number = integerFromText(id);
  return number && *number >= 0 ? static_cast<std::size_t>(*number) : kIdSpace;
}

AgentEvent event(std::size_t number) {
  return {.id = std::to_string(number), .time = kNow, .agent = "Claude Code", .cwd = std::string(120, 'w')};
}

// Waits while the spool is so full that one more round of writers might overfill it.
void appendPaced(const AgentEventInbox& inbox, const std::string& file, std::size_t number) {
  std::error_code ignored;
  while (true) {
    const std::uintmax_t size = std::filesystem::file_size(file, ignored);
    if (ignored || size <= AgentEventInbox::kSizeLimit / 2) break;
    pause(std::chrono::microseconds(300));
  }
  if (!inbox.append(event(number))) ::_exit(1);
}

TEST(AgentEventInboxStress, SixteenWritersAndADrainerLoseAndDoubleNothing) {
  TemporaryFolder folder;
  const AgentEventInbox inbox(folder.path());
  const std::string file = folder.file("agent-events.jsonl");
  std::vector<pid_t> writers;
  for (std::size_t writer = 0; writer < kWriters; ++writer) {
    writers.push_back(startChild([&] {
      for (std::size_t i = 0; i < kEventsEach; ++i) appendPaced(inbox, file, writer * kEventsEach + i);
    }));
  }
  std::vector<int> seen(kIdSpace + 1);
  std::vector<std::size_t> last(kWriters);
  const auto drainOnce = [&] {
    for (const AgentEvent& drained : inbox.drain(kNow)) {
      const std::size_t number = numberOf(drained.id);
      ASSERT_LT(number, kWriters * kEventsEach);
      EXPECT_EQ(drained, event(number));
      ++seen[number];
      const std::size_t writer = number / kEventsEach;
      EXPECT_LE(last[writer], number) << "out of order";
      last[writer] = number;
    }
  };
  std::size_t running = writers.size();
  while (running > 0) {
    drainOnce();
    int status = -1;
    if (::waitpid(-1, &status, WNOHANG) > 0) {
      EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
      --running;
    }
  }
  drainOnce();
  for (std::size_t number = 0; number < kWriters * kEventsEach; ++number) ASSERT_EQ(seen[number], 1) << number;
  EXPECT_EQ(modeOf(file), 0600);
  EXPECT_EQ(modeOf(folder.file("agent-events.lock")), 0600);
  EXPECT_EQ(folder.entries(), 2u);
}

TEST(AgentEventInboxStress, KilledWritersLoseNothingThatWasAppended) {
  TemporaryFolder folder;
  const AgentEventInbox inbox(folder.path());
  const std::string file = folder.file("agent-events.jsonl");
  SharedCounters appended(kIdSpace);
  SharedCounters next(1);
  const auto write = [&] {
    while (true) {
      const std::size_t number = next[0]++;
      if (number >= kIdSpace) ::_exit(0);
      appendPaced(inbox, file, number);
      appended[number] = 1;
    }
  };
  std::vector<pid_t> writers;
  for (int i = 0; i < 4; ++i) writers.push_back(startChild(write));

  std::mt19937 random(7);
  std::vector<std::uint32_t> seen(kIdSpace + 1);
  int kills = 0;
  const auto end = std::chrono::steady_clock::now() + stressSpan();
  while (std::chrono::steady_clock::now() < end && next[0] < kIdSpace / 2) {
    pause(std::chrono::microseconds(random() % 4000));
    pid_t& victim = writers[random() % writers.size()];
    ASSERT_TRUE(killAndReap(victim)) << "it had given up";
    ++kills;
    victim = startChild(write);
    for (const AgentEvent& drained : inbox.drain(kNow)) ++seen[numberOf(drained.id)];
  }
  for (const pid_t writer : writers) EXPECT_TRUE(killAndReap(writer));
  // Since the last drain nobody but these and the last victim can have left a piece of a line.
  const std::string rest = contentOf(file);
  EXPECT_LE(nonEmptyLines(rest).size() - readAgentEventLines(rest).size(), writers.size() + 1) << "torn lines";
  for (const AgentEvent& drained : inbox.drain(kNow)) ++seen[numberOf(drained.id)];
  EXPECT_GT(kills, 20);
  EXPECT_EQ(seen[kIdSpace], 0u);
  std::size_t total = 0;
  for (std::size_t number = 0; number < kIdSpace; ++number) {
    ASSERT_LE(seen[number], 1u) << number;
    ASSERT_GE(seen[number], appended[number].load()) << number;
    total += seen[number];
  }
  EXPECT_GT(total, 100u);
}

// What drainers tell the test: who has been seen, and whether one holds lines that it has taken out and not yet told
// of.
struct Drained {
  SharedCounters seen{kIdSpace + 1};
  SharedCounters busy{1};
  SharedCounters drains{1};

  void drainForEver(const AgentEventInbox& inbox) {
    while (true) {
      busy[0] = 1;
      for (const AgentEvent& drained : inbox.drain(kNow)) ++seen[numberOf(drained.id)];
      busy[0] = 0;
      ++drains[0];
    }
  }

  // One writer at a time, so that what one drain takes out are events in a row: the runs of events that were appended
  // and never seen.
  std::size_t lostRuns(SharedCounters& appended) {
    std::size_t runs = 0;
    bool inRun = false;
    for (std::size_t number = 0; number < kIdSpace; ++number) {
      EXPECT_LE(seen[number].load(), 1u) << number;
      if (seen[number] == 0 && appended[number] == 0) continue;
      const bool lost = seen[number] == 0;
      if (lost && !inRun) ++runs;
      inRun = lost;
    }
    return runs;
  }
};

TEST(AgentEventInboxStress, KilledDrainersDoubleNothingAndLoseOnlyWhatTheyHadTakenOut) {
  TemporaryFolder folder;
  const AgentEventInbox inbox(folder.path());
  const std::string file = folder.file("agent-events.jsonl");
  Drained drained;
  SharedCounters appended(kIdSpace);
  SharedCounters next(1);
  const auto write = [&] {
    for (std::size_t number = next[0]++; number < kIdSpace; number = next[0]++) {
      appendPaced(inbox, file, number);
      appended[number] = 1;
    }
  };
  pid_t writer = startChild(write);
  std::mt19937 random(11);
  std::size_t kills = 0;
  std::size_t busyKills = 0;
  const auto end = std::chrono::steady_clock::now() + stressSpan();
  while (std::chrono::steady_clock::now() < end && next[0] < kIdSpace / 2) {
    const pid_t drainer = startChild([&] { drained.drainForEver(inbox); });
    // Every fourth one lives long enough to drain, also on a slow machine.
    pause(std::chrono::microseconds(random() % (kills % 4 == 0 ? 80'000 : 8'000)));
    ASSERT_TRUE(killAndReap(drainer)) << "it had given up";
    busyKills += drained.busy[0].exchange(0);
    if (++kills % 3 != 0) continue;
    ASSERT_TRUE(killAndReap(writer)) << "it had given up";
    writer = startChild(write);
  }
  EXPECT_TRUE(killAndReap(writer));
  for (const AgentEvent& rest : inbox.drain(kNow)) ++drained.seen[numberOf(rest.id)];
  EXPECT_GT(kills, 20u);
  EXPECT_GT(drained.drains[0].load(), 0u);
  EXPECT_EQ(drained.seen[kIdSpace].load(), 0u);
  EXPECT_LE(drained.lostRuns(appended), busyKills);
  EXPECT_GT(next[0].load(), 100u);
  EXPECT_TRUE(inbox.append(event(1)));
  EXPECT_EQ(modeOf(file), 0600);
}

}  // namespace
}  // namespace brindle
