// Real loops, but no waiting for the clock: timers are as short as they come, and a loop that never ends fails by the
// test program's time limit.
#include "system/event_loop.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <limits>
#include <thread>

#include "base/descriptor.h"
#include "system/child_process.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;

struct EventLoopTest : ::testing::Test {
  EventLoop loop = EventLoop::create().value();
  std::vector<int> order;
};
using EventLoopPost = EventLoopTest;
using EventLoopTimer = EventLoopTest;
using EventLoopSignal = EventLoopTest;
using EventLoopChild = EventLoopTest;
using EventLoopDescriptor = EventLoopTest;

constexpr Seconds kSoon{0.0001};

TEST_F(EventLoopPost, RunsWorkInOrderAndAnswersTheExitCode) {
  for (int number = 1; number <= 3; ++number) loop.post([this, number] { order.push_back(number); });
  loop.post([this] { loop.exit(7); });
  EXPECT_EQ(loop.run(), 7);
  EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(EventLoopPost, RunsWorkPostedFromWork) {
  loop.post([this] {
    order.push_back(1);
    loop.post([this] {
      order.push_back(2);
      loop.exit(0);
    });
  });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(EventLoopPost, TakesWorkFromOtherThreads) {
  std::thread other([this] { loop.post([this] { loop.exit(3); }); });
  EXPECT_EQ(loop.run(), 3);
  other.join();
}

TEST_F(EventLoopPost, DropsWorkBehindTheExit) {
  loop.post([this] { loop.exit(0); });
  loop.post([this] { order.push_back(1); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_TRUE(order.empty());
}

TEST_F(EventLoopPost, LetsTheFirstExitCodeStand) {
  loop.post([this] {
    loop.exit(4);
    loop.exit(5);
  });
  EXPECT_EQ(loop.run(), 4);
}

TEST_F(EventLoopTimer, FiresOnceAfterItsDelay) {
  const auto once = loop.after(kSoon, [this] { order.push_back(1); });
  const auto end = loop.after(kSoon * 50, [this] { loop.exit(0); });
  ASSERT_TRUE(once && end);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ElementsAre(1));
}

TEST_F(EventLoopTimer, RepeatsUntilItsSourceGoesEvenInsideItsOwnHandler) {
  Result<EventSource> timer = fail(0, "");
  EventSource end;
  timer = loop.every(kSoon, [&] {
    order.push_back(1);
    if (order.size() == 3) {
      timer->cancel();
      order.push_back(2);  // the handler still runs to its end
      end = loop.after(kSoon * 50, [this] { loop.exit(0); }).value();
    }
  });
  ASSERT_TRUE(timer);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ElementsAre(1, 1, 1, 2));
}

TEST_F(EventLoopTimer, DoesNotFireOnceCancelled) {
  auto never = loop.after(kSoon, [this] { order.push_back(1); });
  ASSERT_TRUE(never);
  never->cancel();
  EXPECT_FALSE(*never);
  const auto end = loop.after(kSoon * 50, [this] { loop.exit(0); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_TRUE(order.empty());
}

TEST_F(EventLoopTimer, TakesAnyDelay) {
  const auto past = loop.after(Seconds{-5}, [this] { order.push_back(1); });
  const auto nan = loop.after(Seconds{std::numeric_limits<double>::quiet_NaN()}, [this] { order.push_back(2); });
  const auto far = loop.after(Seconds{std::numeric_limits<double>::infinity()}, [this] { order.push_back(3); });
  ASSERT_TRUE(past && nan && far);
  const auto end = loop.after(kSoon * 50, [this] { loop.exit(0); });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ::testing::UnorderedElementsAre(1, 2));
}

TEST_F(EventLoopTimer, RefusesAnIntervalThatWouldSpin) {
  for (const double interval : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(loop.every(Seconds{interval}, [] {}).error().code, EINVAL);
  }
}

TEST_F(EventLoopSignal, ArrivesAsACallAndSaysThatAProcessSentIt) {
  SignalNote note;
  const auto source = loop.onSignal(SIGUSR1, [&](SignalNote arrived) {
    note = arrived;
    loop.exit(0);
  });
  ASSERT_TRUE(source);
  ASSERT_EQ(kill(getpid(), SIGUSR1), 0);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_EQ(note.number, SIGUSR1);
  EXPECT_TRUE(note.fromProcess);
}

TEST_F(EventLoopSignal, RefusesASignalThatNobodyCanCatch) {
  EXPECT_FALSE(loop.onSignal(SIGKILL, [](SignalNote) {}));
  EXPECT_FALSE(loop.onSignal(-1, [](SignalNote) {}));
}

TEST_F(EventLoopDescriptor, CallsWhenThereIsSomethingToReadAndAtTheEnd) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const auto source = loop.onReadable(reading.get(), [&] {
    char byte = 0;
    const auto count = read(reading.get(), &byte, 1);
    order.push_back(count == 1 ? byte : -1);
    if (count == 1) writing.reset();
    if (count == 0) loop.exit(0);
  });
  ASSERT_TRUE(source);
  ASSERT_EQ(write(writing.get(), "a", 1), 1);
  EXPECT_EQ(loop.run(), 0);
  EXPECT_THAT(order, ElementsAre('a', -1));
}

TEST_F(EventLoopDescriptor, RefusesADescriptorThatIsNone) {
  EXPECT_FALSE(loop.onReadable(-1, [] {}));
}

struct ChildCase {
  std::string script;
  ChildEnd end;
};

TEST_F(EventLoopChild, TellsHowTheChildEnded) {
  const std::vector<ChildCase> cases = {
      {"exit 0", {}}, {"exit 42", {.exitStatus = 42}}, {"kill -TERM $$", {.killedBy = SIGTERM}}};
  for (const auto& [script, expected] : cases) {
    EventLoop own = EventLoop::create().value();
    const auto child = ChildProcess::start(
        {.program = "/bin/sh", .arguments = {"-c", script}, .nullStreams = true, .defaultSignals = true});
    ASSERT_TRUE(child);
    ChildEnd end{.exitStatus = -1};
    const auto source = own.onChildEnd(child->pid(), [&](ChildEnd how) {
      end = how;
      own.exit(0);
    });
    ASSERT_TRUE(source) << source.error().message();
    EXPECT_EQ(own.run(), 0);
    EXPECT_EQ(end, expected) << script;
    EXPECT_EQ(kill(child->pid(), 0), -1) << "reaped";
  }
}

}  // namespace
}  // namespace brindle
