#include "helper/onward_clock.h"

#include <gmock/gmock.h>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;

constexpr double kNow = 1'800'000'000;
constexpr double kYear = 31'536'000;

/// Both clocks of a machine, and whoever sets one of them.
struct Machine {
  void pass(double seconds) {
    wall += seconds;
    boot += seconds;
  }
  double read() { return secondsSince1970(clock.at(dateFromSeconds(wall), Seconds{boot})); }

  double wall = kNow;
  double boot = 1000;
  OnwardClock clock;
};

TEST(OnwardClock, IsTheWallClockWhileNobodySetsIt) {
  Machine machine;
  EXPECT_EQ(machine.read(), kNow);
  machine.pass(5);
  EXPECT_EQ(machine.read(), kNow + 5);
}

TEST(OnwardClock, GoesOnAtItsPaceWhenTheWallClockIsSetBack) {
  Machine machine;
  EXPECT_EQ(machine.read(), kNow);
  machine.pass(5);
  machine.wall -= kYear;
  EXPECT_EQ(machine.read(), kNow + 5);
  machine.pass(5);
  EXPECT_EQ(machine.read(), kNow + 10);
}

TEST(OnwardClock, FollowsTheWallClockForward) {
  Machine machine;
  EXPECT_EQ(machine.read(), kNow);
  machine.wall += kYear;
  machine.pass(5);
  EXPECT_EQ(machine.read(), kNow + kYear + 5);
}

TEST(OnwardClock, StaysAheadOfAWallClockThatWasAheadForAWhile) {
  Machine machine;
  machine.wall += kYear;
  EXPECT_EQ(machine.read(), kNow + kYear);
  machine.wall -= kYear;
  machine.pass(5);
  EXPECT_EQ(machine.read(), kNow + kYear + 5);
  machine.wall += kYear / 2;
  machine.pass(5);
  EXPECT_EQ(machine.read(), kNow + kYear + 10);
}

/// A daemon that goes by the clock of a machine.
struct OnwardClockHold : ::testing::Test {
  OnwardClockHold() { daemon.started(); }
  void tickAfter(double seconds) {
    machine.pass(seconds);
    daemon.now = dateFromSeconds(machine.read());
    daemon.queue.fire();
  }
  void hold() {
    daemon.now = dateFromSeconds(machine.read());
    ASSERT_THAT(daemon.set(true, 3600), ElementsAre(SleepReply{.ok = true, .message = "Sleep disabled"}));
  }

  Machine machine;
  TestDaemon daemon;
};

TEST_F(OnwardClockHold, EndsInTimeWhenTheClockIsSetBack) {
  hold();
  machine.wall -= kYear;
  for (int second = 0; second < 3595; second += 5) {
    tickAfter(5);
    daemon.beat();
  }
  ASSERT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
  tickAfter(5);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::maxDuration)));
}

TEST_F(OnwardClockHold, OfASilentHolderEndsWhenTheClockIsSetBack) {
  hold();
  machine.wall -= kYear;
  tickAfter(90);
  ASSERT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
  tickAfter(5);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::heartbeatLost)));
}

}  // namespace
}  // namespace brindle
