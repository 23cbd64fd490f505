// The request log under many processes at once, and under SIGKILL at any moment.
#include <gtest/gtest.h>

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

std::size_t numberOf(const std::string& id) {
  const auto number = integerFromText(id);
  return number && *number >= 0 ? static_cast<std::size_t>(*number) : kIdSpace;
}

TEST(MCPRequestLogStress, SixteenWritersAndATrimmerLoseAndTearNothing) {
  TemporaryFolder folder;
  const MCPRequestLog log(folder.path());
  const auto entry = [](std::size_t number) {
    return MCPLogEntry{.time = kNow, .tool = "safety", .summary = std::to_string(number), .result = "ok"};
  };
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

}  // namespace
}  // namespace brindle
