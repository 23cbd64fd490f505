// Connections, and what their end does to a hold.
#include <gmock/gmock.h>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

SleepReply yes(std::string text) { return {.ok = true, .message = std::move(text)}; }
const HelperStatus kOn{.sleepDisabled = false, .remaining = Seconds{0}, .version = 1};

TEST(HelperConnections, LosingOneSwitchesSleepBackOnAtOnce) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  daemon.end(1);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::connectionLost)));
  EXPECT_THAT(daemon.status(), ElementsAre(kOn));
  EXPECT_THAT(daemon.set(true, 60), ElementsAre(yes("Sleep disabled"))) << "a lost connection refuses nothing";
}

TEST(HelperConnections, LosingAnyOneEndsTheHoldEvenWhenOthersStay) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.accept(2);
  daemon.set(true, 3600);
  daemon.end(2);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun, restoreRun(RevertReason::connectionLost)));
}

TEST(HelperConnections, InterruptedAndThenInvalidatedRevertsOnce) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  daemon.helper->connectionEnded(ConnectionId{1});
  daemon.helper->connectionEnded(ConnectionId{1});
  daemon.queue.runAll();
  EXPECT_EQ(daemon.sleepSwitch.runs.size(), 2U);
  daemon.accept(2);
  daemon.set(true, 3600);
  daemon.end(1);
  EXPECT_EQ(daemon.sleepSwitch.runs.size(), 3U) << "the late second end of the first must not end the new hold";
}

TEST(HelperConnections, EndingASecondTimeDoesNotPutOffTheIdleExit) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.end(1);
  daemon.pass(100);
  daemon.end(1);
  daemon.tickAfter(20.5);
  EXPECT_EQ(daemon.exit.idleExits, 1);
}

TEST(HelperConnections, AnUnknownOneChangesNothing) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  daemon.end(7);
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
}

TEST(HelperConnections, LosingOneWhileSleepIsOnRunsNothing) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.end(1);
  EXPECT_THAT(daemon.sleepSwitch.runs, IsEmpty());
}

TEST(HelperConnections, AreCountedWhenAcceptReturns) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  EXPECT_EQ(daemon.queue.waiting(), 0U);
  daemon.tickAfter(1000);
  EXPECT_EQ(daemon.exit.idleExits, 0);
}

TEST(HelperConnections, EndOnTheQueueNotInTheCall) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  daemon.helper->connectionEnded(ConnectionId{1});
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
  daemon.queue.runAll();
  EXPECT_EQ(daemon.sleepSwitch.runs.size(), 2U);
}

TEST(HelperConnections, AreForgottenWithTheHelper) {
  TestDaemon daemon;
  daemon.started();
  daemon.accept(1);
  daemon.set(true, 3600);
  daemon.helper->connectionEnded(ConnectionId{1});
  daemon.helper.reset();
  daemon.queue.runAll();
  EXPECT_THAT(daemon.sleepSwitch.runs, ElementsAre(kDisableRun));
}

}  // namespace
}  // namespace brindle
