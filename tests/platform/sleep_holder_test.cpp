#include "platform/sleep_holder.h"

#include <gtest/gtest.h>

#include "tests/platform/hold_fakes.h"

namespace brindle {
namespace {

struct Holding {
  FakeHelperClient client;
  HandTimer timer;
  FakePowerGate gate;
  std::vector<HoldNews> news;
  SleepHolder holder{{.client = client, .timer = timer, .gate = gate},
                     [this](const HoldNews& item) { news.push_back(item); }};

  /// A hold of an hour that the helper has granted.
  void hold() {
    holder.hold(Seconds{3600});
    client.answer(SleepReply{true, "Sleep disabled"});
    news.clear();
    client.calls.clear();
  }
};

TEST(SleepHolder, HoldsBeatsAndLetsGo) {
  Holding test;
  test.holder.hold(Seconds{3600});
  test.client.answer(SleepReply{true, "Sleep disabled"});
  EXPECT_EQ(test.news, (std::vector<HoldNews>{{.phase = HoldPhase::held, .text = "Sleep disabled"}}));
  test.timer.pass(Seconds{30});
  test.client.beat(true);
  test.holder.letGo();
  test.client.answer(SleepReply{true, "Sleep on"});
  EXPECT_EQ(test.client.calls, (std::vector<std::string>{"disable 3600", "heartbeat", "enable"}));
  EXPECT_EQ(test.news.back(), (HoldNews{.phase = HoldPhase::ended, .end = HoldEnd::released}));
  EXPECT_EQ(test.news.size(), 2u);
}

TEST(SleepHolder, TellsNothingOfAHoldThatIsSharedAndAskedForAgain) {
  Holding test;
  test.hold();
  test.timer.pass(Seconds{30});
  test.client.beat(false);
  test.client.answer(SleepReply{true, "Sleep already disabled"});
  EXPECT_EQ(test.client.calls, (std::vector<std::string>{"heartbeat", "disable 3570"}));
  EXPECT_TRUE(test.news.empty());
}

TEST(SleepHolder, TellsOfAHelperThatEndsAndOfTheNextOne) {
  Holding test;
  test.hold();
  test.client.presence(HelperPresence::vanished);
  EXPECT_EQ(test.news.back(), (HoldNews{.phase = HoldPhase::waiting,
                                        .text = "the helper has ended",
                                        .problem = HelperProblemKind::unreachable}));
  test.client.presence(HelperPresence::appeared);
  test.client.answer(SleepReply{true, "Sleep disabled"});
  EXPECT_EQ(test.news.back().phase, HoldPhase::held);
  EXPECT_EQ(test.client.calls, (std::vector<std::string>{"disable 3600"}));
}

TEST(SleepHolder, TellsOnceHoweverOftenNothingAnswers) {
  Holding test;
  test.hold();
  test.timer.pass(Seconds{30});
  test.client.noBeat({HelperProblemKind::unreachable, "no bus"});
  for (int round = 0; round < 3; ++round) {
    test.timer.pass(Seconds{30});
    test.client.noAnswer({HelperProblemKind::unreachable, "no bus"});
  }
  EXPECT_EQ(test.news,
            (std::vector<HoldNews>{
                {.phase = HoldPhase::waiting, .text = "no bus", .problem = HelperProblemKind::unreachable}}));
}

TEST(SleepHolder, TellsWhyItCouldNotBegin) {
  Holding test;
  test.holder.hold(Seconds{3600});
  test.client.noAnswer({HelperProblemKind::refused, "not authorised"});
  EXPECT_EQ(test.news, (std::vector<HoldNews>{{.phase = HoldPhase::ended,
                                               .end = HoldEnd::refused,
                                               .text = "not authorised",
                                               .problem = HelperProblemKind::refused}}));
}

TEST(SleepHolder, LetsGoWhenItsTimeIsOverAndClearsTheLimit) {
  Holding test;
  test.hold();
  test.timer.pass(Seconds{3600});
  EXPECT_EQ(test.client.calls, (std::vector<std::string>{"enable"}));
  test.client.answer(SleepReply{true, "Sleep on"});
  EXPECT_EQ(test.news.back(), (HoldNews{.phase = HoldPhase::ended, .end = HoldEnd::timeOver}));
}

TEST(SleepHolder, EndsWithoutAnAnswerWhenTheHelperIsSilent) {
  Holding test;
  test.hold();
  test.holder.letGo();
  test.timer.pass(kLetGoPatience);
  EXPECT_EQ(test.news.back(),
            (HoldNews{.phase = HoldPhase::ended, .end = HoldEnd::released, .text = "the helper has not answered"}));
}

TEST(SleepHolder, LetsGoAtTheBatteryFloorAndHoldsAgainAboveIt) {
  Holding test;
  test.hold();
  test.gate.change({.mayHold = false, .why = "the battery is at 15 %"});
  EXPECT_EQ(test.client.calls, (std::vector<std::string>{"enable"}));
  EXPECT_EQ(test.news.back(), (HoldNews{.phase = HoldPhase::paused, .text = "the battery is at 15 %"}));
  test.client.answer(SleepReply{true, "Sleep on"});
  test.timer.pass(Seconds{600});
  EXPECT_EQ(test.client.calls.size(), 1u);
  test.gate.change({});
  EXPECT_EQ(test.client.calls.back(), "disable 3000");
  test.client.answer(SleepReply{true, "Sleep disabled"});
  EXPECT_EQ(test.news.back().phase, HoldPhase::held);
}

TEST(SleepHolder, AsksForNothingWhileTheGateIsClosedFromTheBeginning) {
  Holding test;
  test.gate.verdict = {.mayHold = false, .why = "too hot"};
  test.holder.hold(Seconds{3600});
  EXPECT_TRUE(test.client.calls.empty());
  EXPECT_EQ(test.news, (std::vector<HoldNews>{{.phase = HoldPhase::paused, .text = "too hot"}}));
}

TEST(SleepHolder, TakesNoCallsAfterItIsGone) {
  FakeHelperClient client;
  HandTimer timer;
  FakePowerGate gate;
  int told = 0;
  {
    SleepHolder holder({.client = client, .timer = timer, .gate = gate}, [&](const HoldNews&) { ++told; });
    holder.hold(Seconds{3600});
  }
  client.answer(SleepReply{true, "Sleep disabled"});
  client.presence(HelperPresence::vanished);
  gate.change({.mayHold = false});
  timer.pass(Seconds{3600});
  EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace brindle
