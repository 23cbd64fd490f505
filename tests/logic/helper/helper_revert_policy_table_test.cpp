// The table of states, one test a row.
#include <gtest/gtest.h>

#include <vector>

#include "logic/helper/helper_revert_policy.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(5'000);
constexpr Date kDeadline = kNow + Seconds{600};
constexpr Seconds kHour{3600};
constexpr auto kEarlierReason =
    RevertReason::appQuit;  // set by nothing in the policy, so it shows when it is left alone
const RequestAnswer kRestore = RequestAcceptedWithCommand{PmsetCommand::restoreSleep};

HelperRevertPolicy holding(bool expired) {
  return {.sleepDisabled = true,
          .deadline = kDeadline,
          .lastHeartbeat = kNow,
          .expired = expired,
          .lastRevert = kEarlierReason};
}

HelperRevertPolicy idle(bool expired) { return {.expired = expired, .lastRevert = kEarlierReason}; }

HelperRevertPolicy reverted(bool expired, RevertReason reason) { return {.expired = expired, .lastRevert = reason}; }

std::vector<HelperRevertPolicy> everyState() { return {idle(false), idle(true), holding(false), holding(true)}; }

TEST(HelperRevertPolicyTable, RestoresAtEveryStartFromAnyState) {
  for (HelperRevertPolicy policy : everyState()) {
    EXPECT_EQ(policy.helperStarted(), PmsetCommand::restoreSleep);
    EXPECT_EQ(policy, reverted(false, RevertReason::helperStart));
  }
}

TEST(HelperRevertPolicyTable, DisablesWhenAskedWhileIdle) {
  HelperRevertPolicy policy = idle(false);
  EXPECT_EQ(policy.request(true, kNow, Seconds{600}),
            RequestAnswer{RequestAcceptedWithCommand{PmsetCommand::disableSleep}});
  EXPECT_EQ(policy, holding(false));
}

TEST(HelperRevertPolicyTable, RefusesWhenAskedWhileExpired) {
  HelperRevertPolicy policy = idle(true);
  EXPECT_EQ(policy.request(true, kNow, kHour), RequestAnswer{RequestRefused{}});
  EXPECT_EQ(policy, idle(true));
}

TEST(HelperRevertPolicyTable, RefreshesTheHeartbeatWhenAskedAgain) {
  HelperRevertPolicy policy = holding(false);
  EXPECT_EQ(policy.request(true, kNow + Seconds{7}, kHour), RequestAnswer{RequestAccepted{}});
  HelperRevertPolicy expected = holding(false);
  expected.lastHeartbeat = kNow + Seconds{7};
  EXPECT_EQ(policy, expected);
}

TEST(HelperRevertPolicyTable, RestoresWithTurnedOffWhenSwitchedOnWhileHolding) {
  for (const bool expired : {false, true}) {
    HelperRevertPolicy policy = holding(expired);
    EXPECT_EQ(policy.request(false, kNow, kHour), kRestore);
    EXPECT_EQ(policy, reverted(false, RevertReason::turnedOff));
  }
}

TEST(HelperRevertPolicyTable, RestoresAndKeepsTheReasonWhenSwitchedOnWhileIdle) {
  for (const bool expired : {false, true}) {
    HelperRevertPolicy policy = idle(expired);
    EXPECT_EQ(policy.request(false, kNow, kHour), kRestore);
    EXPECT_EQ(policy, idle(false));
  }
}

TEST(HelperRevertPolicyTable, ExpiresWhenATickFindsTheDeadlineReached) {
  for (const bool expired : {false, true}) {
    HelperRevertPolicy policy = holding(expired);
    EXPECT_EQ(policy.tick(kDeadline), PmsetCommand::restoreSleep);
    EXPECT_EQ(policy, reverted(true, RevertReason::maxDuration));
  }
}

TEST(HelperRevertPolicyTable, KeepsExpiryAsItIsWhenATickFindsTheHeartbeatTooOld) {
  for (const bool expired : {false, true}) {
    HelperRevertPolicy policy = holding(expired);
    EXPECT_EQ(policy.tick(kNow + Seconds{91}), PmsetCommand::restoreSleep);
    EXPECT_EQ(policy, reverted(expired, RevertReason::heartbeatLost));
  }
}

TEST(HelperRevertPolicyTable, KeepsExpiryAsItIsWhenAConnectionIsLost) {
  for (const bool expired : {false, true}) {
    HelperRevertPolicy policy = holding(expired);
    EXPECT_EQ(policy.connectionLost(), PmsetCommand::restoreSleep);
    EXPECT_EQ(policy, reverted(expired, RevertReason::connectionLost));
  }
}

TEST(HelperRevertPolicyTable, DoesNothingOnATickOrALostConnectionWhileIdle) {
  for (const bool expired : {false, true}) {
    HelperRevertPolicy policy = idle(expired);
    EXPECT_EQ(policy.tick(kDeadline + kHour), std::nullopt);
    EXPECT_EQ(policy.connectionLost(), std::nullopt);
    EXPECT_EQ(policy, idle(expired));
  }
}

}  // namespace
}  // namespace brindle
