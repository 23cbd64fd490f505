// The three requests and the limits that the timer keeps.
#include "helper/helper.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

SleepReply yes(std::string text) { return {.ok = true, .message = std::move(text)}; }
SleepReply no(std::string text) { return {.ok = false, .message = std::move(text)}; }
HelperStatus offFor(double seconds) { return {.sleepDisabled = true, .remaining = Seconds{seconds}, .version = 1}; }
const HelperStatus kOn{.sleepDisabled = false, .remaining = Seconds{0}, .version = 1};

TEST(HelperRequests, AHoldFromItsBeginningToItsEnd) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  EXPECT_THAT(daemon.set(true, 3600), ElementsAre(yes("Sleep disabled")));
  daemon.pass(30);
  EXPECT_THAT(daemon.beat(), ElementsAre(true));
  EXPECT_THAT(daemon.status(), ElementsAre(offFor(3570)));
  EXPECT_THAT(daemon.set(false, 0), ElementsAre(yes("Sleep on")));
  EXPECT_THAT(daemon.status(), ElementsAre(kOn));
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::turnedOff)));
}

TEST(HelperRequests, RunOnTheQueueNotInTheCall) {
  TestDaemon daemon;
  daemon.started();
  int replies = 0;
  daemon.helper->setSleepDisabled({.disabled = true, .maxDuration = Seconds{60}},
                                  [&](const SleepReply&) { ++replies; });
  daemon.helper->heartbeat([&](bool) { ++replies; });
  daemon.helper->status([&](const HelperStatus&) { ++replies; });
  EXPECT_EQ(replies, 0);
  EXPECT_THAT(daemon.sleepSwitch.runs, IsEmpty());
  EXPECT_EQ(daemon.queue.waiting(), 3U);
  daemon.queue.runAll();
  EXPECT_EQ(replies, 3);
}

TEST(HelperRequests, GoByTheTimeOfTheirTurn) {
  TestDaemon daemon;
  daemon.started();
  daemon.helper->setSleepDisabled({.disabled = true, .maxDuration = Seconds{100}}, [](const SleepReply&) {});
  daemon.pass(30);  // the queue was busy
  daemon.queue.runAll();
  EXPECT_THAT(daemon.status(), ElementsAre(offFor(100)));
}

TEST(HelperRequests, AreAnsweredInOrderOfArrival) {
  TestDaemon daemon;
  daemon.started();
  std::vector<std::string> order;
  daemon.helper->setSleepDisabled({.disabled = true, .maxDuration = Seconds{100}},
                                  [&](const SleepReply& reply) { order.push_back(reply.message); });
  daemon.helper->setSleepDisabled({.disabled = false},
                                  [&](const SleepReply& reply) { order.push_back(reply.message); });
  daemon.helper->heartbeat([&](bool disabled) { order.emplace_back(disabled ? "beats" : "on"); });
  daemon.queue.runAll();
  EXPECT_THAT(order, ElementsAre("Sleep disabled", "Sleep on", "on"));
}

TEST(HelperRequests, KeepTheHelperAliveUntilTheyAreAnswered) {
  TestDaemon daemon;
  daemon.started();
  int replies = 0;
  daemon.helper->status([&](const HelperStatus&) { ++replies; });
  daemon.helper.reset();
  daemon.queue.runAll();
  EXPECT_EQ(replies, 1);
}

TEST(HelperSetSleepDisabled, SecondDisableRunsNothingKeepsTheDeadlineAndCountsAsHeartbeat) {
  TestDaemon daemon;
  daemon.started();
  ASSERT_THAT(daemon.set(true, 3600), ElementsAre(yes("Sleep disabled")));
  daemon.pass(80);
  EXPECT_THAT(daemon.set(true, 7200), ElementsAre(yes("Sleep already disabled")));
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
  EXPECT_THAT(daemon.status(), ElementsAre(offFor(3520)));
  daemon.tickAfter(90);
  EXPECT_THAT(daemon.beat(), ElementsAre(true)) << "90 seconds after the second request, 170 after the first";
}

TEST(HelperSetSleepDisabled, EnableRunsTheSwitchAlsoWhileSleepIsOn) {
  TestDaemon daemon;
  daemon.started();
  EXPECT_THAT(daemon.set(false, 3600), ElementsAre(yes("Sleep on")));
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(restoreRun(RevertReason::turnedOff)));
}

