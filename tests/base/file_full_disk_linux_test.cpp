#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <cerrno>

#include "base/file.h"
#include "base/line_file.h"
#include "tests/base/child_process.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr std::size_t kPlenty = 1 << 20;

/// Runs `body` where `folder` is a file system of 64 KiB that nobody else sees; none when that is not allowed here.
std::optional<bool> onTinyDisk(const std::string& folder, const std::function<bool()>& body) {
  constexpr int kNotAllowed = 77;
  const pid_t pid = ::fork();
  if (pid == 0) {
    const bool mounted = ::unshare(CLONE_NEWNS) == 0 &&
                         ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                         ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k,mode=0700") == 0;
    ::_exit(!mounted ? kNotAllowed : body() ? 0 : 1);
  }
  int status = -1;
  ::waitpid(pid, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNotAllowed) return std::nullopt;
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(FullDisk, LeavesTheOldFileWholeAndNoTemporaryFile) {
  const TemporaryFolder folder;
  const std::string path = folder.file("store.json");
  const auto good = onTinyDisk(folder.path(), [&] {
    if (!replaceFile(path, "old")) return false;
    const Outcome outcome = replaceFile(path, std::string(100000, 'x'));
    return !outcome && outcome.error().code == ENOSPC && readFile(path, kPlenty) == "old" && folder.entries() == 1;
  });
  if (!good) GTEST_SKIP() << "this needs the right to mount";
  EXPECT_TRUE(*good);
}

TEST(FullDisk, CutsAnAppendBack) {
  const TemporaryFolder folder;
  const std::string path = folder.file("store.jsonl");
  const auto good = onTinyDisk(folder.path(), [&] {
    if (!appendLines(path, "line\n")) return false;
    const Outcome outcome = appendLines(path, std::string(100000, 'x'));
    return !outcome && outcome.error().code == ENOSPC && readFile(path, kPlenty) == "line\n" &&
           bool(appendLines(path, "next\n"));
  });
  if (!good) GTEST_SKIP() << "this needs the right to mount";
  EXPECT_TRUE(*good);
}

TEST(ReadOnlyDisk, RefusesEveryWriterWithTheCodeOfRefusedAccess) {
  const TemporaryFolder folder;
  const std::string path = folder.file("store.json");
  const auto good = onTinyDisk(folder.path(), [&] {
    if (!replaceFile(path, "old")) return false;
    if (::mount("none", folder.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) return false;
    const auto refused = [](const Outcome& outcome) {
      return !outcome && outcome.error().code == kFileWriteNoPermission;
    };
    return refused(appendLines(path, "x")) && refused(replaceFile(path, "x")) && refused(removeFile(path)) &&
           refused(ensureFolder(folder.file("below"))) && readFile(path, kPlenty) == "old";
  });
  if (!good) GTEST_SKIP() << "this needs the right to mount";
  EXPECT_TRUE(*good);
}

}  // namespace
}  // namespace brindle
