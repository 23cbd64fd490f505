#include "logic/mcp/mcp_request_log.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);
constexpr double kThirtyDays = 30.0 * 24 * 3600;

MCPLogEntry entry(const std::string& summary, double age = 0) {
  return {.time = kNow - Seconds{age}, .tool = "safety", .summary = summary, .result = "ok"};
}

class MCPRequestLogStore : public ::testing::Test {
 protected:
  [[nodiscard]] std::string file() const { return folder.file("mcp-log.jsonl"); }
  [[nodiscard]] std::string lockFile() const { return folder.file("mcp-log.lock"); }

  TemporaryFolder folder;
  MCPRequestLog log{folder.path()};
};

TEST_F(MCPRequestLogStore, AppendedEntriesAreRecentInOrder) {
  ASSERT_TRUE(log.append(entry("a")));
  ASSERT_TRUE(log.append(entry("b")));
  EXPECT_EQ(log.recent(kNow), (std::vector{entry("a"), entry("b")}));
}

TEST_F(MCPRequestLogStore, ALineIsOneObjectInFieldOrderAndALineFeed) {
  ASSERT_TRUE(log.append(entry("pid 42")));
  EXPECT_EQ(contentOf(file()),
            "{\"time\":\"2026-03-01T08:00:00Z\",\"tool\":\"safety\",\"summary\":\"pid 42\",\"result\":\"ok\"}\n");
}

TEST_F(MCPRequestLogStore, AMissingFileIsEmptyAndReadingCreatesNothing) {
  EXPECT_EQ(log.recent(kNow), std::vector<MCPLogEntry>());
  EXPECT_EQ(folder.entries(), 0u);
}

TEST_F(MCPRequestLogStore, FilesAreModeSixHundredAlsoAfterATrim) {
  const MCPRequestLog deep(folder.file("a/b"));
  ASSERT_TRUE(deep.append(entry("a")));
  EXPECT_EQ(modeOf(folder.file("a/b")), 0700);
  EXPECT_EQ(modeOf(folder.file("a/b/mcp-log.jsonl")), 0600);
  EXPECT_EQ(modeOf(folder.file("a/b/mcp-log.lock")), 0600);
  ASSERT_TRUE(deep.trim(kNow));
  EXPECT_EQ(modeOf(folder.file("a/b/mcp-log.jsonl")), 0600);
}

TEST_F(MCPRequestLogStore, GarbageBetweenTwoGoodLinesIsLeftOut) {
  writeRaw(file(), mcpLogLine(entry("a")) + "garbage \xff\n\n[]\n{\"time\":1}\n" + mcpLogLine(entry("b")));
  EXPECT_EQ(log.recent(kNow), (std::vector{entry("a"), entry("b")}));
}

TEST_F(MCPRequestLogStore, AFileAtTheLimitIsReadAndALongerOneCountsAsEmpty) {
  std::string text = mcpLogLine(entry("a"));
  text.resize(MCPRequestLog::kByteLimit, '\n');
  writeRaw(file(), text);
  EXPECT_EQ(log.recent(kNow), std::vector{entry("a")});
  writeRaw(file(), text + "\n");
  EXPECT_EQ(log.recent(kNow), std::vector<MCPLogEntry>());
}

TEST_F(MCPRequestLogStore, ATornLastLineIsLeftOut) {
  const std::string whole = mcpLogLine(entry("a")) + mcpLogLine(entry("b"));
  const std::size_t first = mcpLogLine(entry("a")).size();
  for (std::size_t length = first; length + 1 < whole.size(); ++length) {
    writeRaw(file(), whole.substr(0, length));
    EXPECT_EQ(log.recent(kNow), std::vector{entry("a")}) << length;
  }
}

TEST_F(MCPRequestLogStore, AnEntryAfterThePieceOfAKilledWriterIsNotLostWithIt) {
  const std::string piece = mcpLogLine(entry("b"));
  for (std::size_t length = 1; length + 1 < piece.size(); ++length) {
    writeRaw(file(), mcpLogLine(entry("a")) + piece.substr(0, length));
    ASSERT_TRUE(log.append(entry("c")));
    ASSERT_EQ(log.recent(kNow), (std::vector{entry("a"), entry("c")})) << length;
  }
}

TEST_F(MCPRequestLogStore, AWholeLastLineWithoutItsLineFeedStaysAnEntry) {
  std::string line = mcpLogLine(entry("a"));
  line.pop_back();
  writeRaw(file(), line);
  ASSERT_TRUE(log.append(entry("b")));
  EXPECT_EQ(log.recent(kNow), (std::vector{entry("a"), entry("b")}));
}

