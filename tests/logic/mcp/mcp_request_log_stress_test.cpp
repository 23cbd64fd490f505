// The request log under many processes at once, and under SIGKILL at any moment.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/lines.h"
#include "base/number_text.h"
#include "logic/mcp/mcp_request_log.h"
#include "tests/base/shared_counters.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);
constexpr std::size_t kWriters = 16;
constexpr std::size_t kEventsEach = 2000;
constexpr std::size_t kIdSpace = 400'000;
constexpr std::size_t kRoundLimit = 3000;

std::size_t numberOf(const std::string& id) {
  const auto number = integerFromText(id);
  return number && *number >= 0 ? static_cast<std::size_t>(*number) : kIdSpace;
}

MCPLogEntry entry(std::size_t number) {
  return {.time = kNow, .tool = "safety", .summary = std::to_string(number), .result = "ok"};
}

TEST(MCPRequestLogStress, SixteenWritersAndATrimmerLoseAndTearNothing) {
  TemporaryFolder folder;
  const MCPRequestLog log(folder.path());
  std::vector<pid_t> writers;
  for (std::size_t writer = 0; writer < kWriters; ++writer) {
    writers.push_back(startChild([&] {
      for (std::size_t i = 0; i < kEventsEach; ++i) {
        if (!log.append(entry(writer * kEventsEach + i))) ::_exit(1);
      }
    }));
  }
  const pid_t trimmer = startChild([&] {
    while (true) {
      if (!log.trim(kNow)) ::_exit(1);
      pause(std::chrono::milliseconds(150));  // a trim reads and writes everything
    }
  });
  for (const pid_t writer : writers) EXPECT_TRUE(endedWell(writer));
  killAndReap(trimmer);
  const std::vector<MCPLogEntry> entries = log.recent(kNow);
  EXPECT_EQ(entries.size(), kWriters * kEventsEach);
  EXPECT_EQ(nonEmptyLines(contentOf(folder.file("mcp-log.jsonl"))).size(), entries.size()) << "a torn line";
  std::vector<int> seen(kIdSpace + 1);
  for (const MCPLogEntry& found : entries) ++seen[numberOf(found.summary)];
  for (std::size_t number = 0; number < kWriters * kEventsEach; ++number) ASSERT_EQ(seen[number], 1) << number;
  EXPECT_EQ(modeOf(folder.file("mcp-log.jsonl")), 0600);
}

// One round on a log of its own: what is read back grows with the log, and the kills are what matters.
struct Round {
  TemporaryFolder folder{memoryFolder()};
  MCPRequestLog log{folder.path()};
  SharedCounters next{1};
  SharedCounters reported{kRoundLimit};
  int writerKills = 0;
  int trimmerKills = 0;

  void write() {
    for (std::size_t number = next[0]++; number < kRoundLimit; number = next[0]++) {
      if (!log.append(entry(number))) ::_exit(1);
      reported[number] = 1;
    }
    while (true) pause(std::chrono::seconds(1));
  }
  void trim() const {
    while (log.trim(kNow)) {
    }
    ::_exit(1);
  }

  void kill(std::mt19937& random, std::chrono::steady_clock::time_point end) {
    std::vector<pid_t> writers(3);
    for (pid_t& writer : writers) writer = startChild([&] { write(); });
    pid_t trimmer = startChild([&] { trim(); });
    while (std::chrono::steady_clock::now() < end && next[0] < kRoundLimit) {
      pause(std::chrono::microseconds(random() % 4000));
      const std::size_t chosen = random() % (writers.size() + 1);
      const bool isWriter = chosen < writers.size();
      pid_t& victim = isWriter ? writers[chosen] : trimmer;
      ASSERT_TRUE(killAndReap(victim)) << "it had given up";
      ++(isWriter ? writerKills : trimmerKills);
      victim = isWriter ? startChild([&] { write(); }) : startChild([&] { trim(); });
    }
    for (const pid_t writer : writers) EXPECT_TRUE(killAndReap(writer));
    EXPECT_TRUE(killAndReap(trimmer));
    writerKills += static_cast<int>(writers.size());
    ++trimmerKills;
  }

  void check() {
    ASSERT_TRUE(log.append(entry(kRoundLimit))) << "the lock is not free";
    const std::vector<MCPLogEntry> entries = log.recent(kNow);
    std::vector<std::uint32_t> seen(kRoundLimit + 1);
    for (const MCPLogEntry& found : entries) {
      const std::size_t number = numberOf(found.summary);
      ASSERT_LE(number, kRoundLimit);
      ASSERT_EQ(found, entry(number));
      ++seen[number];
    }
    for (std::size_t number = 0; number < kRoundLimit; ++number) {
      ASSERT_LE(seen[number], 1u) << number;
      ASSERT_GE(seen[number], reported[number].load()) << number << " was lost";
    }
    // Nobody but a killed writer leaves a piece of a line, nobody but a killed trimmer a file.
    const std::string text = contentOf(folder.file("mcp-log.jsonl"));
    EXPECT_LE(nonEmptyLines(text).size() - entries.size(), static_cast<std::size_t>(writerKills));
    EXPECT_LE(folder.entries(), 2 + static_cast<std::size_t>(trimmerKills));
    EXPECT_EQ(modeOf(folder.file("mcp-log.jsonl")), 0600);
  }
};

TEST(MCPRequestLogStress, KilledWritersAndTrimmersLoseAndDoubleNothing) {
  std::mt19937 random(17);
  int writerKills = 0;
  int trimmerKills = 0;
  std::size_t total = 0;
  const auto end = std::chrono::steady_clock::now() + stressSpan();
  while (std::chrono::steady_clock::now() < end) {
    Round round;
    ASSERT_NO_FATAL_FAILURE(round.kill(random, end));
    ASSERT_NO_FATAL_FAILURE(round.check());
    writerKills += round.writerKills;
    trimmerKills += round.trimmerKills;
    total += round.log.recent(kNow).size();
  }
  EXPECT_GT(writerKills, 20);
  EXPECT_GT(trimmerKills, 5);
  EXPECT_GT(total, 100u);
}

}  // namespace
}  // namespace brindle
