#include "logic/mcp/mcp_heartbeat.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);
constexpr Seconds kMaximum{15};

class MCPHeartbeatFile : public ::testing::Test {
 protected:
  [[nodiscard]] std::string file() const { return folder.file("mcp-heartbeat.json"); }
  [[nodiscard]] bool freshAt(double age) const {
    return MCPHeartbeat::isFresh(folder.path(), kNow + Seconds{age}, kMaximum);
  }

  TemporaryFolder folder;
};

TEST_F(MCPHeartbeatFile, AStampIsFreshBelowTheMaximumAgeOnly) {
  ASSERT_TRUE(MCPHeartbeat::write(folder.path(), kNow));
  EXPECT_TRUE(freshAt(0));
  EXPECT_TRUE(freshAt(14));
  EXPECT_TRUE(freshAt(14.999));
  EXPECT_FALSE(freshAt(15));
  EXPECT_FALSE(freshAt(16));
}

TEST_F(MCPHeartbeatFile, AStampOfTheFutureIsFresh) {
  ASSERT_TRUE(MCPHeartbeat::write(folder.path(), kNow));
  EXPECT_TRUE(freshAt(-3600));
}

TEST_F(MCPHeartbeatFile, AMissingStampIsNotFresh) {
  EXPECT_FALSE(freshAt(0));
  EXPECT_FALSE(MCPHeartbeat::isFresh(folder.file("no/such"), kNow, kMaximum));
  EXPECT_EQ(folder.entries(), 0u);
}

TEST_F(MCPHeartbeatFile, AFileThatIsNoStampIsNotFresh) {
  for (const std::string bytes :
       {"", "x", "[]", "{}", "{\"time\":1772352000}", "{\"time\":\"soon\"}", "{\"time\":null}"}) {
    writeRaw(file(), bytes);
    EXPECT_FALSE(freshAt(0)) << bytes;
  }
}

TEST_F(MCPHeartbeatFile, AFileOf4096BytesIsReadAndALongerOneIsNot) {
  std::string text = MCPHeartbeat::encodeStamp({kNow});
  text.resize(4096, ' ');
  writeRaw(file(), text);
  EXPECT_TRUE(freshAt(0));
  writeRaw(file(), text + " ");
  EXPECT_FALSE(freshAt(0));
}

TEST_F(MCPHeartbeatFile, TheFileHoldsOneStamp) {
  ASSERT_TRUE(MCPHeartbeat::write(folder.path(), kNow + Seconds{0.75}));
  EXPECT_EQ(contentOf(file()), "{\"time\":\"2026-03-01T08:00:00Z\"}");
  EXPECT_EQ(MCPHeartbeat::decodeStamp(contentOf(file())), MCPHeartbeat::Stamp{kNow});
}

TEST_F(MCPHeartbeatFile, WritingCreatesThePrivateFolderAndFileAndReplacesTheLast) {
  const std::string deep = folder.file("a/b");
  ASSERT_TRUE(MCPHeartbeat::write(deep, kNow));
  ASSERT_TRUE(MCPHeartbeat::write(deep, kNow + Seconds{5}));
  EXPECT_EQ(modeOf(deep), 0700);
  EXPECT_EQ(modeOf(deep + "/mcp-heartbeat.json"), 0600);
  EXPECT_TRUE(MCPHeartbeat::isFresh(deep, kNow + Seconds{19}, kMaximum));
}

TEST_F(MCPHeartbeatFile, AFolderThatIsNotWritableReportsAndKeepsTheLast) {
  ASSERT_TRUE(MCPHeartbeat::write(folder.path(), kNow));
  giveToPlainUser(folder.path());
  giveToPlainUser(file());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] {
    const Outcome written = MCPHeartbeat::write(folder.path(), kNow + Seconds{5});
    return !written && written.error().code == 513 && MCPHeartbeat::isFresh(folder.path(), kNow, kMaximum);
  }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
  EXPECT_EQ(contentOf(file()), MCPHeartbeat::encodeStamp({kNow}));
}

TEST_F(MCPHeartbeatFile, AStampIsNeitherReadNorWrittenThroughASymbolicLink) {
  writeRaw(folder.file("victim"), MCPHeartbeat::encodeStamp({kNow}));
  std::filesystem::create_symlink(folder.file("victim"), file());
  EXPECT_FALSE(freshAt(0));
  ASSERT_TRUE(MCPHeartbeat::write(folder.path(), kNow + Seconds{5}));
  EXPECT_EQ(contentOf(folder.file("victim")), MCPHeartbeat::encodeStamp({kNow}));
  EXPECT_TRUE(freshAt(0));
}

TEST_F(MCPHeartbeatFile, AFolderOfAnotherUserIsRefused) {
  const Outcome written = MCPHeartbeat::write(foreignFolder(folder.path()), kNow);
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error().code, 513);
}

TEST_F(MCPHeartbeatFile, AStampThatIsAFolderOrBelowAFileCannotBeWritten) {
  std::filesystem::create_directory(file());
  EXPECT_FALSE(MCPHeartbeat::write(folder.path(), kNow));
  EXPECT_EQ(folder.entries(), 1u);
  writeRaw(folder.file("plain"), "");
  EXPECT_FALSE(MCPHeartbeat::write(folder.file("plain/x"), kNow));
}

TEST(MCPHeartbeatTimes, AServerWaitsForThreeMissedWrites) {
  EXPECT_EQ(MCPHeartbeat::kWriteIntervalSeconds, 5);
  EXPECT_EQ(MCPHeartbeat::kMaximumAgeSeconds, 15);
}

}  // namespace
}  // namespace brindle
