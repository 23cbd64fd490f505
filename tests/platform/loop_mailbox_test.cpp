#include "platform/loop_mailbox.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace brindle {
namespace {

EventLoop newLoop() {
  auto loop = EventLoop::create();
  EXPECT_TRUE(loop.has_value());
  return *std::move(loop);
}

TEST(LoopMailbox, RunsOnTheLoopsThreadWhatAnotherThreadPosts) {
  auto loop = newLoop();
  const auto mailbox = std::make_shared<LoopMailbox>(loop);
  std::thread::id ranOn;
  std::thread::id postedFrom;
  std::thread other([&, mailbox] {
    postedFrom = std::this_thread::get_id();
    mailbox->post([&] {
      ranOn = std::this_thread::get_id();
      loop.exit(7);
    });
  });
  EXPECT_EQ(loop.run(), 7);
  other.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_NE(ranOn, postedFrom);
}

TEST(LoopMailbox, KeepsTheOrderInWhichOneThreadPosts) {
  auto loop = newLoop();
  LoopMailbox mailbox(loop);
  std::string order;
  for (const char letter : {'a', 'b', 'c'}) mailbox.post([&order, letter] { order += letter; });
  mailbox.post([&loop] { loop.exit(0); });
  EXPECT_TRUE(order.empty());
  EXPECT_EQ(loop.run(), 0);
  EXPECT_EQ(order, "abc");
}

TEST(LoopMailbox, DropsWhatIsPostedOnceClosed) {
  auto loop = newLoop();
  LoopMailbox mailbox(loop);
  bool ran = false;
  mailbox.close();
  mailbox.post([&ran] { ran = true; });
  loop.post([&loop] { loop.exit(0); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_FALSE(ran);
}

TEST(LoopMailbox, MayBeClosedTwice) {
  auto loop = newLoop();
  LoopMailbox mailbox(loop);
  mailbox.close();
  mailbox.close();
  bool ran = false;
  mailbox.post([&ran] { ran = true; });
  loop.post([&loop] { loop.exit(0); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_FALSE(ran);
}

TEST(LoopMailbox, OutlivesItsLoopOnceClosed) {
  auto loop = std::make_optional(newLoop());
  const auto mailbox = std::make_shared<LoopMailbox>(*loop);
  mailbox->close();
  loop.reset();
  const auto owned = std::make_shared<int>(1);
  mailbox->post([owned] { FAIL() << "there is no loop to run this"; });
  EXPECT_EQ(owned.use_count(), 1);  // dropped, not kept for later
}

TEST(LoopMailbox, IsSafeWhileThreadsPostAndTheOwnerCloses) {
  for (int round = 0; round < 20; ++round) {
    auto loop = std::make_optional(newLoop());
    const auto mailbox = std::make_shared<LoopMailbox>(*loop);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([mailbox] {
        for (int j = 0; j < 100; ++j) mailbox->post([] {});
      });
    }
    mailbox->close();
    loop.reset();
    for (auto& thread : threads) thread.join();
  }
  SUCCEED();  // the sanitizers judge
}

}  // namespace
}  // namespace brindle
