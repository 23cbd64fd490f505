#include "cli/signal_watch.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>

#include "platform/foreground_child.h"

namespace brindle {
namespace {

TEST(SignalWatch, TellsEachOfItsSignalsInsteadOfDyingOfThem) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  std::vector<int> seen;
  const auto watched = watchSignals(*loop, std::to_array<int>({SIGUSR1, SIGTERM}), [&](SignalNote note) {
    EXPECT_TRUE(note.fromProcess);
    seen.push_back(note.number);
    if (seen.size() == 2) loop->exit(0);
  });
  ASSERT_TRUE(watched);
  EXPECT_EQ(watched->size(), 2u);
  ::raise(SIGUSR1);
  ::raise(SIGTERM);
  EXPECT_EQ(loop->run(), 0);
  EXPECT_EQ(seen.size(), 2u);
}

TEST(SignalWatch, LeavesIgnoredSignalsIgnored) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  const auto before = ::signal(SIGUSR2, SIG_IGN);
  const auto watched = watchSignals(*loop, std::to_array<int>({SIGUSR2}), [](SignalNote) { FAIL(); });
  ASSERT_TRUE(watched);
  EXPECT_TRUE(watched->empty());
  EXPECT_TRUE(isIgnored(SIGUSR2));
  ::signal(SIGUSR2, before);
}

TEST(SignalWatch, FailsForASignalThatCannotBeWatched) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  EXPECT_FALSE(watchSignals(*loop, std::to_array<int>({100000}), [](SignalNote) {}));
}

}  // namespace
}  // namespace brindle
