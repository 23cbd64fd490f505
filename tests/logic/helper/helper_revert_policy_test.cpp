#include "logic/helper/helper_revert_policy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'000'000);
constexpr Seconds kHour{3600};
const RequestAnswer kDisable = RequestAcceptedWithCommand{PmsetCommand::disableSleep};
const RequestAnswer kRestore = RequestAcceptedWithCommand{PmsetCommand::restoreSleep};

HelperRevertPolicy disabledSince(Date now, Seconds maxDuration = kHour) {
  HelperRevertPolicy policy;
  EXPECT_EQ(policy.request(true, now, maxDuration), kDisable);
  return policy;
}

HelperRevertPolicy expiredAt(Date now) {
  HelperRevertPolicy policy = disabledSince(now - Seconds{60}, Seconds{60});
  EXPECT_EQ(policy.tick(now), PmsetCommand::restoreSleep);
  EXPECT_TRUE(policy.expired);
  return policy;
}

TEST(HelperRevertPolicy, HoldsSleepOffUntilAClientSwitchesItBackOn) {
  HelperRevertPolicy policy;
  EXPECT_EQ(policy.request(true, kNow, kHour), kDisable);
  policy.heartbeat(kNow + Seconds{30});
  EXPECT_EQ(policy.tick(kNow + Seconds{35}), std::nullopt);
  EXPECT_EQ(policy.remaining(kNow + Seconds{35}), Seconds{3565});
  EXPECT_EQ(policy.request(false, kNow + Seconds{40}, kHour), kRestore);
  EXPECT_EQ(policy, (HelperRevertPolicy{.lastRevert = RevertReason::turnedOff}));
}

TEST(HelperRevertPolicy, BeginsWithNothingDisabled) {
  const HelperRevertPolicy policy;
  EXPECT_FALSE(policy.sleepDisabled);
  EXPECT_EQ(policy.deadline, std::nullopt);
  EXPECT_EQ(policy.lastHeartbeat, std::nullopt);
  EXPECT_FALSE(policy.expired);
  EXPECT_EQ(policy.lastRevert, std::nullopt);
}

TEST(HelperRevertPolicy, RaisesAShortDurationToSixtySeconds) {
  EXPECT_EQ(disabledSince(kNow, Seconds{10}).deadline, kNow + Seconds{60});
  EXPECT_EQ(disabledSince(kNow, Seconds{59.9}).deadline, kNow + Seconds{60});
  EXPECT_EQ(disabledSince(kNow, Seconds{60}).deadline, kNow + Seconds{60});
  EXPECT_EQ(disabledSince(kNow, Seconds{60.5}).deadline, kNow + Seconds{60.5});
}

TEST(HelperRevertPolicy, LowersALongDurationToTwelveHours) {
  EXPECT_EQ(disabledSince(kNow, Seconds{100000}).deadline, kNow + Seconds{43200});
  EXPECT_EQ(disabledSince(kNow, Seconds{43200.5}).deadline, kNow + Seconds{43200});
  EXPECT_EQ(disabledSince(kNow, Seconds{43200}).deadline, kNow + Seconds{43200});
  EXPECT_EQ(disabledSince(kNow, Seconds{43199}).deadline, kNow + Seconds{43199});
}

TEST(HelperRevertPolicy, TakesTheShortestDurationForWhatIsNoNumber) {
  EXPECT_EQ(disabledSince(kNow, Seconds{std::nan("")}).deadline, kNow + Seconds{60});
  EXPECT_EQ(disabledSince(kNow, Seconds{std::numeric_limits<double>::infinity()}).deadline, kNow + Seconds{43200});
  EXPECT_EQ(disabledSince(kNow, Seconds{-std::numeric_limits<double>::infinity()}).deadline, kNow + Seconds{60});
}

TEST(HelperRevertPolicy, CountsADisableRequestAsAHeartbeat) { EXPECT_EQ(disabledSince(kNow).lastHeartbeat, kNow); }

TEST(HelperRevertPolicy, RevertsExactlyAtTheDeadline) {
  HelperRevertPolicy policy = disabledSince(kNow, Seconds{60});
  EXPECT_EQ(policy.tick(kNow + Seconds{59.999}), std::nullopt);
  EXPECT_TRUE(policy.sleepDisabled);
  EXPECT_EQ(policy.tick(kNow + Seconds{60}), PmsetCommand::restoreSleep);
  EXPECT_EQ(policy, (HelperRevertPolicy{.expired = true, .lastRevert = RevertReason::maxDuration}));
}

TEST(HelperRevertPolicy, KeepsTheHoldWhenTheLastHeartbeatIsExactlyNinetySecondsOld) {
  HelperRevertPolicy policy = disabledSince(kNow);
  policy.heartbeat(kNow + Seconds{30});
  const HelperRevertPolicy before = policy;
  EXPECT_EQ(policy.tick(kNow + Seconds{120}), std::nullopt);
  EXPECT_EQ(policy, before);
}

TEST(HelperRevertPolicy, RevertsWhenTheLastHeartbeatIsOlderThanNinetySeconds) {
  HelperRevertPolicy policy = disabledSince(kNow);
  policy.heartbeat(kNow + Seconds{30});
  EXPECT_EQ(policy.tick(kNow + Seconds{120.001}), PmsetCommand::restoreSleep);
  EXPECT_EQ(policy, (HelperRevertPolicy{.lastRevert = RevertReason::heartbeatLost}));
}

