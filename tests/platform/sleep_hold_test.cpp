#include "platform/sleep_hold.h"

#include <gtest/gtest.h>

#include "tests/platform/hold_builders.h"

namespace brindle {
namespace {

using enum HelperProblemKind;

SleepHold waitingHold() {
  SleepHold hold = heldHold();
  hold.vanished(at(10));
  return hold;
}

TEST(SleepHold, AsksOnceAndThenBeats) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{3600}, false);
  EXPECT_EQ(shown(asked), "ask 3600");
  EXPECT_EQ(hold.phase(), HoldPhase::asking);
  EXPECT_EQ(shown(hold.sleepAnswered(ticketOf(asked), yes(), at(1))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::held);
  EXPECT_TRUE(hold.everHeld());
  EXPECT_EQ(hold.nextAlarm(), at(31));
  const HoldAction beat = hold.tick(at(31));
  EXPECT_EQ(shown(beat), "beat");
  EXPECT_EQ(shown(hold.heartbeatAnswered(ticketOf(beat), true, at(31.1))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::held);
  EXPECT_EQ(hold.nextAlarm(), at(61));
}

TEST(SleepHold, CanBeginOnlyOnce) {
  SleepHold hold = heldHold();
  const SleepHold before = hold;
  EXPECT_EQ(shown(hold.begin(at(5), Seconds{60}, false)), "nothing");
  EXPECT_EQ(hold, before);
}

TEST(SleepHold, BeatsExactlyAtTheIntervalAndNotBefore) {
  SleepHold hold = heldHold();
  EXPECT_EQ(shown(hold.tick(at(30.999))), "nothing");
  EXPECT_EQ(shown(hold.tick(at(31))), "beat");
  EXPECT_EQ(shown(hold.tick(at(31))), "nothing");
  EXPECT_EQ(shown(hold.tick(at(60.999))), "nothing");
  EXPECT_EQ(shown(hold.tick(at(61))), "beat");
}

TEST(SleepHold, BeatsOnceAfterTheMachineSleptThroughManyBeats) {
  SleepHold hold = heldHold();
  EXPECT_EQ(shown(hold.tick(at(1800))), "beat");
  EXPECT_EQ(shown(hold.tick(at(1800))), "nothing");
  EXPECT_EQ(hold.nextAlarm(), at(1830));
}

TEST(SleepHold, SharesAHoldThatIsThereAlready) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{60}, false);
  static_cast<void>(hold.sleepAnswered(ticketOf(asked), yes("Sleep already disabled"), at(0)));
  EXPECT_EQ(hold.phase(), HoldPhase::held);
}

TEST(SleepHold, AsksAgainAtOnceForTheTimeLeftWhenABeatIsAnsweredNo) {
  SleepHold hold = heldHold();
  const HoldAction beat = hold.tick(at(600));
  const HoldAction again = hold.heartbeatAnswered(ticketOf(beat), false, at(600));
  EXPECT_EQ(shown(again), "ask 3000");
  EXPECT_EQ(hold.phase(), HoldPhase::asking);
  static_cast<void>(hold.sleepAnswered(ticketOf(again), yes(), at(601)));
  EXPECT_EQ(hold.phase(), HoldPhase::held);
  EXPECT_EQ(hold.nextAlarm(), at(631));
}

TEST(SleepHold, EndsWhenTheFirstRequestMeetsAnExpiredHold) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{60}, false);
  EXPECT_EQ(shown(hold.sleepAnswered(ticketOf(asked), no("Max duration reached. Turn it off first."), at(0))),
            "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::ended);
  EXPECT_EQ(hold.end(), HoldEnd::maxDurationReached);
  EXPECT_EQ(hold.problem(), "Max duration reached. Turn it off first.");
  EXPECT_EQ(hold.problemKind(), std::nullopt);
}

TEST(SleepHold, EndsWhenALaterRequestMeetsAnExpiredHold) {
  SleepHold hold = heldHold();
  const HoldAction beat = hold.tick(at(31));
  const HoldAction again = hold.heartbeatAnswered(ticketOf(beat), false, at(31));
  static_cast<void>(hold.sleepAnswered(ticketOf(again), no("Max duration reached. Turn it off first."), at(32)));
  EXPECT_EQ(hold.end(), HoldEnd::maxDurationReached);
}

TEST(SleepHold, EndsWhenTheSwitchFailsAtTheFirstRequest) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{60}, false);
  static_cast<void>(hold.sleepAnswered(ticketOf(asked), no("logind failed"), at(0)));
  EXPECT_EQ(hold.end(), HoldEnd::failed);
  EXPECT_EQ(hold.problem(), "logind failed");
}

TEST(SleepHold, WaitsForTheNextBeatWhenTheSwitchFailsLater) {
  SleepHold hold = heldHold();
  const HoldAction beat = hold.tick(at(31));
  const HoldAction again = hold.heartbeatAnswered(ticketOf(beat), false, at(31));
  static_cast<void>(hold.sleepAnswered(ticketOf(again), no("logind failed"), at(32)));
  EXPECT_EQ(hold.phase(), HoldPhase::waiting);
  EXPECT_EQ(hold.nextAlarm(), at(62));
  EXPECT_EQ(hold.problem(), "logind failed");
}

