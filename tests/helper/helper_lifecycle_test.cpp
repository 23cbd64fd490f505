// Start, idle exit and SIGTERM of the daemon.
#include <gmock/gmock.h>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(HelperStart, SwitchesSleepBackOnBeforeItReturns) {
  TestDaemon daemon;
  ASSERT_TRUE(daemon.helper->start());
  EXPECT_THAT(daemon.log.lines, ElementsAre("helper started, turning sleep back on"));
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(restoreRun(RevertReason::helperStart)));
  EXPECT_EQ(daemon.queue.waiting(), 0U);
}

TEST(HelperStart, LogsBeforeItTouchesTheSwitch) {
  TestDaemon daemon;
  std::size_t linesAtRun = 99;
  daemon.sleepSwitch.duringRun = [&] { linesAtRun = daemon.log.lines.size(); };
  ASSERT_TRUE(daemon.helper->start());
  EXPECT_EQ(linesAtRun, 1U);
}

TEST(HelperStart, SwitchesSleepBackOnBeforeTheTimerRuns) {
  TestDaemon daemon;
  bool timerRan = true;
  daemon.sleepSwitch.duringRun = [&] { timerRan = daemon.queue.timerRuns(); };
  ASSERT_TRUE(daemon.helper->start());
  EXPECT_FALSE(timerRan);
  EXPECT_TRUE(daemon.queue.timerRuns());
}

TEST(HelperStart, TicksEveryFiveSeconds) {
  TestDaemon daemon;
  ASSERT_TRUE(daemon.helper->start());
  EXPECT_EQ(daemon.queue.interval(), Seconds{5});
}

TEST(HelperStart, DoesNothingBeforeItIsCalled) {
  TestDaemon daemon;
  EXPECT_THAT(daemon.sleepSwitch.runs, IsEmpty());
  EXPECT_THAT(daemon.log.lines, IsEmpty());
  EXPECT_FALSE(daemon.queue.timerRuns());
}

TEST(HelperStart, GoesOnWhenTheSwitchFails) {
  TestDaemon daemon;
  daemon.sleepSwitch.fails = true;
  EXPECT_TRUE(daemon.helper->start());
  EXPECT_TRUE(daemon.queue.timerRuns());
  EXPECT_THAT(daemon.status(), ElementsAre(HelperStatus{}));
}

TEST(HelperStart, RefusesToServeWithoutATimer) {
  TestDaemon daemon;
  daemon.queue.givesTimers = false;
  EXPECT_FALSE(daemon.helper->start());
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(restoreRun(RevertReason::helperStart)));
}

TEST(HelperStart, ReplacesAnEarlierTimer) {
  TestDaemon daemon;
  daemon.started();
  ASSERT_TRUE(daemon.helper->start());
  EXPECT_TRUE(daemon.queue.timerRuns());
}

TEST(HelperStart, ForgetsWhatAnEarlierInstanceHeld) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  daemon.makeHelper();  // as after a crash that left sleep off
  daemon.sleepSwitch.runs.clear();
  ASSERT_TRUE(daemon.helper->start());
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(restoreRun(RevertReason::helperStart)));
  EXPECT_THAT(daemon.status(), ElementsAre(HelperStatus{}));
}

TEST(HelperTimer, DoesNotKeepTheHelperAlive) {
  TestDaemon daemon;
  daemon.started();
  const std::weak_ptr<Helper> weak = daemon.helper;
  daemon.helper.reset();
  EXPECT_TRUE(weak.expired());
  daemon.tickAfter(1000);
  EXPECT_THAT(daemon.log.lines, IsEmpty());
  EXPECT_EQ(daemon.exit.idleExits, 0);
}

TEST(HelperIdleExit, ComesOnlyStrictlyAfterTwoMinutes) {
  TestDaemon daemon;
  daemon.started();
  daemon.tickAfter(119.999);
  EXPECT_EQ(daemon.exit.idleExits, 0);
  daemon.tickAfter(0.001);
  EXPECT_EQ(daemon.exit.idleExits, 0) << "exactly 120 seconds are not more than 120";
  EXPECT_THAT(daemon.log.lines, IsEmpty());
  daemon.tickAfter(0.001);
  EXPECT_EQ(daemon.exit.idleExits, 1);
  EXPECT_THAT(daemon.log.lines, ElementsAre("idle, exiting"));
  EXPECT_THAT(daemon.sleepSwitch.runs, IsEmpty()) << "sleep was on all the time";
}