TEST(HelperRevertPolicy, RevertsADisableThatNoHeartbeatFollowed) {
  HelperRevertPolicy policy = disabledSince(kNow);
  EXPECT_EQ(policy.tick(kNow + Seconds{90}), std::nullopt);
  EXPECT_EQ(policy.tick(kNow + Seconds{90.001}), PmsetCommand::restoreSleep);
  EXPECT_EQ(policy.lastRevert, RevertReason::heartbeatLost);
}

TEST(HelperRevertPolicy, LooksAtTheDeadlineBeforeTheHeartbeat) {
  HelperRevertPolicy policy = disabledSince(kNow, Seconds{60});
  EXPECT_EQ(policy.tick(kNow + Seconds{1000}), PmsetCommand::restoreSleep);
  EXPECT_EQ(policy.lastRevert, RevertReason::maxDuration);
  EXPECT_TRUE(policy.expired);
}

TEST(HelperRevertPolicy, ChangesNothingOnADoubledTick) {
  HelperRevertPolicy policy = expiredAt(kNow);
  const HelperRevertPolicy before = policy;
  EXPECT_EQ(policy.tick(kNow), std::nullopt);
  EXPECT_EQ(policy, before);
}

TEST(HelperRevertPolicy, KeepsTheFirstDeadlineOnASecondDisable) {
  HelperRevertPolicy policy = disabledSince(kNow);
  EXPECT_EQ(policy.request(true, kNow + Seconds{50}, Seconds{43200}), RequestAnswer{RequestAccepted{}});
  EXPECT_EQ(policy.deadline, kNow + kHour);
  EXPECT_EQ(policy.lastHeartbeat, kNow + Seconds{50});
}

TEST(HelperRevertPolicy, RestoresWithoutAReasonWhenNothingWasDisabled) {
  HelperRevertPolicy policy{.lastRevert = RevertReason::connectionLost};
  EXPECT_EQ(policy.request(false, kNow, kHour), kRestore);
  EXPECT_EQ(policy, (HelperRevertPolicy{.lastRevert = RevertReason::connectionLost}));
}

TEST(HelperRevertPolicy, RefusesADisableAfterTheMaximumUntilSleepIsSwitchedOn) {
  HelperRevertPolicy policy = expiredAt(kNow);
  const HelperRevertPolicy before = policy;
  EXPECT_EQ(policy.request(true, kNow, kHour), RequestAnswer{RequestRefused{}});
  EXPECT_EQ(policy, before);
  EXPECT_EQ(policy.request(false, kNow, kHour), kRestore);
  EXPECT_EQ(policy.request(true, kNow, kHour), kDisable);
}

TEST(HelperRevertPolicy, NeverExpiresByALostConnection) {
  HelperRevertPolicy policy = disabledSince(kNow);
  EXPECT_EQ(policy.connectionLost(), PmsetCommand::restoreSleep);
  EXPECT_FALSE(policy.expired);
  EXPECT_EQ(policy.request(true, kNow, kHour), kDisable);
}

TEST(HelperRevertPolicy, NeverExpiresByLostHeartbeats) {
  HelperRevertPolicy policy = disabledSince(kNow);
  EXPECT_EQ(policy.tick(kNow + Seconds{91}), PmsetCommand::restoreSleep);
  EXPECT_FALSE(policy.expired);
  EXPECT_EQ(policy.request(true, kNow + Seconds{91}, kHour), kDisable);
}

TEST(HelperRevertPolicy, IgnoresAHeartbeatWhileNothingIsDisabled) {
  HelperRevertPolicy policy;
  policy.heartbeat(kNow);
  EXPECT_EQ(policy, HelperRevertPolicy{});
}

TEST(HelperRevertPolicy, TellsTheTimeLeftAndNeverLessThanNothing) {
  const HelperRevertPolicy policy = disabledSince(kNow, Seconds{60});
  EXPECT_EQ(policy.remaining(kNow), Seconds{60});
  EXPECT_EQ(policy.remaining(kNow + Seconds{59.5}), Seconds{0.5});
  EXPECT_EQ(policy.remaining(kNow + Seconds{60}), Seconds{0});
  EXPECT_EQ(policy.remaining(kNow + Seconds{61}), Seconds{0});
  EXPECT_EQ(HelperRevertPolicy{}.remaining(kNow), Seconds{0});
  EXPECT_EQ((HelperRevertPolicy{.sleepDisabled = true}.remaining(kNow)), Seconds{0});
  EXPECT_EQ((HelperRevertPolicy{.deadline = kNow + kHour}.remaining(kNow)), Seconds{0});
}

TEST(HelperRevertPolicy, TakesBackADisableButKeepsItsHeartbeat) {
  HelperRevertPolicy policy = disabledSince(kNow);
  policy.clearDisabled();
  EXPECT_EQ(policy, (HelperRevertPolicy{.lastHeartbeat = kNow}));
  EXPECT_EQ(policy.tick(kNow + Seconds{1000}), std::nullopt);
}

TEST(HelperRevertPolicy, ForgetsTheHeartbeatOfADisableTakenBackWithTheNextRestore) {
  HelperRevertPolicy policy = disabledSince(kNow);
  policy.clearDisabled();
  EXPECT_EQ(policy.request(false, kNow, kHour), kRestore);
  EXPECT_EQ(policy, HelperRevertPolicy{});
}

TEST(HelperRevertPolicy, HoldsOnWhileDisabledWithoutAnyHeartbeatOnRecord) {
  HelperRevertPolicy policy{.sleepDisabled = true, .deadline = kNow + kHour};
  EXPECT_EQ(policy.tick(kNow + Seconds{1000}), std::nullopt);
  EXPECT_TRUE(policy.sleepDisabled);
}

}  // namespace
}  // namespace brindle
