// The quit inbox under many processes at once, and under SIGKILL at any moment.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/json_reader.h"
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
// Far below the limit of the inbox, which is not what is measured: the writers that pass the gate at once included.
constexpr std::uint32_t kWaitingAtMost = 8;
static_assert(kWaitingAtMost + kWriters < MCPQuitInbox::kPendingLimit);

std::size_t numberOf(const std::string& id) {
  const auto number = integerFromText(id);
  return number && *number >= 0 ? static_cast<std::size_t>(*number) : kIdSpace;
}

// Each is about a process of its own, and so long after the one before that an answered one goes with the next.
MCPQuitRequest request(std::size_t number, std::uint32_t ticket) {
  return {.id = std::to_string(number),
          .time = kNow + Seconds{MCPQuitInbox::kKeptForSeconds * ticket},
          .kind = "pid",
          .pid = static_cast<std::int32_t>(number + 2),
          .status = "pending"};
}

/// What writers and those who answer tell each other and the test.
struct Ledger {
  SharedCounters tickets{1};
  SharedCounters gone{1};
  SharedCounters reported{kIdSpace + 1};
  SharedCounters shown{kIdSpace + 1};
  SharedCounters answered{kIdSpace + 1};

  /// Exits with 1 when it is refused, and with 2 when what was filed before is never answered.
  void file(const MCPQuitInbox& inbox, std::size_t number) {
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (tickets[0] >= gone[0] + kWaitingAtMost) {
      if (std::chrono::steady_clock::now() > patience) ::_exit(2);
      pause(std::chrono::microseconds(200));
    }
    const auto filed = inbox.addOnce(request(number, tickets[0]++));
    if (!filed || *filed != std::to_string(number)) ::_exit(1);
    reported[number] = 1;
  }

  /// Answers all that wait. Exits with 1 when one of them is not as it was filed.
  void answer(const MCPQuitInbox& inbox) {
    for (const MCPQuitRequest& found : inbox.pending()) {
      const std::size_t number = numberOf(found.id);
      if (number >= kIdSpace || found.pid != static_cast<std::int32_t>(number + 2)) ::_exit(1);
      shown[number] = 1;
      if (!inbox.setStatus({.id = found.id, .status = "declined"})) ::_exit(1);
      ++answered[number];
      ++gone[0];
    }
  }
};

// Reads the file as it is, without a lock, until it is killed; ends at the first bytes that are no whole list.
pid_t startWatcher(const std::string& file) {
  return startChild([&] {
    while (true) {
      const auto text = readFile(file, MCPQuitInbox::kByteLimit);
      if (!text && text.error().code != ENOENT) ::_exit(1);
      const auto document = text ? parseJson(*text) : std::optional<JsonValue>(JsonArray{});
      if (!document || document->array() == nullptr) ::_exit(2);
      pause(std::chrono::microseconds(500));
    }
  });
}

TEST(MCPQuitInboxStress, SixteenWritersAndAnAnsweringReaderLoseAndDoubleNothing) {
  TemporaryFolder folder(memoryFolder());
  const MCPQuitInbox inbox(folder.path());
  const std::size_t each = stressCount(2000);
  Ledger ledger;
  SharedCounters allFiled(1);
  const pid_t watcher = startWatcher(folder.file("mcp-inbox.json"));
  std::vector<pid_t> writers;
  for (std::size_t writer = 0; writer < kWriters; ++writer) {
    writers.push_back(startChild([&] {
      for (std::size_t i = 0; i < each; ++i) ledger.file(inbox, writer * each + i);
    }));
  }
  const pid_t answerer = startChild([&] {
    while (allFiled[0] == 0) ledger.answer(inbox);
    ledger.answer(inbox);
  });
  for (const pid_t writer : writers) EXPECT_TRUE(endedWell(writer));
  allFiled[0] = 1;
  EXPECT_TRUE(endedWell(answerer));
  EXPECT_TRUE(killAndReap(watcher)) << "a torn list";
  for (std::size_t number = 0; number < kWriters * each; ++number) {
    ASSERT_EQ(ledger.reported[number].load(), 1u) << number;
    ASSERT_EQ(ledger.answered[number].load(), 1u) << number;
  }
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  EXPECT_EQ(modeOf(folder.file("mcp-inbox.json")), 0600);
  EXPECT_EQ(modeOf(folder.file("mcp-inbox.lock")), 0600);
  EXPECT_EQ(folder.entries(), 2u);
}

TEST(MCPQuitInboxStress, KilledWritersAndAnswerersLoseAndDoubleNothing) {
  TemporaryFolder folder(memoryFolder());
  const MCPQuitInbox inbox(folder.path());
  Ledger ledger;
  SharedCounters next(1);
  const auto write = [&] {
    for (std::size_t number = next[0]++; number < kIdSpace; number = next[0]++) ledger.file(inbox, number);
  };
  const auto answer = [&] {
    while (true) ledger.answer(inbox);
  };
  const pid_t watcher = startWatcher(folder.file("mcp-inbox.json"));
  std::vector<pid_t> writers(3);
  for (pid_t& writer : writers) writer = startChild(write);
  pid_t answerer = startChild(answer);
  std::mt19937 random(13);
  std::uint32_t kills = 0;
  const auto end = std::chrono::steady_clock::now() + stressSpan();
  while (std::chrono::steady_clock::now() < end) {
    pause(std::chrono::microseconds(random() % 10'000));
    const std::size_t chosen = random() % (writers.size() + 1);
    pid_t& victim = chosen < writers.size() ? writers[chosen] : answerer;
    ASSERT_TRUE(killAndReap(victim)) << "it had given up";
    victim = chosen < writers.size() ? startChild(write) : startChild(answer);
    // A killed writer's ticket may never become a request, and a killed answer is not counted.
    if (++kills % 16 == 0) ledger.gone[0] = ledger.tickets[0] - static_cast<std::uint32_t>(inbox.pending().size());
  }
  for (const pid_t child : {writers[0], writers[1], writers[2], answerer}) EXPECT_TRUE(killAndReap(child));
  EXPECT_TRUE(killAndReap(watcher)) << "a torn list";
  EXPECT_GT(kills, 20u);
  ledger.answer(inbox);  // the lock is free
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  std::size_t total = 0;
  for (std::size_t number = 0; number < kIdSpace; ++number) {
    ASSERT_LE(ledger.answered[number].load(), 1u) << number;
    ASSERT_GE(ledger.shown[number].load(), ledger.reported[number].load()) << number << " was lost";
    total += ledger.reported[number];
  }
  EXPECT_GT(total, 100u);
}

}  // namespace
}  // namespace brindle
