#include "logic/events/agent_event_inbox.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);

AgentEvent event(const std::string& id, double age = 0) {
  return {.id = id, .time = kNow - Seconds{age}, .agent = "Claude Code", .kind = AgentEventKind::finished};
}

class AgentEventInboxStore : public ::testing::Test {
 protected:
  [[nodiscard]] std::string eventsFile() const { return folder.file("agent-events.jsonl"); }
  [[nodiscard]] std::string lockFile() const { return folder.file("agent-events.lock"); }

  TemporaryFolder folder;
  AgentEventInbox inbox{folder.path()};
};

TEST_F(AgentEventInboxStore, ThreeAppendsAreDrainedInOrderAndASecondDrainIsEmpty) {
  for (const char* id : {"a", "b", "c"}) ASSERT_TRUE(inbox.append(event(id)));
  EXPECT_TRUE(inbox.hasPending());
  EXPECT_EQ(inbox.drain(kNow), (std::vector{event("a"), event("b"), event("c")}));
  EXPECT_FALSE(inbox.hasPending());
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
  ASSERT_TRUE(std::filesystem::exists(eventsFile()));
  EXPECT_EQ(std::filesystem::file_size(eventsFile()), 0u);
}

TEST_F(AgentEventInboxStore, DrainingAFolderThatDoesNotExistCreatesItAndIsEmpty) {
  const AgentEventInbox deep(folder.file("a/b/c"));
  EXPECT_FALSE(deep.hasPending());
  EXPECT_FALSE(std::filesystem::exists(folder.file("a")));
  EXPECT_EQ(deep.drain(kNow), std::vector<AgentEvent>());
  EXPECT_EQ(modeOf(folder.file("a/b/c")), 0700);
}

TEST_F(AgentEventInboxStore, ConstructingTouchesNothing) {
  const AgentEventInbox other(folder.file("x"));
  EXPECT_EQ(folder.entries(), 0u);
}

TEST_F(AgentEventInboxStore, AppendCreatesTheFolderAndPrivateFiles) {
  const AgentEventInbox deep(folder.file("a/b"));
  ASSERT_TRUE(deep.append(event("a")));
  EXPECT_EQ(modeOf(folder.file("a")), 0700);
  EXPECT_EQ(modeOf(folder.file("a/b")), 0700);
  EXPECT_EQ(modeOf(folder.file("a/b/agent-events.jsonl")), 0600);
  EXPECT_EQ(modeOf(folder.file("a/b/agent-events.lock")), 0600);
  EXPECT_EQ(contentOf(folder.file("a/b/agent-events.lock")), "");
}

TEST_F(AgentEventInboxStore, DrainLeavesAPrivateEventsFile) {
  ASSERT_TRUE(inbox.append(event("a")));
  EXPECT_EQ(inbox.drain(kNow).size(), 1u);
  EXPECT_EQ(modeOf(eventsFile()), 0600);
}

TEST_F(AgentEventInboxStore, ALineIsCompactJsonInFieldOrderWithAnIsoDate) {
  AgentEvent full = event("ID");
  full.kind = AgentEventKind::needsApproval;
  full.message = "Needs /bin/ls";
  full.cwd = "/home/u";
  full.pid = 42;
  full.sessionID = "s";
  ASSERT_TRUE(inbox.append(full));
  EXPECT_EQ(contentOf(eventsFile()),
            "{\"id\":\"ID\",\"time\":\"2026-03-01T08:00:00Z\",\"agent\":\"Claude Code\",\"kind\":\"needsApproval\","
            "\"message\":\"Needs \\/bin\\/ls\",\"cwd\":\"\\/home\\/u\",\"pid\":42,\"sessionID\":\"s\"}\n");
  EXPECT_EQ(inbox.drain(kNow), std::vector{full});
}

TEST_F(AgentEventInboxStore, AnEventOf599SecondsIsReturned) {
  ASSERT_TRUE(inbox.append(event("a", 599)));
  EXPECT_EQ(inbox.drain(kNow), std::vector{event("a", 599)});
}

TEST_F(AgentEventInboxStore, AnEventOfExactly600SecondsIsDroppedAndRemoved) {
  ASSERT_TRUE(inbox.append(event("a", 600)));
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
  EXPECT_FALSE(inbox.hasPending());
}

TEST_F(AgentEventInboxStore, AnEventOf601SecondsIsDropped) {
  ASSERT_TRUE(inbox.append(event("a", 601)));
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
}

