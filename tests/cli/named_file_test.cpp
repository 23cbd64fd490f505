#include "cli/named_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

struct NamedFile : testing::Test {
  [[nodiscard]] std::string file(const std::string& name, const std::string& text) const {
    std::ofstream(folder.file(name), std::ios::binary) << text;
    return folder.file(name);
  }
  TemporaryFolder folder;
};

TEST_F(NamedFile, IsReadWholeAlsoThroughALink) {
  const std::string text(std::size_t{100} << 10, 'x');
  const std::string path = file("a", text);
  std::filesystem::create_symlink(path, folder.file("link"));
  EXPECT_EQ(readNamedFile(path, text.size()), text);
  EXPECT_EQ(readNamedFile(folder.file("link"), text.size()), text);
}

TEST_F(NamedFile, MayBeAPipe) {
  const std::string path = folder.file("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(path, std::ios::binary) << "through the pipe"; });
  const Result<std::string> text = readNamedFile(path, 100);
  writer.join();
  EXPECT_EQ(text, "through the pipe");
}

TEST_F(NamedFile, IsRefusedFromOneByteOverTheLimit) {
  const std::string path = file("a", "12345");
  EXPECT_EQ(readNamedFile(path, 5), "12345");
  EXPECT_EQ(readNamedFile(path, 4).error(), (Failure{EFBIG, "read " + path}));
}

TEST_F(NamedFile, ThatCannotBeReadSaysWhy) {
  EXPECT_EQ(readNamedFile(folder.file("none"), 5).error(), (Failure{ENOENT, "read " + folder.file("none")}));
  EXPECT_EQ(readNamedFile(folder.file(""), 5).error().code, EISDIR);
}

}  // namespace
}  // namespace brindle
