#include "base/line_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "base/file.h"
#include "base/lines.h"
#include "tests/base/child_process.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

class LineFileTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  std::string path_ = folder_.file("store.jsonl");
};

TEST_F(LineFileTest, AddsLinesAtTheEnd) {
  ASSERT_TRUE(appendLines(path_, "one\n"));
  ASSERT_TRUE(appendLines(path_, "two\nthree\n"));
  EXPECT_EQ(contentOf(path_), "one\ntwo\nthree\n");
}

TEST_F(LineFileTest, CreatesTheFileForItsOwnerAlone) {
  const mode_t before = ::umask(0);
  ASSERT_TRUE(appendLines(path_, "one\n"));
  ::umask(before);
  EXPECT_EQ(modeOf(path_), 0600);
}

TEST_F(LineFileTest, LeavesTheModeOfAnOlderFile) {
  writeRaw(path_, "one\n");
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
  ASSERT_TRUE(appendLines(path_, "two\n"));
  EXPECT_EQ(modeOf(path_), 0700);
}

TEST_F(LineFileTest, AddsNoEmptyLineToAnEmptyFile) {
  writeRaw(path_, "");
  ASSERT_TRUE(appendLines(path_, "one\n"));
  EXPECT_EQ(contentOf(path_), "one\n");
}

TEST_F(LineFileTest, BeginsANewLineAfterAPieceOfEveryLength) {
  const std::string piece = "{\"id\":1}";
  for (std::size_t length = 1; length <= piece.size(); ++length) {
    for (const std::string before : {"", "zero\n"}) {
      const std::string torn = before + piece.substr(0, length);
      writeRaw(path_, torn);
      ASSERT_TRUE(appendLines(path_, "one\n"));
      ASSERT_TRUE(appendLines(path_, "two\n"));
      EXPECT_EQ(contentOf(path_), torn + "\none\ntwo\n");
    }
  }
}

TEST_F(LineFileTest, BeginsANewLineAlsoBetweenTheAppendsOfOneObject) {
  auto file = LineFile::open(path_);
  ASSERT_TRUE(file);
  ASSERT_TRUE(file->append("one\n"));
  ASSERT_TRUE(appendLines(path_, "piece"));
  ASSERT_TRUE(file->append("two\n"));
  EXPECT_EQ(contentOf(path_), "one\npiece\ntwo\n");
}

TEST_F(LineFileTest, AddsNothingForNoLines) {
  writeRaw(path_, "one\n");
  ASSERT_TRUE(appendLines(path_, ""));
  EXPECT_EQ(contentOf(path_), "one\n");
}

TEST_F(LineFileTest, StartsAfreshAlsoInsideALine) {
  writeRaw(path_, "one\ntw");
  auto file = LineFile::open(path_, LineFile::Start::afresh);
  ASSERT_TRUE(file);
  EXPECT_EQ(contentOf(path_), "");
  ASSERT_TRUE(file->append("three\n"));
  EXPECT_EQ(contentOf(path_), "three\n");
}

TEST_F(LineFileTest, AddsToAFileThatMayOnlyBeWritten) {
  writeRaw(path_, "one\n");
  giveToPlainUser(path_);
  std::filesystem::permissions(folder_.path(), std::filesystem::perms::all);
  std::filesystem::permissions(path_, std::filesystem::perms::owner_write);
  EXPECT_TRUE(asPlainUser([&] { return bool(appendLines(path_, "two\n")); }));
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
  EXPECT_EQ(contentOf(path_), "one\ntwo\n");
}

// The lock is not theirs here: the end of the file may look like a piece while another one writes, which costs an
// empty line and never a record.
TEST_F(LineFileTest, KeepsLinesWholeOfWritersWithoutALock) {
  constexpr int kWriters = 4;
  constexpr int kLines = 200;
  {
    std::vector<std::unique_ptr<ChildProcess>> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
      writers.push_back(std::make_unique<ChildProcess>([&, writer] {
        const std::string line = std::string(300, static_cast<char>('a' + writer)) + "\n";
        for (int round = 0; round < kLines; ++round) {
          if (!appendLines(path_, line)) return false;
        }
        return true;
      }));
    }
    for (const auto& writer : writers) EXPECT_TRUE(writer->succeeded());
  }
  const std::string bytes = contentOf(path_);
  const auto lines = nonEmptyLines(bytes);
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kWriters * kLines));
  for (const std::string_view line : lines) ASSERT_EQ(line, std::string(300, line[0]));
}

}  // namespace
}  // namespace brindle
