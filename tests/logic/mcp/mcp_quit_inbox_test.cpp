#include "logic/mcp/mcp_quit_inbox.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kTime = dateFromSeconds(1'772'352'000);

MCPQuitRequest request(const std::string& id, std::int32_t pid = 42) {
  return {.id = id, .time = kTime, .kind = "pid", .pid = pid, .status = "pending"};
}

class MCPQuitInboxStore : public ::testing::Test {
 protected:
  [[nodiscard]] std::string file() const { return folder.file("mcp-inbox.json"); }
  [[nodiscard]] std::string lockFile() const { return folder.file("mcp-inbox.lock"); }

  TemporaryFolder folder;
  MCPQuitInbox inbox{folder.path()};
};

TEST_F(MCPQuitInboxStore, AddedRequestsArePendingInFileOrder) {
  ASSERT_TRUE(inbox.add(request("b")));
  ASSERT_TRUE(inbox.add(request("a")));
  EXPECT_EQ(inbox.pending(), (std::vector{request("b"), request("a")}));
}

TEST_F(MCPQuitInboxStore, AMissingFileIsAnEmptyListAndReadingCreatesNothing) {
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  EXPECT_EQ(folder.entries(), 0u);
}

TEST_F(MCPQuitInboxStore, TheFileIsAPrettyArrayWithSortedKeys) {
  MCPQuitRequest full = request("ID");
  full.kind = "session";
  full.port = 3000;
  full.sessionPID = 7;
  full.note = "a/b";
  ASSERT_TRUE(inbox.add(full));
  EXPECT_EQ(contentOf(file()), R"([
  {
    "id" : "ID",
    "kind" : "session",
    "note" : "a\/b",
    "pid" : 42,
    "port" : 3000,
    "sessionPID" : 7,
    "status" : "pending",
    "time" : "2026-03-01T08:00:00Z"
  }
])");
  EXPECT_EQ(inbox.pending(), std::vector{full});
}

TEST_F(MCPQuitInboxStore, FilesAreModeSixHundredAndTheFolderSevenHundred) {
  const MCPQuitInbox deep(folder.file("a/b"));
  ASSERT_TRUE(deep.add(request("a")));
  EXPECT_EQ(modeOf(folder.file("a/b")), 0700);
  EXPECT_EQ(modeOf(folder.file("a/b/mcp-inbox.json")), 0600);
  EXPECT_EQ(modeOf(folder.file("a/b/mcp-inbox.lock")), 0600);
}

TEST_F(MCPQuitInboxStore, NoTemporaryFileStaysBehind) {
  ASSERT_TRUE(inbox.add(request("a")));
  ASSERT_TRUE(inbox.add(request("b")));
  EXPECT_EQ(folder.entries(), 2u);
}

TEST_F(MCPQuitInboxStore, OnlyTheFirstOfTwoRequestsWithOneIdChangesItsStatus) {
  ASSERT_TRUE(inbox.add(request("same", 1)));
  ASSERT_TRUE(inbox.add(request("same", 2)));
  ASSERT_TRUE(inbox.setStatus({.id = "same", .status = "declined"}));
  EXPECT_EQ(inbox.pending(), std::vector{request("same", 2)});
}

TEST_F(MCPQuitInboxStore, AnsweredRequestsAreNoLongerPendingButStayInTheFile) {
  ASSERT_TRUE(inbox.add(request("a")));
  ASSERT_TRUE(inbox.setStatus({.id = "a", .status = "confirmed"}));
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  EXPECT_NE(contentOf(file()).find("\"status\" : \"confirmed\""), std::string::npos);
}

TEST_F(MCPQuitInboxStore, PendingMatchesItsTextExactly) {
  for (const char* status : {"Pending", "pending ", ""}) {
    MCPQuitRequest other = request(status);
    other.status = status;
    ASSERT_TRUE(inbox.add(other));
  }
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
}