TEST_F(MCPRequestLogStore, AnEmptyLogGetsNoEmptyLine) {
  writeRaw(file(), "");
  ASSERT_TRUE(log.append(entry("a")));
  EXPECT_EQ(contentOf(file()), mcpLogLine(entry("a")));
}

TEST_F(MCPRequestLogStore, AnEntryOneSecondYoungerThanThirtyDaysIsKept) {
  ASSERT_TRUE(log.append(entry("a", kThirtyDays - 1)));
  ASSERT_TRUE(log.trim(kNow));
  EXPECT_EQ(log.recent(kNow).size(), 1u);
}

TEST_F(MCPRequestLogStore, AnEntryOfExactlyThirtyDaysIsDropped) {
  ASSERT_TRUE(log.append(entry("a", kThirtyDays)));
  EXPECT_EQ(log.recent(kNow), std::vector<MCPLogEntry>());
  ASSERT_TRUE(log.trim(kNow));
  EXPECT_EQ(contentOf(file()), "");
}

TEST_F(MCPRequestLogStore, AnEntryOfThirtyDaysAndOneSecondIsDroppedByTrim) {
  ASSERT_TRUE(log.append(entry("old", kThirtyDays + 1)));
  ASSERT_TRUE(log.append(entry("new")));
  ASSERT_TRUE(log.trim(kNow));
  EXPECT_EQ(contentOf(file()), mcpLogLine(entry("new")));
}

TEST_F(MCPRequestLogStore, AnEntryOfTheFutureIsKept) {
  ASSERT_TRUE(log.append(entry("a", -kThirtyDays)));
  ASSERT_TRUE(log.trim(kNow));
  EXPECT_EQ(log.recent(kNow), std::vector{entry("a", -kThirtyDays)});
}

TEST_F(MCPRequestLogStore, TrimDropsGarbageAndLeavesNoTemporaryFile) {
  writeRaw(file(), "garbage\n" + mcpLogLine(entry("a")));
  ASSERT_TRUE(log.trim(kNow));
  EXPECT_EQ(contentOf(file()), mcpLogLine(entry("a")));
  EXPECT_EQ(folder.entries(), 2u);
}

TEST_F(MCPRequestLogStore, TextsWithLineFeedsStayOneLine) {
  ASSERT_TRUE(log.append(entry("a\nb\r\n")));
  EXPECT_EQ(log.recent(kNow), std::vector{entry("a\nb\r\n")});
}

TEST_F(MCPRequestLogStore, ALockThatCannotBeOpenedFailsAppendAndTrimWith513) {
  writeRaw(file(), mcpLogLine(entry("old", kThirtyDays + 1)));
  std::filesystem::create_directory(lockFile());
  for (const Outcome& outcome : {log.append(entry("a")), log.trim(kNow)}) {
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().code, 513);
  }
  EXPECT_EQ(contentOf(file()), mcpLogLine(entry("old", kThirtyDays + 1)));
}

TEST_F(MCPRequestLogStore, AFolderThatIsNotWritableFailsWith513) {
  giveToPlainUser(folder.path());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] {
    const Outcome appended = log.append(entry("a"));
    return !appended && appended.error().code == 513;
  }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
}

TEST_F(MCPRequestLogStore, NeitherLockNorLogFollowsASymbolicLink) {
  writeRaw(folder.file("victim"), "kept");
  std::filesystem::create_symlink(folder.file("victim"), file());
  EXPECT_FALSE(log.append(entry("a")));
  EXPECT_EQ(log.recent(kNow), std::vector<MCPLogEntry>());
  std::filesystem::remove(lockFile());
  std::filesystem::create_symlink(folder.file("victim"), lockFile());
  EXPECT_FALSE(log.append(entry("a")));
  EXPECT_EQ(contentOf(folder.file("victim")), "kept");
}

TEST_F(MCPRequestLogStore, AFolderOfAnotherUserIsRefused) {
  const Outcome appended = MCPRequestLog(foreignFolder(folder.path())).append(entry("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, 513);
}

TEST_F(MCPRequestLogStore, AFolderThatCannotBeCreatedFails) {
  writeRaw(folder.file("file"), "");
  const Outcome appended = MCPRequestLog(folder.file("file/x")).append(entry("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, ENOTDIR);
}

}  // namespace
}  // namespace brindle
