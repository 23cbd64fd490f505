// The quit inbox under many processes at once, and under SIGKILL at any moment.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/number_text.h"
#include "logic/mcp/mcp_quit_inbox.h"
#include "tests/base/shared_counters.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);
constexpr std::size_t kWriters = 16;
constexpr std::size_t kIdSpace = 400'000;

std::size_t numberOf(const std::string& id) {
  const auto number = integerFromText(id);
  return number && *number >= 0 ? static_cast<std::size_t>(*number) : kIdSpace;
}

TEST(MCPQuitInboxStress, SixteenWritersAndAnAnsweringReaderLoseNothing) {
  TemporaryFolder folder;
  const MCPQuitInbox inbox(folder.path());
  constexpr std::size_t kRequestsEach = 6;
  std::vector<pid_t> writers;
  for (std::size_t writer = 0; writer < kWriters; ++writer) {
    writers.push_back(startChild([&] {
      for (std::size_t i = 0; i < kRequestsEach; ++i) {
        const std::string id = std::to_string(writer * kRequestsEach + i);
        if (!inbox.add({.id = id, .time = kNow, .kind = "pid", .pid = 1, .status = "pending"})) ::_exit(1);
      }
    }));
  }
  std::vector<int> answered(kWriters * kRequestsEach);
  const auto answerAll = [&] {
    for (const MCPQuitRequest& request : inbox.pending()) {
      const std::size_t number = numberOf(request.id);
      ASSERT_LT(number, answered.size());
      ++answered[number];
      ASSERT_TRUE(inbox.setStatus({.id = request.id, .status = "declined"}));
    }
  };
  std::size_t running = writers.size();
  while (running > 0) {
    answerAll();
    int status = -1;
    if (::waitpid(-1, &status, WNOHANG) > 0) {
      EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
      --running;
    }
  }
  answerAll();
  EXPECT_EQ(answered, std::vector<int>(kWriters * kRequestsEach, 1));
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  EXPECT_EQ(modeOf(folder.file("mcp-inbox.json")), 0600);
  EXPECT_EQ(folder.entries(), 2u);
}

TEST(MCPQuitInboxStress, KilledWritersLeaveAWholeListAndAFreeLock) {
  TemporaryFolder folder;
  const MCPQuitInbox inbox(folder.path());
  SharedCounters added(kIdSpace);
  SharedCounters next(1);
  std::mt19937 random(13);
  std::size_t shortest = 0;
  const auto end = std::chrono::steady_clock::now() + stressSpan() / 2;
  while (std::chrono::steady_clock::now() < end) {
    const pid_t writer = startChild([&] {
      while (true) {
        const std::size_t number = next[0]++;
        const std::string id = std::to_string(number);
        if (!inbox.add({.id = id, .time = kNow, .kind = "pid", .pid = 1, .status = "pending"})) ::_exit(1);
        added[number] = 1;
      }
    });
    pause(std::chrono::microseconds(random() % 60'000));
    killAndReap(writer);
    const std::size_t length = inbox.pending().size();
    ASSERT_GE(length, shortest) << "the list was cut or could not be read";
    shortest = length;
  }
  std::vector<std::uint32_t> seen(kIdSpace + 1);
  for (const MCPQuitRequest& request : inbox.pending()) ++seen[numberOf(request.id)];
  for (std::size_t number = 0; number < kIdSpace; ++number) {
    ASSERT_LE(seen[number], 1u);
    ASSERT_GE(seen[number], added[number].load()) << number;
  }
  EXPECT_GT(shortest, 0u);
  EXPECT_TRUE(inbox.setStatus({.id = inbox.pending().front().id, .status = "declined"}));
}

}  // namespace
}  // namespace brindle
