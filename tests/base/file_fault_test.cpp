#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "base/file.h"
#include "base/file_lock.h"
#include "base/line_file.h"
#include "tests/base/child_process.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPlenty = 1 << 20;

/// What the process may write to any file, in bytes; a write beyond it fails as one to a full disk does.
void limitFileSize(std::size_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, bytes};
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

class FileFault : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(replaceFile(path_, "old\n")); }
  void TearDown() override { fs::permissions(folder_.path(), fs::perms::owner_all); }

  /// Shuts the folder to the test itself; "nobody" has no entry to it anyway.
  void shutFolder() { fs::permissions(folder_.path(), fs::perms::owner_read | fs::perms::owner_exec); }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("store.json");
};

bool isRefused(const Outcome& outcome) { return !outcome && outcome.error().code == kFileWriteNoPermission; }

TEST_F(FileFault, ReportsRefusedAccessOfEveryWriterWithOneCode) {
  shutFolder();
  const std::string fresh = folder_.file("fresh");
  EXPECT_TRUE(trueWithoutRights([&] { return isRefused(appendLines(fresh, "x")); }));
  EXPECT_TRUE(trueWithoutRights([&] { return isRefused(replaceFile(path_, "x")); }));
  EXPECT_TRUE(trueWithoutRights([&] { return isRefused(removeFile(path_)); }));
  EXPECT_TRUE(trueWithoutRights([&] { return isRefused(ensureFolder(folder_.file("below"))); }));
  EXPECT_TRUE(trueWithoutRights([&] {
    const auto lock = FileLock::acquire(folder_.file("lock"));
    return !lock && lock.error().code == kFileWriteNoPermission;
  }));
  EXPECT_EQ(readFile(path_, kPlenty), "old\n");
  EXPECT_EQ(folder_.entries(), 1U);
}

TEST_F(FileFault, ReportsAFileThatMayNotBeWritten) {
  fs::permissions(folder_.path(), fs::perms::all);
  fs::permissions(path_, fs::perms::owner_read | fs::perms::others_read);
  EXPECT_TRUE(trueWithoutRights([&] { return isRefused(appendLines(path_, "x")); }));
  EXPECT_EQ(readFile(path_, kPlenty), "old\n");
}

TEST_F(FileFault, ReportsReadingThatIsRefusedAsItIs) {
  fs::permissions(folder_.path(), fs::perms::all);
  fs::permissions(path_, fs::perms::none);
  EXPECT_TRUE(trueWithoutRights([&] {
    const auto bytes = readFile(path_, kPlenty);
    return !bytes && bytes.error().code == EACCES;
  }));
  fs::permissions(path_, fs::perms::owner_all);
}

TEST_F(FileFault, KeepsTheOldFileWhenTheNewOneDoesNotFit) {
  const bool good = ChildProcess([&] {
                      limitFileSize(10);
                      const Outcome outcome = replaceFile(path_, "01234567890");
                      return !outcome && outcome.error().code == EFBIG;
                    }).succeeded();
  EXPECT_TRUE(good);
  EXPECT_EQ(readFile(path_, kPlenty), "old\n");
  EXPECT_EQ(folder_.entries(), 1U);
}

TEST_F(FileFault, KeepsTheFileWholeWhereverAReplacementIsKilled) {
  const std::string first(20000, 'a');
  const std::string second(30000, 'b');
  ASSERT_TRUE(replaceFile(path_, first));
  for (int round = 0; round < 30; ++round) {
    ChildProcess writer([&] {
      for (;;) {
        if (!replaceFile(path_, second) || !replaceFile(path_, first)) return false;
      }
    });
    // The work between the reads is what varies the moment of the kill.
    for (int reads = 0; reads < round * 7; ++reads) ASSERT_TRUE(readFile(path_, kPlenty));
    writer.kill();
    const auto bytes = readFile(path_, kPlenty);
    ASSERT_TRUE(bytes);
    EXPECT_TRUE(*bytes == first || *bytes == second);
  }
}

TEST_F(FileFault, ReportsAPathBelowAFile) {
  const std::string below = path_ + "/below";
  EXPECT_EQ(readFile(below, kPlenty).error().code, ENOTDIR);
  EXPECT_EQ(appendLines(below, "x").error().code, ENOTDIR);
  EXPECT_EQ(replaceFile(below, "x").error().code, ENOTDIR);
  EXPECT_EQ(FileLock::acquire(below).error().code, ENOTDIR);
}

TEST_F(FileFault, RefusesToWriteThroughALink) {
  fs::create_symlink(path_, folder_.file("link"));
  EXPECT_EQ(appendLines(folder_.file("link"), "x").error().code, ELOOP);
  EXPECT_EQ(FileLock::acquire(folder_.file("link")).error().code, ELOOP);
  fs::create_symlink(folder_.file("missing"), folder_.file("dangling"));
  EXPECT_EQ(appendLines(folder_.file("dangling"), "x").error().code, ELOOP);
  EXPECT_FALSE(fs::exists(folder_.file("missing")));
  EXPECT_EQ(readFile(path_, kPlenty), "old\n");
}

TEST_F(FileFault, RefusesAFolderOrPipeInPlaceOfTheFile) {
  const std::string inner = folder_.file("inner");
  ASSERT_TRUE(ensureFolder(inner));
  EXPECT_EQ(appendLines(inner, "x").error().code, EISDIR);
  EXPECT_EQ(replaceFile(inner, "x").error().code, EISDIR);
  EXPECT_EQ(FileLock::acquire(inner).error().code, EISDIR);
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(appendLines(pipe, "x").error().code, EINVAL);  // and does not wait for a reader
  EXPECT_EQ(FileLock::acquire(pipe).error().code, EINVAL);
  EXPECT_EQ(folder_.entries(), 3U);
}

TEST_F(FileFault, ReportsANameThatIsTooLong) {
  EXPECT_EQ(appendLines(folder_.file(std::string(300, 'x')), "x").error().code, ENAMETOOLONG);
  EXPECT_EQ(replaceFile(folder_.file(std::string(300, 'x')), "x").error().code, ENAMETOOLONG);
}

}  // namespace
}  // namespace brindle
