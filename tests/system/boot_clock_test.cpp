#include "system/boot_clock.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(BootClock, NeverGoesBack) {
  Seconds last = bootClockNow();
  EXPECT_GT(last.count(), 0);
  for (int round = 0; round < 1000; ++round) {
    const Seconds now = bootClockNow();
    ASSERT_GE(now, last);
    last = now;
  }
}

}  // namespace
}  // namespace brindle
