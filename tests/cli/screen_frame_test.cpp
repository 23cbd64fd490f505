#include "cli/screen_frame.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(ScreenFrame, WritesOverWhatWasThereAndClearsTheRest) {
  EXPECT_EQ(screenFrame("a\nbc\n"), "\x1b[Ha\x1b[K\nbc\x1b[K\n\x1b[J");
  EXPECT_EQ(screenFrame(""), "\x1b[H\x1b[J");
}

}  // namespace
}  // namespace brindle