TEST_F(MCPQuitInboxStore, AnUnknownIdChangesAndWritesNothing) {
  ASSERT_TRUE(inbox.add(request("a")));
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(::stat(file().c_str(), &before), 0);
  ASSERT_TRUE(inbox.setStatus({.id = "b", .status = "confirmed"}));
  ASSERT_EQ(::stat(file().c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(MCPQuitInboxStore, AnUnknownIdWithoutAFileCreatesNoFile) {
  ASSERT_TRUE(inbox.setStatus({.id = "b", .status = "confirmed"}));
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(MCPQuitInboxStore, AnUnreadableFileCountsAsAnEmptyList) {
  for (const std::string bytes : {"", "garbage", "{}", "[1]", "[{\"id\":\"x\"}]", "[\xff]"}) {
    writeRaw(file(), bytes);
    EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>()) << bytes;
    ASSERT_TRUE(inbox.add(request("a"))) << bytes;
    EXPECT_EQ(inbox.pending(), std::vector{request("a")}) << bytes;
  }
}

TEST_F(MCPQuitInboxStore, EveryPrefixOfTheFileIsTheListOrEmpty) {
  ASSERT_TRUE(inbox.add(request("a")));
  const std::string whole = contentOf(file());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    writeRaw(file(), whole.substr(0, length));
    EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>()) << length;
  }
}

TEST_F(MCPQuitInboxStore, AFileAtTheLimitIsReadAndALongerOneCountsAsEmpty) {
  ASSERT_TRUE(inbox.add(request("a")));
  std::string text = contentOf(file());
  text.resize(MCPQuitInbox::kByteLimit, ' ');
  writeRaw(file(), text);
  EXPECT_EQ(inbox.pending(), std::vector{request("a")});
  writeRaw(file(), text + " ");
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
}

TEST_F(MCPQuitInboxStore, AskingAgainForOneTargetAnswersTheRequestThatWaits) {
  EXPECT_EQ(inbox.addOnce(request("first")), "first");
  EXPECT_EQ(inbox.addOnce(request("second")), "first");
  EXPECT_EQ(inbox.pending(), std::vector{request("first")});
  EXPECT_EQ(inbox.addOnce(request("other", 43)), "other");
  ASSERT_TRUE(inbox.setStatus({.id = "first", .status = "declined"}));
  EXPECT_EQ(inbox.addOnce(request("third")), "third");
}

TEST_F(MCPQuitInboxStore, AnotherKindIsAnotherTarget) {
  EXPECT_EQ(inbox.addOnce(request("pid")), "pid");
  MCPQuitRequest session = request("session");
  session.kind = "session";
  session.sessionPID = session.pid;
  EXPECT_EQ(inbox.addOnce(session), "session");
}

TEST_F(MCPQuitInboxStore, AddOnceRefusesOneMoreThanTheLimit) {
  for (std::size_t i = 0; i < MCPQuitInbox::kPendingLimit; ++i) {
    ASSERT_TRUE(inbox.addOnce(request("id" + std::to_string(i), static_cast<std::int32_t>(i)))) << i;
  }
  const auto refused = inbox.addOnce(request("more", 1000));
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().code, EAGAIN);
  EXPECT_TRUE(refused.error().message().starts_with("file a quit request while too many wait for an answer"))
      << refused.error().message();
  EXPECT_EQ(inbox.pending().size(), MCPQuitInbox::kPendingLimit);
  ASSERT_TRUE(inbox.setStatus({.id = "id0", .status = "expired"}));
  EXPECT_TRUE(inbox.addOnce(request("more", 1000)));
}

