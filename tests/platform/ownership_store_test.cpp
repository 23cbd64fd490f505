#include "platform/ownership_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/platform/temporary_folder.h"

namespace brindle {
namespace {

using testing::TemporaryFolder;
using Records = std::vector<OwnershipRecord>;

OwnershipRecord record(std::int32_t pid, std::string boot = "b") {
  return {std::move(boot), pid, pid * 10, 400, 1, "Codex"};
}

bool everyoneLives(std::int32_t, std::int64_t) { return true; }

TEST(OwnershipStore, GivesBackWhatWasAdded) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path() + "/state");
  ASSERT_TRUE(store.add({record(501), record(502)}));
  EXPECT_EQ(store.records("b"), (Records{record(501), record(502)}));
}

TEST(OwnershipStore, AMissingFileHoldsNothing) {
  const TemporaryFolder folder;
  EXPECT_TRUE(OwnershipStore(folder.path()).records("b").empty());
}

TEST(OwnershipStore, AddsEachRecordOnce) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  ASSERT_TRUE(store.add({record(501), record(501)}));
  ASSERT_TRUE(store.add({record(501), record(502)}));
  EXPECT_EQ(store.records("b").size(), 2U);
}

TEST(OwnershipStore, RecordsOfAnotherBootAreNotGiven) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  ASSERT_TRUE(store.add({record(501, "old"), record(501)}));
  EXPECT_EQ(store.records("b"), Records{record(501)});
}

TEST(OwnershipStore, DamagedLinesArePassedOver) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  folder.write("ownership.jsonl", "garbage\n" + ownershipLine(record(501)) + "{\"boot\":\"b\"");
  EXPECT_EQ(store.records("b"), Records{record(501)});
}

TEST(OwnershipStore, ARecordAfterThePieceOfAKilledWriterIsNotLostWithIt) {
  const std::string piece = ownershipLine(record(502));
  for (std::size_t length = 1; length + 1 < piece.size(); ++length) {
    const TemporaryFolder folder;
    const OwnershipStore store(folder.path());
    folder.write("ownership.jsonl", ownershipLine(record(501)) + piece.substr(0, length));
    ASSERT_TRUE(store.add({record(503)}));
    ASSERT_EQ(store.records("b"), (Records{record(501), record(503)})) << length;
  }
}

TEST(OwnershipStore, AWholeLastLineWithoutItsLineFeedStaysARecord) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  std::string line = ownershipLine(record(501));
  line.pop_back();
  folder.write("ownership.jsonl", line);
  ASSERT_TRUE(store.add({record(502)}));
  EXPECT_EQ(store.records("b"), (Records{record(501), record(502)}));
}

TEST(OwnershipStore, NeitherRecordsNorLockFollowASymbolicLink) {
  for (const std::string name : {"ownership.jsonl", "ownership.lock"}) {
    const TemporaryFolder folder;
    const OwnershipStore store(folder.path());
    folder.write("victim", "kept");
    std::filesystem::create_symlink(folder.path() + "/victim", folder.path() + "/" + name);
    EXPECT_FALSE(store.add({record(501)})) << name;
    std::ifstream victim(folder.path() + "/victim");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(victim), {}), "kept") << name;
  }
}

TEST(OwnershipStore, CleaningKeepsTheLivingOfThisBoot) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  ASSERT_TRUE(store.add({record(501), record(502), record(503, "old")}));
  ASSERT_TRUE(store.clean(
      "b", [](std::int32_t pid, std::int64_t start) { return pid == 502 && start == 5020; }, 0));
  EXPECT_EQ(store.records("b"), Records{record(502)});
  EXPECT_TRUE(store.records("old").empty());
}

TEST(OwnershipStore, ASmallFileIsNotWorthCleaning) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  ASSERT_TRUE(store.add({record(501)}));
  ASSERT_TRUE(store.clean("b", [](std::int32_t, std::int64_t) { return false; }));
  EXPECT_EQ(store.records("b").size(), 1U);
}

TEST(OwnershipStore, GrowsToItsLimitAndNoFurther) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  const std::string line = ownershipLine(record(501));
  std::string filler(kOwnershipFileLimit - line.size(), 'x');
  filler.back() = '\n';
  folder.write("ownership.jsonl", filler);
  ASSERT_TRUE(store.add({record(501)}));
  const auto refused = store.add({record(502)});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().code, EFBIG);
  ASSERT_TRUE(store.clean("b", everyoneLives));
  EXPECT_TRUE(store.add({record(502)}));
  EXPECT_EQ(store.records("b").size(), 2U);
}

TEST(OwnershipStore, OfMoreThanFitsTheFirstAreAdded) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  Records many;
  std::size_t fitting = 0;
  std::size_t size = 0;
  for (std::int32_t pid = 10'000; pid < 20'000; ++pid) {
    many.push_back(record(pid));
    size += ownershipLine(many.back()).size();
    if (size <= kOwnershipFileLimit) ++fitting;
  }
  ASSERT_LT(fitting, many.size());
  EXPECT_EQ(store.add(many).error().code, EFBIG);
  many.resize(fitting);
  EXPECT_EQ(store.records("b"), many);
}

TEST(OwnershipStore, AFileThatIsTooLargeIsReadAsEmptyAndReplaced) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path());
  folder.write("ownership.jsonl", std::string(kOwnershipFileLimit * 2, 'x'));
  EXPECT_TRUE(store.records("b").empty());
  ASSERT_TRUE(store.clean("b", everyoneLives));
  EXPECT_TRUE(store.add({record(501)}));
}

TEST(OwnershipStore, FilesAreForTheUserAlone) {
  const TemporaryFolder folder;
  const OwnershipStore store(folder.path() + "/state");
  ASSERT_TRUE(store.add({record(501)}));
  struct stat about = {};
  ASSERT_EQ(::stat(store.path().c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777U, 0600U);
  ASSERT_EQ(::stat((folder.path() + "/state").c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777U, 0700U);
}

TEST(OwnershipStore, AFolderThatIsAFileIsAFailureAndNoCrash) {
  const TemporaryFolder folder;
  folder.write("state", "x");
  const OwnershipStore store(folder.path() + "/state");
  EXPECT_FALSE(store.add({record(501)}));
  EXPECT_TRUE(store.records("b").empty());
}

}  // namespace
}  // namespace brindle
