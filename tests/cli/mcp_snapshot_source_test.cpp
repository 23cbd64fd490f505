#include "cli/mcp_snapshot_source.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/json_writer.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

class RecordedSnapshotSource : public ::testing::Test {
 protected:
  [[nodiscard]] auto source(const std::string& name) const {
    return snapshotSource({.snapshotFile = folder.file(name), .now = dateFromSeconds(500), .uid = 7, .rules = rules},
                          [](const std::string&) { return std::nullopt; });
  }
  void record(std::vector<TrackedProcess> processes) const {
    writeRaw(folder.file("s.json"), writeJson(JsonValue(encodeSnapshot(processes))));
  }
  static TrackedProcess agent() {
    return {.pid = 40, .uid = 7, .name = "claude", .role = ProcessRole::agent, .agentName = "Claude Code"};
  }

  TemporaryFolder folder;
  std::string rules = "linux";
};

TEST_F(RecordedSnapshotSource, IsOfTheMomentTheUserAndTheRulesThatWereAskedFor) {
  record({agent()});
  const auto made = source("s.json");
  ASSERT_TRUE(made);
  const auto snapshot = (*made)->take({});
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->now, dateFromSeconds(500));
  EXPECT_EQ(snapshot->currentUser, 7u);
  EXPECT_EQ(snapshot->sessions.size(), 1u);
  rules = "macos";
  EXPECT_EQ((*source("s.json"))->take({})->sessions.size(), 0u);
}

TEST_F(RecordedSnapshotSource, FollowsTheUsersRulesOfEachTake) {
  record({{.pid = 40, .uid = 7, .name = "node"}});
  const auto made = source("s.json");
  ASSERT_TRUE(made);
  EXPECT_EQ((*made)->take({})->protections.count(40), 0u);
  EXPECT_EQ((*made)->take({.names = {"node"}})->protections.at(40), "Protected by your rule");
}

TEST_F(RecordedSnapshotSource, IsReadOnceAndThroughALink) {
  record({agent()});
  std::filesystem::create_symlink(folder.file("s.json"), folder.file("link.json"));
  const auto made = source("link.json");
  ASSERT_TRUE(made);
  std::filesystem::remove(folder.file("s.json"));
  EXPECT_EQ((*made)->take({})->sessions.size(), 1u);
}

TEST_F(RecordedSnapshotSource, FailsWhereThereIsNoSnapshot) {
  EXPECT_EQ(source("missing").error(), "read " + folder.file("missing") + ": No such file or directory");
  for (const char* text : {"", "{}", "[1]", R"([{"pid":1}])"}) {
    writeRaw(folder.file("s.json"), text);
    const auto made = source("s.json");
    ASSERT_FALSE(made) << text;
    EXPECT_EQ(made.error(), "read " + folder.file("s.json") + ": not a snapshot of processes") << text;
  }
}

}  // namespace
}  // namespace brindle