TEST_F(AgentEventInboxStore, FreshnessIsStrictToTheFractionOfASecond) {
  ASSERT_TRUE(inbox.append(event("a", 600)));
  EXPECT_EQ(inbox.drain(kNow - Seconds{0.25}), std::vector{event("a", 600)});
}

TEST_F(AgentEventInboxStore, AnEventOfTheFutureStays) {
  ASSERT_TRUE(inbox.append(event("a", -86'400)));
  EXPECT_EQ(inbox.drain(kNow), std::vector{event("a", -86'400)});
}

TEST_F(AgentEventInboxStore, GarbageBetweenTwoEventsIsDropped) {
  ASSERT_TRUE(inbox.append(event("a")));
  writeRaw(eventsFile(),
           contentOf(eventsFile()) + "garbage \xff\n\n[1]\n{\"id\":\"x\"}\n" + agentEventLine(event("b")));
  EXPECT_EQ(inbox.drain(kNow), (std::vector{event("a"), event("b")}));
  EXPECT_FALSE(inbox.hasPending());
}

TEST_F(AgentEventInboxStore, OneByteIsPending) {
  writeRaw(eventsFile(), "\n");
  EXPECT_TRUE(inbox.hasPending());
}

TEST_F(AgentEventInboxStore, ALastLineWithoutLineFeedIsRead) {
  std::string line = agentEventLine(event("a"));
  line.pop_back();
  writeRaw(eventsFile(), line);
  EXPECT_EQ(inbox.drain(kNow), std::vector{event("a")});
}

TEST_F(AgentEventInboxStore, AnEventAfterThePieceOfAKilledWriterIsNotLostWithIt) {
  writeRaw(eventsFile(), agentEventLine(event("a")) + "{\"id\":\"b\",\"ti");
  ASSERT_TRUE(inbox.append(event("c")));
  ASSERT_TRUE(inbox.append(event("d")));
  EXPECT_EQ(inbox.drain(kNow), (std::vector{event("a"), event("c"), event("d")}));
}

TEST_F(AgentEventInboxStore, AWholeLastLineWithoutItsLineFeedStaysAnEvent) {
  std::string line = agentEventLine(event("a"));
  line.pop_back();
  writeRaw(eventsFile(), line);
  ASSERT_TRUE(inbox.append(event("b")));
  EXPECT_EQ(inbox.drain(kNow), (std::vector{event("a"), event("b")}));
}

TEST_F(AgentEventInboxStore, AnEmptySpoolGetsNoEmptyLine) {
  writeRaw(eventsFile(), "");
  ASSERT_TRUE(inbox.append(event("a")));
  EXPECT_EQ(contentOf(eventsFile()), agentEventLine(event("a")));
}

TEST_F(AgentEventInboxStore, AFileAtTheLimitIsAppendedTo) {
  for (const std::size_t size : {262'143u, 262'144u}) {
    writeRaw(eventsFile(), std::string(size - 1, 'x') + "\n");
    ASSERT_TRUE(inbox.append(event("a")));
    EXPECT_EQ(std::filesystem::file_size(eventsFile()), size + agentEventLine(event("a")).size());
    EXPECT_EQ(inbox.drain(kNow), std::vector{event("a")});
  }
}

TEST_F(AgentEventInboxStore, AFileOneByteAboveTheLimitIsStartedAfresh) {
  for (const std::size_t size : {262'145u, 300'000u}) {
    writeRaw(eventsFile(), std::string(size - 1, 'x') + "\n");
    ASSERT_TRUE(inbox.append(event("a")));
    EXPECT_EQ(contentOf(eventsFile()), agentEventLine(event("a")));
  }
}

TEST_F(AgentEventInboxStore, AFileTooLargeToReadIsLeftAndHealsAtTheNextAppend) {
  writeRaw(eventsFile(), "");
  std::filesystem::resize_file(eventsFile(), AgentEventInbox::kReadLimit + 1);
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
  EXPECT_TRUE(inbox.hasPending());
  ASSERT_TRUE(inbox.append(event("a")));
  EXPECT_EQ(inbox.drain(kNow), std::vector{event("a")});
}

TEST_F(AgentEventInboxStore, AnEmptyFileIsNotRewritten) {
  writeRaw(eventsFile(), "");
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(::stat(eventsFile().c_str(), &before), 0);
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
  ASSERT_EQ(::stat(eventsFile().c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(AgentEventInboxStore, AFolderThatIsNotWritableFailsAppendWith513AndDrainsNothing) {
  writeRaw(eventsFile(), agentEventLine(event("a")));
  giveToPlainUser(folder.path());
  giveToPlainUser(eventsFile());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] {
    const Outcome appended = inbox.append(event("b"));
    return !appended && appended.error().code == 513 && inbox.drain(kNow).empty();
  }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
  EXPECT_EQ(contentOf(eventsFile()), agentEventLine(event("a")));
}

TEST_F(AgentEventInboxStore, LinesStayWhenTheEventsFileCannotBeEmptied) {
  writeRaw(eventsFile(), agentEventLine(event("a")));
  writeRaw(lockFile(), "");
  for (const auto& path : {folder.path(), eventsFile(), lockFile()}) giveToPlainUser(path);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);  // the lock can be had, a new file cannot be made
  EXPECT_TRUE(asPlainUser([&] { return inbox.hasPending() && inbox.drain(kNow).empty(); }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
  EXPECT_EQ(contentOf(eventsFile()), agentEventLine(event("a")));
}

TEST_F(AgentEventInboxStore, AFolderThatCannotBeCreatedFailsWithTheSystemsError) {
  writeRaw(folder.file("file"), "");
  const AgentEventInbox below(folder.file("file/inbox"));
  const Outcome appended = below.append(event("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, ENOTDIR);
  EXPECT_EQ(below.drain(kNow), std::vector<AgentEvent>());
  EXPECT_FALSE(below.hasPending());
}

TEST_F(AgentEventInboxStore, AFolderOfAnotherUserIsRefused) {
  const AgentEventInbox foreign(foreignFolder(folder.path()));
  const Outcome appended = foreign.append(event("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, 513);
  EXPECT_EQ(foreign.drain(kNow), std::vector<AgentEvent>());
}

TEST_F(AgentEventInboxStore, ALockFileThatCannotBeOpenedFailsWith513) {
  std::filesystem::create_directory(lockFile());
  const Outcome appended = inbox.append(event("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, 513);
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
  EXPECT_FALSE(std::filesystem::exists(eventsFile()));
}

TEST_F(AgentEventInboxStore, TheLockNeverFollowsASymbolicLink) {
  writeRaw(folder.file("victim"), "kept");
  std::filesystem::create_symlink(folder.file("victim"), lockFile());
  const Outcome appended = inbox.append(event("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, 513);
  EXPECT_EQ(contentOf(folder.file("victim")), "kept");
}

TEST_F(AgentEventInboxStore, AnEventsFileThatCannotBeOpenedFailsWith513AndReleasesTheLock) {
  std::filesystem::create_directory(eventsFile());
  const Outcome appended = inbox.append(event("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, 513);
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
  std::filesystem::remove(eventsFile());
  EXPECT_TRUE(inbox.append(event("a")));
}

TEST_F(AgentEventInboxStore, TheEventsFileIsNeverWrittenThroughASymbolicLink) {
  writeRaw(folder.file("victim"), "kept");
  std::filesystem::create_symlink(folder.file("victim"), eventsFile());
  const Outcome appended = inbox.append(event("a"));
  ASSERT_FALSE(appended);
  EXPECT_EQ(appended.error().code, 513);
  EXPECT_EQ(contentOf(folder.file("victim")), "kept");
  EXPECT_EQ(inbox.drain(kNow), std::vector<AgentEvent>());
}

TEST_F(AgentEventInboxStore, LosesAndDoublesNothingBetweenWritersAndADrainer) {
  constexpr int kWriters = 4;
  constexpr int kEach = 150;
  std::atomic<int> writing = kWriters;
  std::vector<std::thread> writers;
  for (int writer = 0; writer < kWriters; ++writer) {
    writers.emplace_back([&, writer] {
      const AgentEventInbox own(folder.path());
      for (int i = 0; i < kEach; ++i) {
        EXPECT_TRUE(own.append(event(std::to_string(writer) + "-" + std::to_string(i))));
      }
      --writing;
    });
  }
  std::map<std::string, int> times;
  const auto take = [&] {
    for (const AgentEvent& taken : inbox.drain(kNow)) ++times[taken.id];
  };
  while (writing > 0) take();
  for (std::thread& writer : writers) writer.join();
  take();
  EXPECT_EQ(times.size(), std::size_t{kWriters * kEach});
  for (const auto& [id, count] : times) EXPECT_EQ(count, 1) << id;
}

TEST(AgentEventLines, BytesThatAreNoLinesGiveNoEvents) {
  for (const std::string& bytes :
       {std::string(), std::string("\n\n"), std::string("\0\n\xff{\n", 5), std::string("{}")}) {
    EXPECT_EQ(readAgentEventLines(bytes), std::vector<AgentEvent>());
  }
}

}  // namespace
}  // namespace brindle
