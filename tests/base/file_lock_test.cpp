#include "base/file_lock.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "base/file.h"
#include "base/line_file.h"
#include "tests/base/child_process.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

/// A pipe by which a child says how far it is.
class Signal {
 public:
  Signal() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    read_ = Descriptor(ends[0]);
    write_ = Descriptor(ends[1]);
  }
  void send() const { EXPECT_EQ(::write(write_.get(), "x", 1), 1); }
  void await() const {
    char byte = 0;
    EXPECT_EQ(::read(read_.get(), &byte, 1), 1);
  }
  [[nodiscard]] bool arrivesWithin(int milliseconds) const {
    pollfd waiting{read_.get(), POLLIN, 0};
    return ::poll(&waiting, 1, milliseconds) == 1;
  }

 private:
  Descriptor read_;
  Descriptor write_;
};

class FileLockTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  std::string path_ = folder_.file("store.lock");
};

TEST_F(FileLockTest, CreatesAnEmptyFileForItsOwnerAloneAndKeepsIt) {
  { ASSERT_TRUE(FileLock::acquire(path_)); }
  struct stat status {};
  ASSERT_EQ(::lstat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  EXPECT_EQ(status.st_size, 0);
}

TEST_F(FileLockTest, IsReleasedWhenTheValueGoes) {
  { ASSERT_TRUE(FileLock::acquire(path_)); }
  EXPECT_TRUE(FileLock::acquire(path_));  // would wait for ever
}

TEST_F(FileLockTest, MovesWithItsValue) {
  auto lock = FileLock::acquire(path_);
  ASSERT_TRUE(lock);
  auto moved = std::make_unique<FileLock>(std::move(*lock));
  const Signal begun;
  const Signal held;
  ChildProcess other([&] {
    moved.reset();  // the copy that forking made, which would keep the lock held
    begun.send();
    const auto second = FileLock::acquire(path_);
    held.send();
    return second.has_value();
  });
  begun.await();
  EXPECT_FALSE(held.arrivesWithin(30));
  moved.reset();
  EXPECT_TRUE(other.succeeded());
  EXPECT_TRUE(held.arrivesWithin(0));
}

TEST_F(FileLockTest, LetsOneProcessInAtATime) {
  constexpr int kProcesses = 4;
  constexpr int kRounds = 150;
  const std::string counter = folder_.file("counter");
  ASSERT_TRUE(replaceFile(counter, "0"));
  {
    std::vector<std::unique_ptr<ChildProcess>> processes;
    for (int process = 0; process < kProcesses; ++process) {
      processes.push_back(std::make_unique<ChildProcess>([&] {
        for (int round = 0; round < kRounds; ++round) {
          const auto lock = FileLock::acquire(path_);
          const auto text = readFile(counter, 100);
          // Without the lock two processes read the same number and one step is lost.
          if (!lock || !text || !removeFile(counter)) return false;
          if (!appendLines(counter, std::to_string(std::stoi(*text) + 1) + "\n")) return false;
        }
        return true;
      }));
    }
    for (const auto& process : processes) EXPECT_TRUE(process->succeeded());
  }
  EXPECT_EQ(readFile(counter, 100), std::to_string(kProcesses * kRounds) + "\n");
}

TEST_F(FileLockTest, IsReleasedWhenItsHolderIsKilled) {
  const Signal held;
  ChildProcess holder([&] {
    const auto lock = FileLock::acquire(path_);
    held.send();
    for (;;) ::pause();
    return lock.has_value();
  });
  held.await();
  holder.kill();
  EXPECT_TRUE(FileLock::acquire(path_));
}

TEST_F(FileLockTest, IsNotInheritedByPrograms) {
  const auto lock = FileLock::acquire(path_);
  ASSERT_TRUE(lock);
  // The shell lists its descriptors; none of them may be the lock.
  const std::string command =
      "for fd in /proc/self/fd/*; do readlink \"$fd\"; done 2>/dev/null | grep -qF '" + path_ + "'";
  EXPECT_NE(std::system(command.c_str()), 0);
}

}  // namespace
}  // namespace brindle
