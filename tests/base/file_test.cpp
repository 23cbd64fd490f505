#include "base/file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "tests/base/child_process.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPlenty = 1 << 20;

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

class FileTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  std::string path_ = folder_.file("store.json");
};

using ReadFile = FileTest;
using ReplaceFile = FileTest;
using EnsureFolder = FileTest;
using RemoveFile = FileTest;
using FileSize = FileTest;

TEST_F(ReadFile, AnswersTheWholeFile) {
  const std::string bytes("a\0b\n", 4);
  ASSERT_TRUE(replaceFile(path_, bytes));
  EXPECT_EQ(readFile(path_, kPlenty), bytes);
}

TEST_F(ReadFile, ReadsExactlyToItsLimit) {
  ASSERT_TRUE(replaceFile(path_, "12345"));
  EXPECT_EQ(readFile(path_, 6), "12345");
  EXPECT_EQ(readFile(path_, 5), "12345");
  const auto tooLarge = readFile(path_, 4);
  ASSERT_FALSE(tooLarge);
  EXPECT_EQ(tooLarge.error(), (Failure{EFBIG, "read " + path_}));
}

TEST_F(ReadFile, ReadsAnEmptyFile) {
  ASSERT_TRUE(replaceFile(path_, ""));
  EXPECT_EQ(readFile(path_, 0), "");
}

TEST_F(ReadFile, SaysThatThereIsNone) {
  const auto missing = readFile(path_, kPlenty);
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().code, ENOENT);
  EXPECT_EQ(missing.error().message(), "read " + path_ + ": No such file or directory");
}

TEST_F(ReadFile, RefusesALinkADirectoryAndAPipe) {
  ASSERT_TRUE(replaceFile(folder_.file("target"), "x"));
  fs::create_symlink(folder_.file("target"), path_);
  EXPECT_EQ(readFile(path_, kPlenty).error().code, ELOOP);
  EXPECT_EQ(readFile(folder_.path(), kPlenty).error().code, EISDIR);
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(readFile(pipe, kPlenty).error().code, EINVAL);  // and does not wait for a writer
}

TEST_F(ReplaceFile, CreatesTheFileForItsOwnerAlone) {
  ASSERT_TRUE(replaceFile(path_, "new"));
  EXPECT_EQ(readFile(path_, kPlenty), "new");
  EXPECT_EQ(modeOf(path_), 0600U);
}

TEST_F(ReplaceFile, LeavesNothingButTheFile) {
  ASSERT_TRUE(replaceFile(path_, "old and long"));
  ASSERT_TRUE(replaceFile(path_, "new"));
  EXPECT_EQ(readFile(path_, kPlenty), "new");
  EXPECT_EQ(folder_.entries(), 1U);
}

TEST_F(ReplaceFile, ReplacesALinkAndLeavesItsTarget) {
  ASSERT_TRUE(replaceFile(folder_.file("target"), "x"));
  fs::create_symlink(folder_.file("target"), path_);
  ASSERT_TRUE(replaceFile(path_, "new"));
  EXPECT_FALSE(fs::is_symlink(path_));
  EXPECT_EQ(readFile(folder_.file("target"), kPlenty), "x");
}

TEST_F(ReplaceFile, ShowsReadersTheOldBytesOrTheNew) {
  const std::string first(5000, 'a');
  const std::string second(9000, 'b');
  ASSERT_TRUE(replaceFile(path_, first));
  ChildProcess writer([&] {
    for (int round = 0; round < 40; ++round) {
      if (!replaceFile(path_, round % 2 == 0 ? second : first)) return false;
    }
    return true;
  });
  std::size_t reads = 0;
  do {
    const auto bytes = readFile(path_, kPlenty);
    ASSERT_TRUE(bytes);
    ASSERT_TRUE(*bytes == first || *bytes == second);
    ++reads;
  } while (!writer.ended());
  EXPECT_GT(reads, 0U);
  EXPECT_EQ(readFile(path_, kPlenty), first);
}

TEST_F(EnsureFolder, CreatesMissingParentsForTheirOwnerAlone) {
  const std::string deep = folder_.file("a/b/c");
  ASSERT_TRUE(ensureFolder(deep));
  EXPECT_EQ(modeOf(folder_.file("a")), 0700U);
  EXPECT_EQ(modeOf(deep), 0700U);
  EXPECT_TRUE(ensureFolder(deep));
  EXPECT_TRUE(ensureFolder(deep + "/"));
}

TEST_F(EnsureFolder, AcceptsALinkToAFolder) {
  ASSERT_TRUE(ensureFolder(folder_.file("real")));
  fs::create_directory_symlink(folder_.file("real"), folder_.file("link"));
  EXPECT_TRUE(ensureFolder(folder_.file("link")));
  EXPECT_TRUE(ensureFolder(folder_.file("link/below")));
}

TEST_F(EnsureFolder, RefusesAFileInItsPlaceOrAbove) {
  ASSERT_TRUE(replaceFile(path_, "x"));
  EXPECT_EQ(ensureFolder(path_).error().code, ENOTDIR);
  EXPECT_EQ(ensureFolder(path_ + "/below").error().code, ENOTDIR);
}

TEST_F(EnsureFolder, RefusesAFolderOfAnotherUser) {
  // The root folder is root's, whoever runs this; "nobody" owns nothing.
  EXPECT_TRUE(trueWithoutRights([] {
    const Outcome outcome = ensureFolder("/usr");
    return !outcome && outcome.error().code == kFileWriteNoPermission;
  }));
}

TEST_F(RemoveFile, SucceedsAlsoWhenThereIsNone) {
  ASSERT_TRUE(replaceFile(path_, "x"));
  EXPECT_TRUE(removeFile(path_));
  EXPECT_FALSE(fs::exists(path_));
  EXPECT_TRUE(removeFile(path_));
}

TEST_F(RemoveFile, FailsForAFolder) { EXPECT_FALSE(removeFile(folder_.path())); }

TEST_F(FileSize, IsThatOfARegularFileOnly) {
  EXPECT_EQ(fileSize(path_), std::nullopt);
  ASSERT_TRUE(replaceFile(path_, "12345"));
  EXPECT_EQ(fileSize(path_), 5U);
  EXPECT_EQ(fileSize(folder_.path()), std::nullopt);
  fs::create_symlink(path_, folder_.file("link"));
  EXPECT_EQ(fileSize(folder_.file("link")), std::nullopt);
}

}  // namespace
}  // namespace brindle
