#include "platform/foreground_child.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

namespace brindle {
namespace {

/// Starts a command and answers its end.
ChildEnd endOf(const std::vector<std::string>& words, const InheritedSignals& signals) {
  auto loop = EventLoop::create();
  EXPECT_TRUE(loop);
  ChildEnd seen{.exitStatus = -1};
  const auto child = ForegroundChild::start(*loop, {.words = words, .signals = signals}, [&](ChildEnd end) {
    seen = end;
    loop->exit(0);
  });
  EXPECT_TRUE(child);
  if (child) {
    EXPECT_EQ(loop->run(), 0);
  }
  return seen;
}

ChildEnd endOf(const std::string& script) { return endOf({"/bin/sh", "-c", script}, InheritedSignals::current()); }

TEST(ForegroundChild, TellsTheExitStatus) {
  EXPECT_EQ(endOf("exit 0"), ChildEnd{});
  EXPECT_EQ(endOf("exit 7"), (ChildEnd{.exitStatus = 7}));
  EXPECT_EQ(endOf("exit 255"), (ChildEnd{.exitStatus = 255}));
}

TEST(ForegroundChild, TellsTheSignalThatKilledIt) {
  EXPECT_EQ(endOf("kill -TERM $$"), (ChildEnd{.killedBy = SIGTERM}));
  EXPECT_EQ(endOf("kill -KILL $$"), (ChildEnd{.killedBy = SIGKILL}));
}

TEST(ForegroundChild, FailsWithTheReasonWhenThereIsNothingToExecute) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  const auto start = [&](const std::string& program) {
    const auto child = ForegroundChild::start(*loop, {.words = {program}, .signals = InheritedSignals::current()},
                                              [](ChildEnd) { FAIL(); });
    return child ? 0 : child.error().code;
  };
  EXPECT_EQ(start("/nonexistent/program"), ENOENT);
  EXPECT_EQ(start("no-such-program-anywhere"), ENOENT);
  EXPECT_EQ(start("/etc/passwd"), EACCES);
  EXPECT_EQ(start("/"), EACCES);
}

TEST(ForegroundChild, GivesTheCommandTheSignalsThatThisProcessWasGiven) {
  // They show in the status file of the command itself; a shell would have cleared the blocked ones.
  const std::vector<std::string> usr2Blocked = {"grep", "-q", "^SigBlk:.*800$", "/proc/self/status"};
  const std::vector<std::string> pipeIgnored = {"grep", "-qE", "^SigIgn:.*[13579bdf]...$", "/proc/self/status"};
  const auto before = ::signal(SIGPIPE, SIG_IGN);
  InheritedSignals signals;
  sigemptyset(&signals.blocked);
  EXPECT_EQ(endOf(usr2Blocked, signals), (ChildEnd{.exitStatus = 1}));
  EXPECT_EQ(endOf(pipeIgnored, signals), (ChildEnd{.exitStatus = 1}));
  sigaddset(&signals.blocked, SIGUSR2);
  signals.closedPipesIgnored = true;
  EXPECT_EQ(endOf(usr2Blocked, signals), ChildEnd{});
  EXPECT_EQ(endOf(pipeIgnored, signals), ChildEnd{});
  EXPECT_TRUE(isIgnored(SIGPIPE)) << "starting a child must leave this process as it was";
  ::signal(SIGPIPE, before);
}

TEST(ForegroundChild, ForwardsSignalsWhileItRuns) {
  auto loop = EventLoop::create();
  ASSERT_TRUE(loop);
  ChildEnd seen;
  std::optional<ForegroundChild> child;
  auto started = ForegroundChild::start(
      *loop, {.words = {"/bin/sh", "-c", "kill -STOP $$; exit 3"}, .signals = InheritedSignals::current()},
      [&](ChildEnd end) {
        seen = end;
        child->forward(SIGTERM);  // nobody is there any more
        loop->exit(0);
      });
  ASSERT_TRUE(started);
  child = *std::move(started);
  child->forward(SIGKILL);
  EXPECT_EQ(loop->run(), 0);
  EXPECT_EQ(seen, (ChildEnd{.killedBy = SIGKILL}));
}

TEST(ForegroundChildDeathTest, DiesOfTheSignalItIsTold) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(dieOf(SIGTERM), testing::KilledBySignal(SIGTERM), "");
  EXPECT_EXIT(
      {
        ::signal(SIGUSR1, SIG_IGN);
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        dieOf(SIGUSR1);
      },
      testing::KilledBySignal(SIGUSR1), "");
}

TEST(IsIgnored, KnowsTheActionOfASignal) {
  const auto before = ::signal(SIGUSR1, SIG_IGN);
  EXPECT_TRUE(isIgnored(SIGUSR1));
  ::signal(SIGUSR1, SIG_DFL);
  EXPECT_FALSE(isIgnored(SIGUSR1));
  ::signal(SIGUSR1, before);
}

}  // namespace
}  // namespace brindle