TEST(SleepHold, EndsForEveryTroubleWithTheFirstRequest) {
  for (const auto& [kind, end] : {std::pair{notInstalled, HoldEnd::failed}, std::pair{unreachable, HoldEnd::failed},
                                  std::pair{refused, HoldEnd::refused}}) {
    SleepHold hold;
    const HoldAction asked = hold.begin(at(0), Seconds{60}, false);
    EXPECT_EQ(shown(hold.sleepAnswered(ticketOf(asked), trouble(kind), at(0))), "nothing");
    EXPECT_EQ(hold.phase(), HoldPhase::ended);
    EXPECT_EQ(hold.end(), end);
    EXPECT_EQ(hold.problem(), textOf(kind));
    EXPECT_EQ(hold.problemKind(), kind);
    EXPECT_EQ(hold.nextAlarm(), std::nullopt);
  }
}

TEST(SleepHold, AsksAgainAtTheNextBeatWhenABeatIsNotAnswered) {
  for (const HelperProblemKind kind : {notInstalled, unreachable}) {
    SleepHold hold = heldHold();
    const HoldAction beat = hold.tick(at(31));
    EXPECT_EQ(shown(hold.heartbeatAnswered(ticketOf(beat), trouble(kind), at(40))), "nothing");
    EXPECT_EQ(hold.phase(), HoldPhase::waiting);
    EXPECT_EQ(hold.nextAlarm(), at(70));
    EXPECT_EQ(shown(hold.tick(at(69.999))), "nothing");
    EXPECT_EQ(shown(hold.tick(at(70))), "ask 3530");
  }
}

TEST(SleepHold, KeepsAskingAtEveryBeatWhileNothingAnswers) {
  SleepHold hold = waitingHold();
  for (int round = 1; round <= 3; ++round) {
    const double now = 10 + 30 * round;
    const HoldAction asked = hold.tick(at(now));
    ASSERT_EQ(shown(asked), "ask " + std::to_string(3590 - 30 * round));
    static_cast<void>(hold.sleepAnswered(ticketOf(asked), trouble(unreachable), at(now)));
    ASSERT_EQ(hold.phase(), HoldPhase::waiting);
  }
}

TEST(SleepHold, EndsWhenABeatOrALaterRequestIsRefused) {
  SleepHold beaten = heldHold();
  static_cast<void>(beaten.heartbeatAnswered(ticketOf(beaten.tick(at(31))), trouble(refused), at(31)));
  EXPECT_EQ(beaten.end(), HoldEnd::refused);
  SleepHold asking = waitingHold();
  static_cast<void>(asking.sleepAnswered(ticketOf(asking.tick(at(40))), trouble(refused), at(40)));
  EXPECT_EQ(asking.end(), HoldEnd::refused);
}

TEST(SleepHold, WaitsWhenTheHelperVanishesAndAsksAtOnceWhenOneAppears) {
  SleepHold hold = heldHold();
  hold.vanished(at(10));
  EXPECT_EQ(hold.phase(), HoldPhase::waiting);
  EXPECT_EQ(hold.problem(), "the helper has ended");
  EXPECT_EQ(shown(hold.appeared(at(20))), "ask 3580");
}

TEST(SleepHold, AsksANewHelperAlsoWhenTheOldOneWentUnnoticed) {
  SleepHold hold = heldHold();
  EXPECT_EQ(shown(hold.appeared(at(20))), "ask 3580");
}

TEST(SleepHold, LeavesARequestThatIsUnderWayToItsOwnAnswer) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{60}, false);
  hold.vanished(at(0));
  EXPECT_EQ(shown(hold.appeared(at(0))), "nothing");
  static_cast<void>(hold.sleepAnswered(ticketOf(asked), yes(), at(1)));
  EXPECT_EQ(hold.phase(), HoldPhase::held);
}

TEST(SleepHold, IgnoresTheAnswerToAnOlderCall) {
  SleepHold hold = heldHold();
  const HoldAction first = hold.tick(at(31));
  const HoldAction second = hold.tick(at(61));
  EXPECT_EQ(shown(hold.heartbeatAnswered(ticketOf(first), false, at(61))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::held);
  EXPECT_EQ(shown(hold.heartbeatAnswered(ticketOf(second), false, at(61))), "ask 3539");
}

TEST(SleepHold, IgnoresTheBeatOfAHelperThatVanishedMeanwhile) {
  SleepHold hold = heldHold();
  const HoldAction beat = hold.tick(at(31));
  hold.vanished(at(31));
  EXPECT_EQ(shown(hold.heartbeatAnswered(ticketOf(beat), trouble(refused), at(31))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::waiting);
}

}  // namespace
}  // namespace brindle