TEST(HelperIdleExit, ComesAtTheFirstTickPastTwoMinutesFromCreation) {
  TestDaemon daemon;
  daemon.started();
  for (int tick = 1; tick <= 24; ++tick) daemon.tickAfter(5);
  EXPECT_EQ(daemon.exit.idleExits, 0);
  daemon.tickAfter(5);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperIdleExit, CountsFromCreationNotFromStart) {
  TestDaemon daemon;
  daemon.pass(100);
  daemon.started();
  daemon.tickAfter(20.5);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperIdleExit, CountsFromTheEndOfTheLastConnection) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.pass(60);
  daemon.end(1);
  daemon.tickAfter(61);
  EXPECT_EQ(daemon.exit.idleExits, 0) << "121 seconds after the start, but only 61 without a connection";
  daemon.tickAfter(59);
  EXPECT_EQ(daemon.exit.idleExits, 0);
  daemon.tickAfter(0.5);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperIdleExit, WaitsForEveryConnection) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.accept(2);
  daemon.end(1);
  daemon.tickAfter(1000);
  EXPECT_EQ(daemon.exit.idleExits, 0);
  daemon.end(2);
  daemon.tickAfter(120.001);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperIdleExit, NeverComesWhileAConnectionIsOpen) {
  TestDaemon daemon;
  daemon.started();
  daemon.pass(100);
  daemon.accept(1);
  daemon.tickAfter(1000);
  ASSERT_EQ(daemon.exit.idleExits, 0);
}

TEST(HelperIdleExit, NeverComesWhileSleepIsDisabled) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 43200);  // no connection was ever accepted
  for (int tick = 0; tick < 60; ++tick) {
    daemon.tickAfter(5);
    daemon.beat();
  }
  EXPECT_EQ(daemon.exit.idleExits, 0);
  daemon.set(false, 0);
  daemon.tickAfter(5);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperIdleExit, FollowsARevertInTheSameTick) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 3600);
  daemon.tickAfter(121);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::heartbeatLost)));
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperIdleExit, WaitsForCallsThatAreStillBeingAdmitted) {
  TestDaemon daemon;
  daemon.started();
  daemon.exit.pending = true;
  daemon.tickAfter(500);
  EXPECT_EQ(daemon.exit.idleExits, 0);
  EXPECT_THAT(daemon.log.lines, IsEmpty());
  daemon.exit.pending = false;
  daemon.tickAfter(5);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperTermination, SwitchesSleepBackOnOnceAndEnds) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  int exitsAtRun = -1;
  daemon.sleepSwitch.duringRun = [&] { exitsAtRun = daemon.exit.terminations; };
  daemon.helper->terminate();
  EXPECT_THAT(daemon.log.lines, ElementsAre("SIGTERM, turning sleep back on"));
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::uninstall)));
  EXPECT_EQ(exitsAtRun, 0) << "the process ends only after the switch";
  EXPECT_EQ(daemon.exit.terminations, 1);
  EXPECT_EQ(daemon.exit.idleExits, 0);
}

TEST(HelperTermination, LeavesNoMomentInWhichAWaitingRequestCouldSwitchSleepOffAgain) {
  TestDaemon daemon;
  daemon.started();
  bool insideAtExit = false;
  daemon.exit.duringTermination = [&] { insideAtExit = daemon.queue.isInside(); };
  daemon.helper->terminate();
  EXPECT_TRUE(insideAtExit) << "the queue went on between the switch and the end of the process";
}

TEST(HelperTermination, RunsTheSwitchAlsoWhileSleepIsOn) {
  TestDaemon daemon;
  daemon.started();
  daemon.helper->terminate();
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(restoreRun(RevertReason::uninstall)));
}

TEST(HelperTermination, EndsAlsoWhenTheSwitchFails) {
  TestDaemon daemon;
  daemon.started();
  daemon.sleepSwitch.fails = true;
  daemon.helper->terminate();
  EXPECT_EQ(daemon.exit.terminations, 1);
}

TEST(HelperTermination, LeavesTheBookkeepingAlone) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 3600);
  daemon.helper->terminate();
  EXPECT_THAT(daemon.status(), ElementsAre(HelperStatus{.sleepDisabled = true, .remaining = Seconds{3600}}));
}

}  // namespace
}  // namespace brindle