TEST(HelperSetSleepDisabled, ClampsTheDuration) {
  const std::vector<std::pair<double, double>> cases = {
      {10, 60},
      {59.9, 60},
      {60, 60},
      {60.5, 60.5},
      {43200, 43200},
      {43200.5, 43200},
      {100000, 43200},
      {0, 60},
      {-5, 60},
      {std::numeric_limits<double>::quiet_NaN(), 60},
      {std::numeric_limits<double>::infinity(), 43200},
      {-std::numeric_limits<double>::infinity(), 60},
  };
  for (const auto& [asked, given] : cases) {
    TestDaemon daemon;
    daemon.started();
    ASSERT_THAT(daemon.set(true, asked), ElementsAre(yes("Sleep disabled")));
    const auto replies = daemon.status();
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_NEAR(replies[0].remaining.count(), given, 1e-3) << asked;
  }
}

TEST(HelperSetSleepDisabled, IsRefusedAfterTheDeadlineUntilSleepWasSwitchedOn) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 60);
  daemon.tickAfter(60);
  ASSERT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::maxDuration)));
  EXPECT_THAT(daemon.set(true, 60), ElementsAre(no("Max duration reached. Turn it off first.")));
  EXPECT_THAT(daemon.set(true, 60), ElementsAre(no("Max duration reached. Turn it off first.")));
  EXPECT_EQ(daemon.sleepSwitch.runs.size(), 2U);
  EXPECT_THAT(daemon.set(false, 0), ElementsAre(yes("Sleep on")));
  EXPECT_THAT(daemon.set(true, 60), ElementsAre(yes("Sleep disabled")));
}

TEST(HelperSetSleepDisabled, TakesTheDisableBackWhenTheSwitchFails) {
  TestDaemon daemon;
  daemon.started();
  daemon.sleepSwitch.fails = true;
  EXPECT_THAT(daemon.set(true, 3600), ElementsAre(no("scripted failed")));
  EXPECT_THAT(daemon.status(), ElementsAre(kOn));
  EXPECT_THAT(daemon.beat(), ElementsAre(false));
  daemon.sleepSwitch.fails = false;
  daemon.tickAfter(119);
  EXPECT_EQ(daemon.sleepSwitch.runs.size(), 1U) << "there is nothing to revert";
  EXPECT_THAT(daemon.set(true, 3600), ElementsAre(yes("Sleep disabled"))) << "a new attempt, not a second request";
}

TEST(HelperSetSleepDisabled, StaysOnWhenTheSwitchFailsToSwitchOn) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 3600);
  daemon.sleepSwitch.fails = true;
  EXPECT_THAT(daemon.set(false, 0), ElementsAre(no("scripted failed")));
  EXPECT_THAT(daemon.status(), ElementsAre(kOn));
}

TEST(HelperHeartbeat, KeepsAHoldAlive) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 43200);
  for (int beat = 0; beat < 20; ++beat) {
    daemon.tickAfter(90);
    EXPECT_THAT(daemon.beat(), ElementsAre(true));
  }
}

TEST(HelperHeartbeat, ChangesNothingWhileSleepIsOn) {
  TestDaemon daemon;
  daemon.started();
  EXPECT_THAT(daemon.beat(), ElementsAre(false));
  EXPECT_THAT(daemon.sleepSwitch.runs, IsEmpty());
}

TEST(HelperHeartbeat, AnswersFalseAfterTheTimeoutRevert) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 3600);
  daemon.tickAfter(90.001);
  EXPECT_THAT(daemon.beat(), ElementsAre(false));
  EXPECT_THAT(daemon.set(true, 3600), ElementsAre(yes("Sleep disabled"))) << "a lost heartbeat refuses nothing";
}

TEST(HelperStatusRequest, IsZeroBetweenTheDeadlineAndTheNextTick) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 60);
  daemon.pass(61);
  EXPECT_THAT(daemon.status(), ElementsAre(offFor(0)));
  daemon.queue.fire();
  EXPECT_THAT(daemon.status(), ElementsAre(kOn));
}

TEST(HelperTick, RevertsAtTheDeadlineAndNotBefore) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 60);
  daemon.tickAfter(59.999);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
  daemon.tickAfter(0.002);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::maxDuration)));
  daemon.tickAfter(5);
  EXPECT_EQ(daemon.sleepSwitch.runs.size(), 2U) << "once";
}

TEST(HelperTick, RevertsOnlyStrictlyAfterNinetySilentSeconds) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 3600);
  daemon.tickAfter(90);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
  daemon.tickAfter(0.001);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::heartbeatLost)));
}

TEST(HelperTick, PrefersTheDeadlineWhenBothArePast) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 60);
  daemon.tickAfter(500);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::maxDuration)));
}

TEST(HelperTick, LetsTheNewStateStandWhenTheSwitchFails) {
  TestDaemon daemon;
  daemon.started();
  daemon.set(true, 3600);
  daemon.sleepSwitch.fails = true;
  daemon.tickAfter(91);
  EXPECT_THAT(daemon.status(), ElementsAre(kOn));
}

}  // namespace
}  // namespace brindle
