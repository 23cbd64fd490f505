#include "base/stale_temporary.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>

#include "base/file.h"
#include "base/uuid.h"
#include "tests/base/child_process.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kNow = 1'772'352'000;
constexpr const char* kUuid = "0B7E0C1D-52A4-4E0B-9D5C-6C1B1A2F3E4D";

class StaleTemporary : public testing::Test {
 protected:
  /// A file of the folder that was last changed `age` seconds before kNow.
  std::string leave(const std::string& name, std::time_t age) {
    const std::string path = folder_.file(name);
    writeRaw(path, "left");
    setAge(path, age);
    return path;
  }
  static void setAge(const std::string& path, std::time_t age) {
    const timespec times[2] = {{kNow - age, 0}, {kNow - age, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
  }
  [[nodiscard]] std::size_t temporaries() const {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(folder_.path()))
      count += entry.path().extension() == ".tmp" ? 1 : 0;
    return count;
  }
  [[nodiscard]] std::string temporaryName() const { return std::string("store.json.") + kUuid + ".tmp"; }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("store.json");
};

TEST_F(StaleTemporary, OfAnHourIsRemovedAndAYoungerOneStays) {
  for (const std::time_t age : {kStaleTemporaryAge, kStaleTemporaryAge + 1, 10 * kStaleTemporaryAge}) {
    const std::string old = leave(temporaryName(), age);
    removeStaleTemporaries(path_, kNow);
    EXPECT_FALSE(fs::exists(old)) << age;
  }
  for (const std::time_t age : {kStaleTemporaryAge - 1, std::time_t{0}, -kStaleTemporaryAge}) {
    const std::string young = leave(temporaryName(), age);
    removeStaleTemporaries(path_, kNow);
    EXPECT_TRUE(fs::exists(young)) << age;
  }
}

TEST_F(StaleTemporary, EveryFreshNameIsRecognised) {
  for (int round = 0; round < 20; ++round) {
    const std::string path = temporaryPathFor(path_);
    writeRaw(path, "left");
    setAge(path, kStaleTemporaryAge);
  }
  EXPECT_EQ(folder_.entries(), 20U);
  removeStaleTemporaries(path_, kNow);
  EXPECT_EQ(folder_.entries(), 0U);
}

TEST_F(StaleTemporary, NamesThatAreNearlyThoseOfTheFileStay) {
  const std::string uuid = kUuid;
  std::string lower = uuid;
  lower[0] = '0', lower[1] = 'b';
  std::string wrongDigit = uuid;
  wrongDigit[3] = 'G';
  std::string wrongDash = uuid;
  wrongDash[8] = '0';
  for (const std::string& name : {"store.json." + lower + ".tmp",
                                  "store.json." + wrongDigit + ".tmp",
                                  "store.json." + wrongDash + ".tmp",
                                  "store.json." + uuid.substr(1) + ".tmp",
                                  "store.json." + uuid + "0.tmp",
                                  "store.json." + uuid + ".tm",
                                  "store.json." + uuid + ".tmp~",
                                  "store.json." + uuid,
                                  "store.json" + uuid + ".tmp",
                                  "store.json-" + uuid + ".tmp",
                                  "store.jsonl." + uuid + ".tmp",
                                  "store.json.old." + uuid + ".tmp",
                                  "other.json." + uuid + ".tmp",
                                  "Store.json." + uuid + ".tmp",
                                  ".store.json." + uuid + ".tmp",
                                  std::string("store.json.tmp"),
                                  std::string("store.json..tmp"),
                                  std::string("store.json"),
                                  std::string(".tmp"),
                                  uuid + ".tmp"}) {
    const std::string path = leave(name, 100 * kStaleTemporaryAge);
    removeStaleTemporaries(path_, kNow);
    EXPECT_TRUE(fs::exists(path)) << name;
  }
}

TEST_F(StaleTemporary, WhatIsNoPlainFileOfOneNameStays) {
  const std::string target = leave("target", 100 * kStaleTemporaryAge);
  const std::string name = folder_.file(temporaryName());
  fs::create_symlink(target, name);
  setAge(name, 100 * kStaleTemporaryAge);
  removeStaleTemporaries(path_, kNow);
  EXPECT_TRUE(fs::is_symlink(name));
  EXPECT_EQ(contentOf(target), "left");
  fs::remove(name);

  fs::create_hard_link(target, name);
  removeStaleTemporaries(path_, kNow);
  EXPECT_TRUE(fs::exists(name));
  fs::remove(name);

  fs::create_directory(name);
  setAge(name, 100 * kStaleTemporaryAge);
  removeStaleTemporaries(path_, kNow);
  EXPECT_TRUE(fs::exists(name));
}

TEST_F(StaleTemporary, OfAnotherUserStays) {
  if (::geteuid() != 0) GTEST_SKIP() << "skipped: needs the right to give files away";
  const std::string foreign = leave(temporaryName(), 100 * kStaleTemporaryAge);
  giveToPlainUser(foreign);
  setAge(foreign, 100 * kStaleTemporaryAge);
  removeStaleTemporaries(path_, kNow);
  EXPECT_TRUE(fs::exists(foreign));
}

TEST_F(StaleTemporary, IsFoundBesideABareName) {
  const std::string old = leave(temporaryName(), kStaleTemporaryAge);
  EXPECT_TRUE(ChildProcess([&] {
                return ::chdir(folder_.path().c_str()) == 0 &&
                       (removeStaleTemporaries("store.json", kNow), !fs::exists(old));
              }).succeeded());
}

TEST_F(StaleTemporary, InAFolderThatIsNotThereIsNothing) {
  removeStaleTemporaries(folder_.file("missing/store.json"), kNow);
  EXPECT_EQ(folder_.entries(), 0U);
}

TEST_F(StaleTemporary, GoesWithTheNextReplacementAndNotWithOneThatFails) {
  const std::string old = leave(temporaryName(), 0);
  const std::string young = leave("store.json.11111111-2222-4333-8444-555555555555.tmp", 0);
  const auto today = fs::file_time_type::clock::now();
  fs::last_write_time(old, today - std::chrono::minutes(61));
  fs::last_write_time(young, today - std::chrono::minutes(59));
  const std::string missing = folder_.file("missing/store.json");
  EXPECT_FALSE(replaceFile(missing, "x"));
  EXPECT_TRUE(fs::exists(old));
  ASSERT_TRUE(replaceFile(path_, "new"));
  EXPECT_FALSE(fs::exists(old));
  EXPECT_TRUE(fs::exists(young));
  EXPECT_EQ(contentOf(path_), "new");
}

TEST_F(StaleTemporary, IsWhatKilledReplacementsLeave) {
  const std::string bytes(200'000, 'a');
  for (int round = 0; round < 200 && temporaries() == 0; ++round) {
    ChildProcess writer([&] {
      for (;;) {
        if (!replaceFile(path_, bytes)) return false;
      }
    });
    while (temporaries() == 0 && !writer.ended()) {
    }
    writer.kill();
  }
  ASSERT_GE(temporaries(), 1U) << "no kill left a temporary file";
  for (const auto& entry : fs::directory_iterator(folder_.path())) {
    fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - std::chrono::hours(2));
  }
  ASSERT_TRUE(replaceFile(path_, "new"));
  EXPECT_EQ(folder_.entries(), 1U);
}

}  // namespace
}  // namespace brindle