TEST_F(MCPQuitInboxStore, AddOnceDropsAnsweredRequestsOfThirtyDays) {
  MCPQuitRequest old = request("old", 1);
  old.status = "confirmed";
  MCPQuitRequest waiting = request("waiting", 2);
  ASSERT_TRUE(inbox.add(old));
  ASSERT_TRUE(inbox.add(waiting));
  MCPQuitRequest later = request("later", 3);
  later.time = kTime + Seconds{MCPQuitInbox::kKeptForSeconds - 1};
  ASSERT_TRUE(inbox.addOnce(later));
  EXPECT_NE(contentOf(file()).find("\"old\""), std::string::npos);
  MCPQuitRequest last = request("last", 4);
  last.time = kTime + Seconds{MCPQuitInbox::kKeptForSeconds};
  ASSERT_TRUE(inbox.addOnce(last));
  EXPECT_EQ(contentOf(file()).find("\"old\""), std::string::npos);
  EXPECT_EQ(inbox.pending(), (std::vector{waiting, later, last}));
}

TEST_F(MCPQuitInboxStore, AFolderThatIsNotWritableFailsWith513AndKeepsTheList) {
  ASSERT_TRUE(inbox.add(request("a")));
  for (const auto& path : {folder.path(), file(), lockFile()}) giveToPlainUser(path);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] {
    const Outcome added = inbox.add(request("b"));
    const Outcome changed = inbox.setStatus({.id = "a", .status = "confirmed"});
    return !added && added.error().code == 513 && !changed && changed.error().code == 513;
  }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
  giveToPlainUser(folder.path());
  EXPECT_TRUE(asPlainUser([&] { return inbox.pending() == std::vector{request("a")}; }));
}

TEST_F(MCPQuitInboxStore, ALockThatCannotBeOpenedFailsWith513) {
  std::filesystem::create_directory(lockFile());
  for (const Outcome& outcome : {inbox.add(request("a")), inbox.setStatus({.id = "a", .status = "x"})}) {
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().code, 513);
  }
  const auto once = inbox.addOnce(request("a"));
  ASSERT_FALSE(once);
  EXPECT_EQ(once.error().code, 513);
}

TEST_F(MCPQuitInboxStore, TheLockNeverFollowsASymbolicLink) {
  std::filesystem::create_symlink(folder.file("victim"), lockFile());
  const Outcome added = inbox.add(request("a"));
  ASSERT_FALSE(added);
  EXPECT_EQ(added.error().code, 513);
  EXPECT_FALSE(std::filesystem::exists(folder.file("victim")));
}

TEST_F(MCPQuitInboxStore, TheListIsNeitherReadNorWrittenThroughASymbolicLink) {
  ASSERT_TRUE(inbox.add(request("theirs")));
  std::filesystem::rename(file(), folder.file("victim"));
  const std::string kept = contentOf(folder.file("victim"));
  std::filesystem::create_symlink(folder.file("victim"), file());
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  ASSERT_TRUE(inbox.add(request("ours")));
  EXPECT_FALSE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(inbox.pending(), std::vector{request("ours")});
  EXPECT_EQ(contentOf(folder.file("victim")), kept);
}

TEST_F(MCPQuitInboxStore, AListThatIsAFolderIsEmptyAndFailsToBeWrittenWithTheLockReleased) {
  std::filesystem::create_directory(file());
  EXPECT_EQ(inbox.pending(), std::vector<MCPQuitRequest>());
  const Outcome added = inbox.add(request("a"));
  ASSERT_FALSE(added);
  EXPECT_EQ(added.error().code, EISDIR);
  EXPECT_EQ(folder.entries(), 2u);
  std::filesystem::remove(file());
  EXPECT_TRUE(inbox.add(request("a")));
}

TEST_F(MCPQuitInboxStore, AFolderThatCannotBeCreatedFails) {
  writeRaw(folder.file("file"), "");
  const Outcome added = MCPQuitInbox(folder.file("file/x")).add(request("a"));
  ASSERT_FALSE(added);
  EXPECT_EQ(added.error().code, ENOTDIR);
}

TEST_F(MCPQuitInboxStore, AFolderOfAnotherUserIsRefused) {
  const Outcome added = MCPQuitInbox(foreignFolder(folder.path())).add(request("a"));
  ASSERT_FALSE(added);
  EXPECT_EQ(added.error().code, 513);
}

}  // namespace
}  // namespace brindle
