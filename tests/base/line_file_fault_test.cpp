#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "base/line_file.h"
#include "base/lines.h"
#include "tests/base/child_process.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// Runs `body` where no file may grow beyond `bytes`; a write beyond it fails as one to a full disk does.
bool withinBytes(std::size_t bytes, const std::function<bool()>& body) {
  return ChildProcess([&] {
           std::signal(SIGXFSZ, SIG_IGN);
           const rlimit limit{bytes, bytes};
           return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 && body();
         })
      .succeeded();
}

bool isTooLarge(const Outcome& outcome) { return !outcome && outcome.error().code == EFBIG; }

class LineFileFault : public testing::Test {
 protected:
  void SetUp() override { writeRaw(path_, "old\n"); }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("store.jsonl");
};

TEST_F(LineFileFault, CutsLinesBackThatDoNotFit) {
  EXPECT_TRUE(withinBytes(10, [&] { return isTooLarge(appendLines(path_, "0123456789\n")); }));
  EXPECT_EQ(contentOf(path_), "old\n");
}

TEST_F(LineFileFault, AppendsExactlyUpToTheLimitOfTheDisk) {
  EXPECT_TRUE(withinBytes(10, [&] { return bool(appendLines(path_, "56789\n")); }));
  EXPECT_EQ(contentOf(path_), "old\n56789\n");
}

TEST_F(LineFileFault, TakesTheLineFeedAfterAPieceBackWithTheLine) {
  writeRaw(path_, "old\npie");
  EXPECT_TRUE(withinBytes(12, [&] { return isTooLarge(appendLines(path_, "89012\n")); }));
  EXPECT_EQ(contentOf(path_), "old\npie");
  EXPECT_TRUE(withinBytes(12, [&] { return bool(appendLines(path_, "901\n")); }));
  EXPECT_EQ(contentOf(path_), "old\npie\n901\n");
}

TEST_F(LineFileFault, LosesTheOldLinesButLeavesNoPieceWhenItStartsAfreshOnAFullDisk) {
  EXPECT_TRUE(withinBytes(4, [&] {
    auto file = LineFile::open(path_, LineFile::Start::afresh);
    return file && isTooLarge(file->append("01234\n"));
  }));
  EXPECT_EQ(contentOf(path_), "");
}

// Long lines, because the kernel may leave a write between two pages when a kill comes.
TEST_F(LineFileFault, LosesOnlyTheLineOfAWriterThatIsKilled) {
  const std::string line = std::string(100'000, 'k') + "\n";
  for (int round = 0; round < 20; ++round) {
    writeRaw(path_, "old\n");
    ChildProcess writer([&] {
      for (int i = 0; i < 20; ++i) {
        if (!appendLines(path_, line)) return false;
      }
      return true;
    });
    struct stat status {};
    for (int looks = 0; looks < round * 50; ++looks) ASSERT_EQ(::stat(path_.c_str(), &status), 0);
    writer.kill();
    ASSERT_TRUE(appendLines(path_, "mark\n"));
    const std::string bytes = contentOf(path_);
    ASSERT_TRUE(bytes.starts_with("old\n"));
    ASSERT_TRUE(bytes.ends_with("\nmark\n"));
    ASSERT_LE(nonEmptyLines(bytes).size(), 22U);
  }
}

TEST_F(LineFileFault, NeverFollowsASymbolicLink) {
  fs::create_symlink(path_, folder_.file("link"));
  fs::create_symlink(folder_.file("missing"), folder_.file("dangling"));
  for (const auto start : {LineFile::Start::atEnd, LineFile::Start::afresh}) {
    const auto link = LineFile::open(folder_.file("link"), start);
    ASSERT_FALSE(link);
    EXPECT_EQ(link.error(), (Failure{ELOOP, "append to " + folder_.file("link")}));
    const auto dangling = LineFile::open(folder_.file("dangling"), start);
    ASSERT_FALSE(dangling);
    EXPECT_EQ(dangling.error().code, ELOOP);
  }
  EXPECT_FALSE(fs::exists(folder_.file("missing")));
  EXPECT_EQ(contentOf(path_), "old\n");
}

TEST_F(LineFileFault, RefusesAFolderAPipeAndADevice) {
  fs::create_directory(folder_.file("inner"));
  EXPECT_EQ(appendLines(folder_.file("inner"), "x\n").error().code, EISDIR);
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(appendLines(pipe, "x\n").error().code, EINVAL);
  EXPECT_EQ(appendLines("/dev/null", "x\n").error().code, EINVAL);
}

TEST_F(LineFileFault, ReportsRefusedAccessWithTheOneCode) {
  giveToPlainUser(path_);
  giveToPlainUser(folder_.path());
  fs::permissions(path_, fs::perms::owner_read);
  EXPECT_TRUE(asPlainUser([&] { return appendLines(path_, "x\n").error().code == kFileWriteNoPermission; }));
  EXPECT_EQ(contentOf(path_), "old\n");
}

}  // namespace
}  // namespace brindle
