#include "cli/report_options.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/json_writer.h"
#include "tests/platform/temporary_folder.h"

namespace brindle {
namespace {

Arguments given(std::map<std::string, std::string, std::less<>> options) { return {.options = std::move(options)}; }

TEST(ReportOptions, NothingGivenAsksForThisMachineOnce) {
  const ReportUsage usage = reportOptionsOf({});
  EXPECT_EQ(usage.problem, "");
  EXPECT_EQ(usage.options, ReportOptions{});
}

TEST(ReportOptions, TakeEverythingThatARecordedSnapshotNeeds) {
  const ReportUsage usage = reportOptionsOf(given(
      {{"--snapshot", "f.json"}, {"--now", "1500.5"}, {"--uid", "4294967295"}, {"--rules", "macos"}, {"--json", ""}}));
  EXPECT_EQ(usage.problem, "");
  EXPECT_EQ(usage.options, (ReportOptions{.json = true,
                                          .snapshotFile = "f.json",
                                          .now = dateFromSeconds(1500.5),
                                          .uid = 4294967295U,
                                          .rules = "macos"}));
}

TEST(ReportOptions, WatchTakesItsUsualSpanOrOneWithinBounds) {
  const auto watch = [](std::string text) { return reportOptionsOf(given({{"--watch", std::move(text)}})); };
  EXPECT_EQ(watch("").options.watch, kUsualWatch);
  EXPECT_EQ(watch("0.2").options.watch, kShortestWatch);
  EXPECT_EQ(watch("86400").options.watch, kLongestWatch);
  for (const char* text : {"0.19", "86401", "-1", "x", "nan", "1s"}) EXPECT_NE(watch(text).problem, "") << text;
}

TEST(ReportOptions, NumbersThatAreNoneAreRefused) {
  for (const char* text : {"x", "1e16", "-1e16", "nan"}) {
    EXPECT_NE(reportOptionsOf(given({{"--snapshot", "f"}, {"--now", text}})).problem, "") << text;
  }
  for (const char* text : {"-1", "4294967296", "root", "1.5"}) {
    EXPECT_NE(reportOptionsOf(given({{"--snapshot", "f"}, {"--uid", text}})).problem, "") << text;
  }
}

TEST(ReportOptions, WhatBelongsToARecordedSnapshotNeedsOne) {
  EXPECT_EQ(reportOptionsOf(given({{"--now", "1"}})).problem, "--now goes with --snapshot only");
  EXPECT_EQ(reportOptionsOf(given({{"--uid", "1"}})).problem, "--uid goes with --snapshot only");
  EXPECT_EQ(reportOptionsOf(given({{"--rules", "linux"}})).problem, "--rules goes with --snapshot only");
}

TEST(ReportOptions, ARecordedSnapshotIsNeitherWatchedNorSampled) {
  EXPECT_NE(reportOptionsOf(given({{"--snapshot", "f"}, {"--watch", ""}})).problem, "");
  EXPECT_NE(reportOptionsOf(given({{"--snapshot", "f"}, {"--sample", ""}})).problem, "");
}

ReportSnapshotResult read(const std::string& path) {
  const Environment nothing = [](const std::string&) { return std::nullopt; };
  return snapshotFor({.snapshotFile = path, .now = dateFromSeconds(100), .uid = 7, .rules = "linux"},
                     ListingDetail::everything, nothing);
}

TEST(ReportSnapshot, IsReadFromTheFileAlsoThroughALink) {
  const testing::TemporaryFolder folder;
  TrackedProcess process{.pid = 10, .uid = 7, .name = "claude"};
  process.role = ProcessRole::agent;
  process.agentName = "Claude Code";
  folder.write("s.json", writeJson(JsonValue(encodeSnapshot({process}))));
  std::filesystem::create_symlink(folder.path() + "/s.json", folder.path() + "/link.json");
  for (const char* name : {"/s.json", "/link.json"}) {
    const auto snapshot = read(folder.path() + name);
    ASSERT_TRUE(snapshot) << name;
    EXPECT_EQ(snapshot->sessions.size(), 1U);
    EXPECT_EQ(snapshot->currentUser, 7U);
    EXPECT_EQ(snapshot->now, dateFromSeconds(100));
  }
}

TEST(ReportSnapshot, FilesThatAreNoneAreALineOfText) {
  const testing::TemporaryFolder folder;
  folder.write("text", "no json");
  folder.write("object", "{}");
  folder.write("half", R"([{"pid": 1}])");
  for (const char* name : {"/missing", "/text", "/object", "/half"}) {
    const auto snapshot = read(folder.path() + name);
    ASSERT_FALSE(snapshot) << name;
    EXPECT_NE(snapshot.error().find(name), std::string::npos);
  }
}

}  // namespace
}  // namespace brindle
