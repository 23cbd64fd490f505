#include "platform/executable_path.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(ExecutablePath, IsTheAbsolutePathOfThisTest) {
  const auto path = executablePath();
  ASSERT_TRUE(path);
  EXPECT_TRUE(path->starts_with('/'));
  EXPECT_TRUE(path->ends_with("/platform_test")) << *path;
}

}  // namespace
}  // namespace brindle
