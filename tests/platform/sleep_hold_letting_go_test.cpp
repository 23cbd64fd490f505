#include <gtest/gtest.h>

#include "tests/platform/hold_builders.h"

namespace brindle {
namespace {

TEST(SleepHoldLettingGo, AsksToEnableAndEndsWithTheAnswer) {
  SleepHold hold = heldHold();
  const HoldAction enable = hold.release(at(10));
  EXPECT_EQ(shown(enable), "enable");
  EXPECT_EQ(hold.phase(), HoldPhase::lettingGo);
  static_cast<void>(hold.sleepAnswered(ticketOf(enable), yes("Sleep on"), at(10)));
  EXPECT_EQ(hold.phase(), HoldPhase::ended);
  EXPECT_EQ(hold.end(), HoldEnd::released);
  EXPECT_EQ(hold.problem(), "");
}

TEST(SleepHoldLettingGo, EndsAlsoWhenTheAnswerIsNegativeOrNone) {
  SleepHold failing = heldHold();
  static_cast<void>(failing.sleepAnswered(ticketOf(failing.release(at(10))), no("logind failed"), at(10)));
  EXPECT_EQ(failing.end(), HoldEnd::released);
  EXPECT_EQ(failing.phase(), HoldPhase::ended);
  EXPECT_EQ(failing.problem(), "logind failed");
  SleepHold lonely = heldHold();
  const HoldAction enable = lonely.release(at(10));
  static_cast<void>(lonely.sleepAnswered(ticketOf(enable), trouble(HelperProblemKind::unreachable), at(10)));
  EXPECT_EQ(lonely.phase(), HoldPhase::ended);
  EXPECT_EQ(lonely.problem(), "unreachable");
}

TEST(SleepHoldLettingGo, WaitsForTheAnswerNoLongerThanItsPatience) {
  SleepHold hold = heldHold();
  static_cast<void>(hold.release(at(10)));
  EXPECT_EQ(hold.nextAlarm(), at(12));
  static_cast<void>(hold.tick(at(11.999)));
  EXPECT_EQ(hold.phase(), HoldPhase::lettingGo);
  static_cast<void>(hold.tick(at(12)));
  EXPECT_EQ(hold.phase(), HoldPhase::ended);
  EXPECT_EQ(hold.problem(), "the helper has not answered");
}

TEST(SleepHoldLettingGo, HappensExactlyWhenTheTimeIsOver) {
  SleepHold hold = heldHold();
  static_cast<void>(hold.tick(at(3590)));
  EXPECT_EQ(hold.nextAlarm(), at(3600));
  EXPECT_EQ(shown(hold.tick(at(3599.999))), "nothing");
  const HoldAction enable = hold.tick(at(3600));
  EXPECT_EQ(shown(enable), "enable");
  static_cast<void>(hold.sleepAnswered(ticketOf(enable), yes("Sleep on"), at(3600)));
  EXPECT_EQ(hold.end(), HoldEnd::timeOver);
}

TEST(SleepHoldLettingGo, PrefersTheEndOfTheTimeToABeat) {
  SleepHold hold = heldHold();
  EXPECT_EQ(shown(hold.tick(at(100000))), "enable");
}

TEST(SleepHoldLettingGo, EndsARequestThatIsStillUnderWayWhenTheTimeIsOver) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{60}, false);
  const HoldAction enable = hold.tick(at(60));
  EXPECT_EQ(shown(enable), "enable");
  EXPECT_EQ(shown(hold.sleepAnswered(ticketOf(asked), yes(), at(60))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::lettingGo);
}

TEST(SleepHoldLettingGo, WithdrawsTheFirstRequest) {
  SleepHold hold;
  static_cast<void>(hold.begin(at(0), Seconds{60}, false));
  EXPECT_EQ(shown(hold.release(at(1))), "enable");
}

TEST(SleepHoldLettingGo, EndsAtOnceWhenNothingIsHeld) {
  SleepHold idle;
  EXPECT_EQ(shown(idle.release(at(0))), "nothing");
  EXPECT_EQ(idle.end(), HoldEnd::released);
  SleepHold waiting = heldHold();
  waiting.vanished(at(10));
  EXPECT_EQ(shown(waiting.release(at(11))), "nothing");
  EXPECT_EQ(waiting.end(), HoldEnd::released);
  SleepHold late = heldHold();
  late.vanished(at(3590));
  EXPECT_EQ(shown(late.tick(at(3600))), "nothing");
  EXPECT_EQ(late.end(), HoldEnd::timeOver);
}

TEST(SleepHoldLettingGo, KeepsItsFirstReason) {
  SleepHold hold = heldHold();
  const HoldAction enable = hold.release(at(10));
  EXPECT_EQ(shown(hold.tick(at(11))), "nothing");
  EXPECT_EQ(shown(hold.release(at(11))), "nothing");
  static_cast<void>(hold.sleepAnswered(ticketOf(enable), yes(), at(11)));
  EXPECT_EQ(shown(hold.release(at(12))), "nothing");
  EXPECT_EQ(hold.end(), HoldEnd::released);
}

TEST(SleepHoldLettingGo, StaysEndedWhateverHappens) {
  SleepHold hold = heldHold();
  const HoldAction enable = hold.release(at(10));
  static_cast<void>(hold.sleepAnswered(ticketOf(enable), yes(), at(10)));
  const SleepHold ended = hold;
  hold.vanished(at(20));
  EXPECT_EQ(shown(hold.appeared(at(20))), "nothing");
  EXPECT_EQ(shown(hold.pause()), "nothing");
  EXPECT_EQ(shown(hold.resume(at(20))), "nothing");
  EXPECT_EQ(shown(hold.tick(at(5000))), "nothing");
  EXPECT_EQ(shown(hold.heartbeatAnswered(ticketOf(enable), false, at(20))), "nothing");
  EXPECT_EQ(hold, ended);
}

TEST(SleepHoldPause, LetsGoAndAsksAgainForTheTimeLeft) {
  SleepHold hold = heldHold();
  EXPECT_EQ(shown(hold.pause()), "enable");
  EXPECT_EQ(hold.phase(), HoldPhase::paused);
  EXPECT_EQ(hold.nextAlarm(), at(3600));
  EXPECT_EQ(shown(hold.tick(at(500))), "nothing");
  EXPECT_EQ(shown(hold.resume(at(600))), "ask 3000");
}

TEST(SleepHoldPause, IgnoresTheAnswersOfBefore) {
  SleepHold hold;
  const HoldAction asked = hold.begin(at(0), Seconds{3600}, false);
  const HoldAction enable = hold.pause();
  EXPECT_EQ(shown(enable), "enable");
  static_cast<void>(hold.sleepAnswered(ticketOf(asked), yes(), at(1)));
  static_cast<void>(hold.sleepAnswered(ticketOf(enable), yes("Sleep on"), at(1)));
  EXPECT_EQ(hold.phase(), HoldPhase::paused);
}

TEST(SleepHoldPause, AsksForNothingWhenSleepIsOnAnyway) {
  SleepHold hold = heldHold();
  hold.vanished(at(10));
  EXPECT_EQ(shown(hold.pause()), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::paused);
  EXPECT_EQ(shown(hold.appeared(at(11))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::paused);
}

TEST(SleepHoldPause, CanStandAtTheBeginning) {
  SleepHold hold;
  EXPECT_EQ(shown(hold.begin(at(0), Seconds{3600}, true)), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::paused);
  EXPECT_EQ(shown(hold.resume(at(60))), "ask 3540");
}

TEST(SleepHoldPause, EndsWithItsTime) {
  SleepHold hold = heldHold();
  static_cast<void>(hold.pause());
  EXPECT_EQ(shown(hold.tick(at(3600))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::ended);
  EXPECT_EQ(hold.end(), HoldEnd::timeOver);
}

TEST(SleepHoldPause, DoesNotAskForATimeThatIsOver) {
  SleepHold hold = heldHold();
  static_cast<void>(hold.pause());
  EXPECT_EQ(shown(hold.resume(at(3600))), "nothing");
  EXPECT_EQ(hold.phase(), HoldPhase::paused);
  static_cast<void>(hold.tick(at(3600)));
  EXPECT_EQ(hold.end(), HoldEnd::timeOver);
}

TEST(SleepHoldPause, MeansNothingOutsideAHold) {
  SleepHold idle;
  EXPECT_EQ(shown(idle.pause()), "nothing");
  EXPECT_EQ(idle.phase(), HoldPhase::idle);
  SleepHold held = heldHold();
  EXPECT_EQ(shown(held.resume(at(10))), "nothing");
  EXPECT_EQ(held.phase(), HoldPhase::held);
  SleepHold going = heldHold();
  static_cast<void>(going.release(at(10)));
  EXPECT_EQ(shown(going.pause()), "nothing");
  EXPECT_EQ(going.phase(), HoldPhase::lettingGo);
}

TEST(SleepHoldTexts, NameEveryPhaseAndEndOnce) {
  EXPECT_EQ(allCases<HoldPhase>().size(), 7u);
  EXPECT_EQ(allCases<HoldEnd>().size(), 5u);
  EXPECT_EQ(allCases<HelperProblemKind>().size(), 3u);
  EXPECT_EQ(allCases<HelperPresence>().size(), 2u);
  for (const auto& row : allCases<HoldPhase>()) EXPECT_EQ(enumFrom<HoldPhase>(textOf(row.value)), row.value);
  for (const auto& row : allCases<HoldEnd>()) EXPECT_EQ(enumFrom<HoldEnd>(textOf(row.value)), row.value);
  for (const auto& row : allCases<HelperProblemKind>()) {
    EXPECT_EQ(enumFrom<HelperProblemKind>(textOf(row.value)), row.value);
  }
  for (const auto& row : allCases<HelperPresence>()) EXPECT_EQ(enumFrom<HelperPresence>(textOf(row.value)), row.value);
}

}  // namespace
}  // namespace brindle
