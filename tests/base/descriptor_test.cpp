#include "base/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace brindle {
namespace {

bool isOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

Descriptor openNull() { return Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)); }

TEST(Descriptor, ClosesWhenItGoes) {
  int number = -1;
  {
    const Descriptor file = openNull();
    ASSERT_TRUE(file);
    number = file.get();
    EXPECT_TRUE(isOpen(number));
  }
  EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, IsNoneByDefault) {
  Descriptor none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.get(), -1);
  none.reset();
  EXPECT_FALSE(none);
}

TEST(Descriptor, MovesItsOwnership) {
  Descriptor first = openNull();
  const int number = first.get();
  Descriptor second(std::move(first));
  EXPECT_EQ(second.get(), number);
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): being none afterwards is what is promised
  first.reset();
  EXPECT_TRUE(isOpen(number));
}

TEST(Descriptor, ClosesTheOldOneOnAssignment) {
  Descriptor first = openNull();
  Descriptor second = openNull();
  const int old = first.get();
  const int kept = second.get();
  first = std::move(second);
  EXPECT_FALSE(isOpen(old));
  EXPECT_EQ(first.get(), kept);
}

TEST(Descriptor, SurvivesAssignmentToItself) {
  Descriptor file = openNull();
  Descriptor& same = file;
  file = std::move(same);
  EXPECT_TRUE(isOpen(file.get()));
}

TEST(Descriptor, GivesUpWithoutClosing) {
  Descriptor file = openNull();
  const int number = file.release();
  EXPECT_FALSE(file);
  EXPECT_TRUE(isOpen(number));
  const Descriptor owner(number);
}

TEST(Descriptor, KeepsErrnoWhenItCloses) {
  Descriptor file(12345);  // not open: closing it fails
  errno = ENOSPC;
  file.reset();
  EXPECT_EQ(errno, ENOSPC);
}

}  // namespace
}  // namespace brindle
