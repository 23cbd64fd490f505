#include "cli/sleep_off.h"

#include <gtest/gtest.h>

#include <csignal>

#include "tests/cli/recorded_context.h"
#include "tests/platform/hold_fakes.h"

namespace brindle {
namespace {

/// `brindle sleep off --for 1h` against a helper that answers each request with the next of `replies`.
struct SleepOffTest : testing::Test {
  int run() {
    client.onCall = [this] {
      loop.post([this] {
        ASSERT_FALSE(replies.empty()) << client.calls.back();
        const auto reply = replies.front();
        replies.pop_front();
        if (reply) {
          client.answer(*reply);
        } else {
          client.noAnswer(reply.error());
        }
        if (afterReply) afterReply();
      });
    };
    return sleepOff(loop, {.client = client, .timer = timer, .gate = gate}, Seconds{3600}, recorded.context);
  }
  void replyOk(const std::string& text) { replies.emplace_back(SleepReply{true, text}); }

  EventLoop loop = *EventLoop::create();
  FakeHelperClient client;
  HandTimer timer;
  FakePowerGate gate;
  RecordedContext recorded;
  std::deque<HelperAnswer<SleepReply>> replies;
  std::function<void()> afterReply;
};

TEST_F(SleepOffTest, HoldsUntilInterruptedAndEndsIn130) {
  replyOk("Sleep disabled");
  replyOk("Sleep on");
  afterReply = [this] {
    afterReply = nullptr;
    ::raise(SIGINT);
  };
  EXPECT_EQ(run(), 130);
  EXPECT_EQ(client.calls, (std::vector<std::string>{"disable 3600", "enable"}));
  EXPECT_EQ(recorded.results.text, "Sleep is off for 1h; Ctrl-C switches it back on.\nSleep is on.\n");
  EXPECT_EQ(recorded.remarks.text, "");
}

TEST_F(SleepOffTest, EndsIn128AndTheNumberOfTheSignal) {
  for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) {
    replies.clear();
    replyOk("Sleep disabled");
    replyOk("Sleep on");
    afterReply = [this, signal] {
      afterReply = nullptr;
      ::raise(signal);
    };
    EXPECT_EQ(run(), 128 + signal);
    loop = *EventLoop::create();
  }
}

TEST_F(SleepOffTest, DoesNotWaitForTheAnswerAtTheSecondSignal) {
  client.onCall = [this] {
    loop.post([this] {
      if (client.calls.back() == "disable 3600") client.answer({true, "Sleep disabled"});
      ::raise(SIGINT);
    });
  };
  EXPECT_EQ(sleepOff(loop, {.client = client, .timer = timer, .gate = gate}, Seconds{3600}, recorded.context), 130);
  EXPECT_EQ(client.calls.back(), "enable");
  EXPECT_EQ(client.sleepPending.size(), 1u);
}

TEST_F(SleepOffTest, EndsInZeroWhenTheTimeIsOver) {
  replyOk("Sleep disabled");
  replyOk("Sleep on");
  afterReply = [this] {
    afterReply = nullptr;
    timer.pass(Seconds{3600});
  };
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(client.calls.back(), "enable");
}

TEST_F(SleepOffTest, EndsInOneWhenAnEarlierHoldHasUsedUpItsTime) {
  replies.emplace_back(SleepReply{false, "Max duration reached. Turn it off first."});
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(recorded.results.text, "");
  EXPECT_EQ(recorded.remarks.text,
            "brindle: sleep stays on: Max duration reached. Turn it off first. 'brindle sleep on' does that\n");
}

TEST_F(SleepOffTest, EndsInTwoForEveryOtherReason) {
  const auto ends = [this](const HelperAnswer<SleepReply>& answer) {
    replies.push_back(answer);
    const int code = run();
    loop = *EventLoop::create();
    return code;
  };
  EXPECT_EQ(ends(SleepReply{false, "logind failed"}), 2);
  EXPECT_EQ(ends(tl::make_unexpected(HelperProblem{HelperProblemKind::notInstalled, "a"})), 2);
  EXPECT_EQ(ends(tl::make_unexpected(HelperProblem{HelperProblemKind::refused, "b"})), 2);
  EXPECT_EQ(ends(tl::make_unexpected(HelperProblem{HelperProblemKind::unreachable, "c"})), 2);
  EXPECT_EQ(recorded.remarks.text,
            "brindle: sleep stays on: logind failed\n"
            "brindle: no helper to talk to: a\n"
            "brindle: the helper refuses: b\n"
            "brindle: no helper to talk to: c\n");
}

TEST_F(SleepOffTest, SaysThatSomebodyElseHoldsToo) {
  replyOk("Sleep already disabled");
  replyOk("Sleep on");
  afterReply = [this] {
    afterReply = nullptr;
    ::raise(SIGINT);
  };
  EXPECT_EQ(run(), 130);
  EXPECT_EQ(recorded.results.text.substr(0, 79),
            "Sleep is off for 1h; Ctrl-C switches it back on. Somebody else holds it off too");
}

TEST_F(SleepOffTest, TellsOfALostHoldAndOfItsReturn) {
  replyOk("Sleep disabled");
  replyOk("Sleep disabled");
  replyOk("Sleep on");
  int step = 0;
  afterReply = [this, &step] {
    if (++step == 1) {
      client.presence(HelperPresence::vanished);
      client.presence(HelperPresence::appeared);
    }
    if (step == 2) ::raise(SIGINT);
  };
  EXPECT_EQ(run(), 130);
  EXPECT_EQ(recorded.remarks.text, "brindle: sleep is on, asking again soon: the helper has ended\n");
  EXPECT_EQ(recorded.results.text,
            "Sleep is off for 1h; Ctrl-C switches it back on.\nSleep is off for 1h.\nSleep is on.\n");
}

TEST_F(SleepOffTest, DoesNotClaimThatSleepIsOnWhenTheAnswerIsMissing) {
  replyOk("Sleep disabled");
  replies.emplace_back(tl::make_unexpected(HelperProblem{HelperProblemKind::unreachable, "no bus"}));
  afterReply = [this] {
    afterReply = nullptr;
    ::raise(SIGTERM);
  };
  EXPECT_EQ(run(), 143);
  EXPECT_EQ(recorded.results.text, "Sleep is off for 1h; Ctrl-C switches it back on.\n");
  EXPECT_EQ(recorded.remarks.text, "brindle: let go without an answer: no bus\n");
}

TEST_F(SleepOffTest, PausesAtTheBatteryFloor) {
  gate.verdict = {.mayHold = false, .why = "the battery is at 15 %"};
  replyOk("Sleep disabled");
  replyOk("Sleep on");
  loop.post([this] { gate.change({}); });
  afterReply = [this] {
    afterReply = nullptr;
    ::raise(SIGINT);
  };
  EXPECT_EQ(run(), 130);
  EXPECT_EQ(recorded.remarks.text, "brindle: sleep is on for now: the battery is at 15 %\n");
}

}  // namespace
}  // namespace brindle
