#include "platform/hold_timer.h"

#include <gtest/gtest.h>

#include "system/boot_clock.h"

namespace brindle {
namespace {

TEST(LoopHoldTimer, GoesByTheBootClock) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  const LoopHoldTimer timer(*loop);
  const Seconds before = bootClockNow();
  const Seconds now = timer.now();
  const Seconds after = bootClockNow();
  EXPECT_GE(now, before);
  EXPECT_LE(now, after);
}

TEST(LoopHoldTimer, RingsOnceFromTheLoopForAMomentThatIsDue) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  LoopHoldTimer timer(*loop);
  int rung = 0;
  timer.setAlarm(timer.now() - Seconds{5}, [&] {
    ++rung;
    loop->post([&] { loop->exit(0); });
  });
  EXPECT_EQ(rung, 0) << "never from inside the call";
  EXPECT_EQ(loop->run(), 0);
  EXPECT_EQ(rung, 1);
}

TEST(LoopHoldTimer, ForgetsTheAlarmThatALaterOneReplaces) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  LoopHoldTimer timer(*loop);
  timer.setAlarm(timer.now(), [&] { loop->exit(1); });
  timer.setAlarm(timer.now(), [&] { loop->exit(2); });
  EXPECT_EQ(loop->run(), 2);
}

TEST(LoopHoldTimer, RingsNoMoreWithoutAMoment) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  LoopHoldTimer timer(*loop);
  timer.setAlarm(timer.now(), [&] { loop->exit(1); });
  timer.setAlarm(std::nullopt, nullptr);
  auto later = loop->after(Seconds{0}, [&] { loop->exit(2); });
  ASSERT_TRUE(later);
  EXPECT_EQ(loop->run(), 2);
}

TEST(LoopHoldTimer, MaySetTheNextAlarmFromTheLast) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  LoopHoldTimer timer(*loop);
  int rung = 0;
  std::function<void()> ring = [&] {
    if (++rung == 3) return loop->exit(0);
    timer.setAlarm(timer.now(), ring);
  };
  timer.setAlarm(timer.now(), ring);
  EXPECT_EQ(loop->run(), 0);
  EXPECT_EQ(rung, 3);
}

}  // namespace
}  // namespace brindle
