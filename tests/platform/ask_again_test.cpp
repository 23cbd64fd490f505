#include "platform/ask_again.h"

#include <gmock/gmock.h>

#include "tests/platform/hold_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const HelperProblem kGone{HelperProblemKind::unreachable, "the helper ended before it answered"};
const SleepRequest kOff{.disabled = true, .maxDuration = Seconds{600}};
const SleepRequest kOn{.disabled = false};

struct AskAgainTest : ::testing::Test {
  void ask(const SleepRequest& request) {
    again.ask(request, [this](const HelperAnswer<SleepReply>& answer) {
      answers.push_back(answer ? answer->message : answer.error().text);
    });
  }

  FakeHelperClient helper;
  Seconds now{1000};
  std::vector<std::string> answers;
  AskAgain again{[this](const SleepRequest& request, HelperClient::SleepAnswered answered) {
                   helper.setSleepDisabled(request, std::move(answered));
                 },
                 [this] { return now; }};
};

TEST_F(AskAgainTest, GivesTheAnswerOfAHelperThatLives) {
  ask(kOff);
  EXPECT_THAT(answers, IsEmpty());
  helper.answer({.ok = true, .message = "Sleep disabled"});
  EXPECT_THAT(answers, ElementsAre("Sleep disabled"));
  EXPECT_THAT(helper.calls, ElementsAre("disable 600"));
}

TEST_F(AskAgainTest, AsksTheNextHelperWhenTheFirstOneWasEndingItself) {
  ask(kOff);
  helper.noAnswer(kGone);
  EXPECT_THAT(answers, IsEmpty());
  helper.answer({.ok = true, .message = "Sleep disabled"});
  EXPECT_THAT(answers, ElementsAre("Sleep disabled"));
  EXPECT_THAT(helper.calls, ElementsAre("disable 600", "disable 600"));
}

TEST_F(AskAgainTest, AsksNoThirdTime) {
  ask(kOff);
  helper.noAnswer(kGone);
  helper.noAnswer(kGone);
  EXPECT_THAT(answers, ElementsAre(kGone.text));
  EXPECT_THAT(helper.calls, ElementsAre("disable 600", "disable 600"));
}

TEST_F(AskAgainTest, TakesARefusalAtItsWord) {
  for (const auto kind : {HelperProblemKind::refused, HelperProblemKind::notInstalled}) {
    answers.clear();
    helper.calls.clear();
    ask(kOff);
    helper.noAnswer({kind, "no"});
    EXPECT_THAT(answers, ElementsAre("no")) << textOf(kind);
    EXPECT_THAT(helper.calls, ElementsAre("disable 600")) << textOf(kind);
  }
}

TEST_F(AskAgainTest, TakesANegativeAnswerAsAnAnswer) {
  ask(kOff);
  helper.answer({.ok = false, .message = "logind failed"});
  EXPECT_THAT(answers, ElementsAre("logind failed"));
  EXPECT_THAT(helper.calls, ElementsAre("disable 600"));
}

TEST_F(AskAgainTest, AsksOnlyOnceToSwitchSleepOn) {
  ask(kOn);
  helper.noAnswer(kGone);
  EXPECT_THAT(answers, ElementsAre(kGone.text));
  EXPECT_THAT(helper.calls, ElementsAre("enable"));
}

TEST_F(AskAgainTest, DoesNotRepeatARequestThatAnotherOneHasReplaced) {
  ask(kOff);
  ask(kOn);
  helper.noAnswer(kGone);
  EXPECT_THAT(answers, ElementsAre(kGone.text));
  EXPECT_THAT(helper.calls, ElementsAre("disable 600", "enable")) << "sleep would be off after it was switched on";
}

TEST_F(AskAgainTest, DoesNotRepeatARequestAfterFiveSeconds) {
  ask(kOff);
  now += Seconds{4.999};
  helper.noAnswer(kGone);
  EXPECT_THAT(helper.calls, ElementsAre("disable 600", "disable 600"));
  helper.noAnswer(kGone);
  helper.calls.clear();
  ask(kOff);
  now += Seconds{5};
  helper.noAnswer(kGone);
  EXPECT_THAT(answers, ElementsAre(kGone.text, kGone.text));
  EXPECT_THAT(helper.calls, ElementsAre("disable 600"));
}

}  // namespace
}  // namespace brindle
