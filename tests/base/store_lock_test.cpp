#include "base/store_lock.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

std::optional<int> failureOf(const StoreLockPath& path) {
  const Result<FileLock> lock = lockStore(path);
  return lock ? std::nullopt : std::optional(lock.error().code);
}

TEST(StoreLock, CreatesTheFolderAndAPrivateLockFile) {
  const TemporaryFolder folder;
  EXPECT_EQ(failureOf({folder.file("a/b"), "x.lock"}), std::nullopt);
  EXPECT_EQ(modeOf(folder.file("a/b")), 0700);
  EXPECT_EQ(modeOf(folder.file("a/b/x.lock")), 0600);
}

TEST(StoreLock, IsHeldByOneProcessAtATime) {
  const TemporaryFolder folder;
  int told[2];
  ASSERT_EQ(::pipe(told), 0);
  std::optional<Result<FileLock>> ours = lockStore({folder.path(), "x.lock"});
  ASSERT_TRUE(*ours);
  const pid_t other = ::fork();
  if (other == 0) {
    ours.reset();  // the inherited descriptor, or this process would wait for itself
    const Result<FileLock> lock = lockStore({folder.path(), "x.lock"});
    ::_exit(lock && ::write(told[1], "l", 1) == 1 ? 0 : 1);
  }
  // What we write while we hold the lock comes before what the other writes once it has it.
  ASSERT_EQ(::write(told[1], "f", 1), 1);
  ours.reset();
  int status = -1;
  ASSERT_EQ(::waitpid(other, &status, 0), other);
  EXPECT_EQ(status, 0);
  char order[2] = {};
  ASSERT_EQ(::read(told[0], order, 2), 2);
  EXPECT_EQ(std::string(order, 2), "fl");
  ::close(told[0]);
  ::close(told[1]);
}

TEST(StoreLock, AFolderThatCannotBeMadeFailsWithTheSystemsError) {
  const TemporaryFolder folder;
  writeRaw(folder.file("plain"), "");
  EXPECT_EQ(failureOf({folder.file("plain/x"), "x.lock"}), ENOTDIR);
  EXPECT_EQ(failureOf({folder.file("plain"), "x.lock"}), ENOTDIR);
}

TEST(StoreLock, AFolderOfAnotherUserIsRefused) {
  const TemporaryFolder folder;
  const std::string foreign = foreignFolder(folder.path());
  EXPECT_EQ(failureOf({foreign, "x.lock"}), kFileWriteNoPermission);
  EXPECT_FALSE(std::filesystem::exists(foreign + "/x.lock"));
}

TEST(StoreLock, ALockFileThatCannotBeOpenedFailsWithNoPermissionWhateverTheReason) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.file("directory.lock"));
  std::filesystem::create_symlink(folder.file("nowhere"), folder.file("link.lock"));
  ASSERT_EQ(::mkfifo(folder.file("pipe.lock").c_str(), 0600), 0);
  for (const std::string_view name : {"directory.lock", "link.lock", "pipe.lock"}) {
    EXPECT_EQ(failureOf({folder.path(), name}), kFileWriteNoPermission) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(folder.file("nowhere")));
}

TEST(StoreLock, AFolderThatIsNotWritableFailsWithNoPermission) {
  const TemporaryFolder folder;
  giveToPlainUser(folder.path());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] { return failureOf({folder.path(), "x.lock"}) == kFileWriteNoPermission; }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
}

TEST(AsNoPermission, KeepsTheReasonInTheText) {
  EXPECT_EQ(asNoPermission({EISDIR, "lock /x"}), (Failure{513, "lock /x (Is a directory)"}));
  EXPECT_EQ(asNoPermission({513, "lock /x"}), (Failure{513, "lock /x"}));
}

}  // namespace
}  // namespace brindle
