#include "logic/widget/widget_feed.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

WidgetSnapshot snapshot() {
  WidgetSnapshot made;
  made.takenAt = dateFromSeconds(1'772'352'000.123456);
  made.ghosts = 2;
  made.ghostBytes = 18'446'744'073'709'551'615u;
  made.ghostPorts = {3000, 65535};
  made.agents = 1;
  made.agentNames = {"Claude Code"};
  made.working = 1;
  made.memoryUsed = 1;
  made.memoryTotal = 2;
  made.plan =
      WidgetSnapshot::Plan{.account = "a/b", .used = 0.1, .resets = dateFromSeconds(1'772'352'000.7), .onPace = true};
  made.freedThisWeek = 5;
  made.freedProcesses = 6;
  return made;
}

class WidgetFeedFile : public ::testing::Test {
 protected:
  [[nodiscard]] std::string file() const { return folder.file("widget-snapshot.json"); }

  TemporaryFolder folder;
};

TEST_F(WidgetFeedFile, ASnapshotWrittenAndReadBackComparesEqual) {
  ASSERT_TRUE(WidgetFeed::write(folder.path(), snapshot()));
  EXPECT_EQ(WidgetFeed::read(folder.path()), snapshot());
}

TEST_F(WidgetFeedFile, ASnapshotWithoutPlanReadsBackWithoutPlan) {
  WidgetSnapshot bare;
  ASSERT_TRUE(WidgetFeed::write(folder.path(), bare));
  EXPECT_EQ(WidgetFeed::read(folder.path()), bare);
  EXPECT_EQ(contentOf(file()).find("plan"), std::string::npos);
}

TEST_F(WidgetFeedFile, TheFileIsCompactWithSortedKeysAndDatesAsSeconds) {
  ASSERT_TRUE(WidgetFeed::write(folder.path(), snapshot()));
  EXPECT_EQ(contentOf(file()),
            R"({"agentNames":["Claude Code"],"agents":1,"freedProcesses":6,"freedThisWeek":5,)"
            R"("ghostBytes":18446744073709551615,"ghostPorts":[3000,65535],"ghosts":2,"memoryTotal":2,"memoryUsed":1,)"
            R"("plan":{"account":"a\/b","onPace":true,"resets":1772352000.7,"used":0.1},)"
            R"("takenAt":1772352000.123456,"working":1})");
}

TEST_F(WidgetFeedFile, WithoutAContainerNothingIsWrittenOrRead) {
  EXPECT_TRUE(WidgetFeed::write(std::nullopt, snapshot()));
  EXPECT_EQ(WidgetFeed::read(std::nullopt), std::nullopt);
}

TEST_F(WidgetFeedFile, AMissingFileReadsAsNoSnapshot) {
  EXPECT_EQ(WidgetFeed::read(folder.path()), std::nullopt);
  EXPECT_EQ(WidgetFeed::read(folder.file("no/such")), std::nullopt);
}

TEST_F(WidgetFeedFile, AFileThatDoesNotDecodeReadsAsNoSnapshot) {
  for (const std::string bytes : {"", "x", "[]", "{}", "null"}) {
    writeRaw(file(), bytes);
    EXPECT_EQ(WidgetFeed::read(folder.path()), std::nullopt) << bytes;
  }
}

TEST_F(WidgetFeedFile, AFileOfOneMebibyteIsReadAndALongerOneIsNot) {
  std::string text = WidgetFeed::encodeText(snapshot());
  text.resize(std::size_t{1} << 20, ' ');
  writeRaw(file(), text);
  EXPECT_EQ(WidgetFeed::read(folder.path()), snapshot());
  writeRaw(file(), text + " ");
  EXPECT_EQ(WidgetFeed::read(folder.path()), std::nullopt);
}

TEST_F(WidgetFeedFile, EveryPrefixOfTheFileReadsAsNoSnapshot) {
  const std::string whole = WidgetFeed::encodeText(snapshot());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(WidgetFeed::decodeText(whole.substr(0, length)), std::nullopt) << length;
  }
}

TEST_F(WidgetFeedFile, AFailedWriteLeavesThePreviousSnapshotAndNoTemporaryFile) {
  ASSERT_TRUE(WidgetFeed::write(folder.path(), snapshot()));
  giveToPlainUser(folder.path());
  giveToPlainUser(file());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] {
    const Outcome written = WidgetFeed::write(folder.path(), WidgetSnapshot());
    return !written && written.error().code == 513 && WidgetFeed::read(folder.path()) == snapshot();
  }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
  EXPECT_EQ(folder.entries(), 1u);
}

TEST_F(WidgetFeedFile, ASnapshotIsNeitherReadNorWrittenThroughASymbolicLink) {
  ASSERT_TRUE(WidgetFeed::write(folder.path(), snapshot()));
  std::filesystem::rename(file(), folder.file("victim"));
  const std::string kept = contentOf(folder.file("victim"));
  std::filesystem::create_symlink(folder.file("victim"), file());
  EXPECT_EQ(WidgetFeed::read(folder.path()), std::nullopt);
  ASSERT_TRUE(WidgetFeed::write(folder.path(), WidgetSnapshot()));
  EXPECT_EQ(contentOf(folder.file("victim")), kept);
  EXPECT_EQ(WidgetFeed::read(folder.path()), WidgetSnapshot());
}

TEST_F(WidgetFeedFile, AContainerOfAnotherUserIsRefused) {
  const Outcome written = WidgetFeed::write(foreignFolder(folder.path()), snapshot());
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error().code, 513);
}

TEST_F(WidgetFeedFile, FilesArePrivate) {
  ASSERT_TRUE(WidgetFeed::write(folder.file("a"), snapshot()));
  EXPECT_EQ(modeOf(folder.file("a")), 0700);
  EXPECT_EQ(modeOf(folder.file("a/widget-snapshot.json")), 0600);
}

}  // namespace
}  // namespace brindle
