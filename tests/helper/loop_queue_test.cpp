#include "helper/loop_queue.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

struct LoopQueueTest : ::testing::Test {
  EventLoop loop = EventLoop::create().value();
  LoopQueue queue{loop};
  std::vector<int> order;
};

TEST_F(LoopQueueTest, RunsSynchronousWorkAtOnce) {
  queue.sync([this] { order.push_back(1); });
  EXPECT_THAT(order, ::testing::ElementsAre(1));
}

TEST_F(LoopQueueTest, RunsAsynchronousWorkLaterAndInOrder) {
  queue.async([this] { order.push_back(1); });
  queue.async([this] { order.push_back(2); });
  queue.async([this] { loop.exit(0); });
  EXPECT_TRUE(order.empty());
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ::testing::ElementsAre(1, 2));
}

TEST_F(LoopQueueTest, RepeatsUntilTheTimerGoes) {
  std::unique_ptr<QueueTimer> timer = queue.repeat(Seconds{0.0001}, [&] {
    order.push_back(1);
    if (order.size() == 3) {
      timer.reset();
      queue.async([this] { loop.exit(0); });
    }
  });
  ASSERT_NE(timer, nullptr);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ::testing::ElementsAre(1, 1, 1));
}

TEST_F(LoopQueueTest, GivesNoTimerForAnIntervalThatWouldSpin) {
  EXPECT_EQ(queue.repeat(Seconds{0}, [] {}), nullptr);
}

}  // namespace
}  // namespace brindle
