#include "base/result.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace brindle {
namespace {

TEST(Failure, SaysWhatWasDoneAndWhy) {
  EXPECT_EQ((Failure{ENOENT, "open /tmp/x"}.message()), "open /tmp/x: No such file or directory");
  EXPECT_EQ((Failure{ENOSPC, "append to /tmp/x"}.message()), "append to /tmp/x: No space left on device");
}

TEST(Failure, SaysTheSameForRefusedAccessOfBothKinds) {
  EXPECT_EQ(errorText(EACCES), "Permission denied");
  EXPECT_EQ(errorText(kFileWriteNoPermission), "Permission denied");
  EXPECT_EQ(kFileWriteNoPermission, 513);
}

TEST(Failure, NamesTheNumberOfACodeThatItDoesNotKnow) {
  EXPECT_EQ(errorText(99999), "error 99999");
  EXPECT_EQ(errorText(-1), "error -1");
}

TEST(Result, HoldsAValueOrAFailure) {
  const Result<int> good = 3;
  const Result<int> bad = fail(EIO, "read it");
  EXPECT_EQ(good.value(), 3);
  ASSERT_FALSE(bad);
  EXPECT_EQ(bad.error(), (Failure{EIO, "read it"}));
}

TEST(Outcome, IsSuccessUnlessItFailed) {
  const Outcome good;
  const Outcome bad = fail(EIO, "write it");
  EXPECT_TRUE(good);
  ASSERT_FALSE(bad);
  EXPECT_EQ(bad.error().code, EIO);
}

}  // namespace
}  // namespace brindle
