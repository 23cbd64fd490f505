#include "cli/run_session.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "base/descriptor.h"
#include "tests/cli/recorded_context.h"
#include "tests/platform/hold_fakes.h"

namespace brindle {
namespace {

struct RunSessionTest : testing::Test {
  /// Runs the script while the fake helper answers as told.
  RunResult run(const std::string& script) { return runWords({"/bin/sh", "-c", script}); }
  RunResult runWords(const std::vector<std::string>& words) {
    // Not those of this process: an earlier test has left some blocked.
    sigemptyset(&recorded.context.signals.blocked);
    client.onCall = [this] {
      loop.post([this] {
        if (problem) return client.noAnswer(*problem);
        client.answer(client.calls.back() == "enable" ? SleepReply{true, "Sleep on"} : reply);
      });
    };
    return runHeld(loop, {.client = client, .timer = timer, .gate = gate},
                   {.words = words, .duration = Seconds{3600}, .bestEffort = bestEffort}, recorded.context);
  }

  /// A command that goes on until the writing end of `gateway` is closed.
  std::string untilClosed(int status) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    EXPECT_EQ(::fcntl(ends[1], F_SETFD, FD_CLOEXEC), 0);
    waiting = Descriptor(ends[0]);
    gateway = Descriptor(ends[1]);
    return "read line <&" + std::to_string(ends[0]) + "; exit " + std::to_string(status);
  }

  Descriptor waiting;
  Descriptor gateway;
  EventLoop loop = *EventLoop::create();
  FakeHelperClient client;
  HandTimer timer;
  FakePowerGate gate;
  RecordedContext recorded;
  SleepReply reply = {true, "Sleep disabled"};
  std::optional<HelperProblem> problem;
  bool bestEffort = false;
};

const std::vector<std::string> kHeldAndLetGo = {"disable 3600", "enable"};

TEST_F(RunSessionTest, HoldsWhileTheCommandRunsAndPassesItsStatusOn) {
  EXPECT_EQ(run("exit 7"), (RunResult{.child = ChildEnd{.exitStatus = 7}}));
  EXPECT_EQ(client.calls, kHeldAndLetGo);
  EXPECT_EQ(recorded.results.text + recorded.remarks.text, "");
}

TEST_F(RunSessionTest, TellsTheSignalThatKilledTheCommand) {
  EXPECT_EQ(run("kill -KILL $$"), (RunResult{.child = ChildEnd{.killedBy = SIGKILL}}));
  EXPECT_EQ(client.calls, kHeldAndLetGo);
}

TEST_F(RunSessionTest, LetsGoWhenTheCommandCannotBeStarted) {
  EXPECT_EQ(runWords({"no-such-program-anywhere"}), (RunResult{.code = 127}));
  EXPECT_EQ(client.calls, kHeldAndLetGo);
  EXPECT_EQ(recorded.remarks.text, "brindle: run: no-such-program-anywhere: No such file or directory\n");
}

TEST_F(RunSessionTest, EndsIn126WhenTheCommandIsNotExecutable) {
  EXPECT_EQ(runWords({"/etc/passwd"}), (RunResult{.code = 126}));
  EXPECT_EQ(client.calls, kHeldAndLetGo);
}

TEST_F(RunSessionTest, DoesNotRunTheCommandWithoutAHold) {
  problem = HelperProblem{HelperProblemKind::notInstalled, "nothing provides it"};
  EXPECT_EQ(run("exit 0"), (RunResult{.code = 2}));
  EXPECT_EQ(recorded.remarks.text, "brindle: no helper to talk to: nothing provides it\n");
}

TEST_F(RunSessionTest, DoesNotRunTheCommandAfterAnExpiredHold) {
  reply = {false, "Max duration reached. Turn it off first."};
  EXPECT_EQ(run("exit 0"), (RunResult{.code = 2}));
}

TEST_F(RunSessionTest, RunsTheCommandAnywayWithBestEffort) {
  bestEffort = true;
  problem = HelperProblem{HelperProblemKind::unreachable, "no bus"};
  EXPECT_EQ(run("exit 3"), (RunResult{.child = ChildEnd{.exitStatus = 3}}));
  EXPECT_EQ(recorded.remarks.text, "brindle: no helper to talk to: no bus; the command runs without a hold\n");
}

TEST_F(RunSessionTest, GoesOnWhenTheTimeIsOver) {
  loop.post([this] {
    loop.post([this] {
      timer.pass(Seconds{3600});
      gateway.reset();
    });
  });
  EXPECT_EQ(run(untilClosed(4)), (RunResult{.child = ChildEnd{.exitStatus = 4}}));
  EXPECT_EQ(client.calls, kHeldAndLetGo);
  EXPECT_EQ(recorded.remarks.text, "brindle: the time is over, sleep is on; the command goes on\n");
}

TEST_F(RunSessionTest, GoesOnWhenTheHelperRefusesLater) {
  loop.post([this] {
    loop.post([this] {
      timer.pass(Seconds{30});
      client.noBeat({HelperProblemKind::refused, "not any more"});
      gateway.reset();
    });
  });
  EXPECT_EQ(run(untilClosed(4)), (RunResult{.child = ChildEnd{.exitStatus = 4}}));
  EXPECT_EQ(recorded.remarks.text, "brindle: the helper refuses: not any more; the command goes on without a hold\n");
}

TEST_F(RunSessionTest, RunsTheCommandWhileTheBatteryForbidsAHold) {
  gate.verdict = {.mayHold = false, .why = "the battery is at 15 %"};
  EXPECT_EQ(run("exit 5"), (RunResult{.child = ChildEnd{.exitStatus = 5}}));
  EXPECT_EQ(recorded.remarks.text, "brindle: sleep is on for now: the battery is at 15 %\n");
  EXPECT_TRUE(client.calls.empty());
}

TEST_F(RunSessionTest, TellsOfAPauseAndOfTheReturnWhileTheCommandGoesOn) {
  loop.post([this] {
    loop.post([this] {
      gate.change({.mayHold = false, .why = "the battery is at 15 %"});
      loop.post([this] {
        gate.change({});
        loop.post([this] { gateway.reset(); });
      });
    });
  });
  EXPECT_EQ(run(untilClosed(6)), (RunResult{.child = ChildEnd{.exitStatus = 6}}));
  EXPECT_EQ(client.calls, (std::vector<std::string>{"disable 3600", "enable", "disable 3600", "enable"}));
  EXPECT_EQ(recorded.remarks.text,
            "brindle: sleep is on for now: the battery is at 15 %\nbrindle: sleep is off again\n");
}

TEST_F(RunSessionTest, PassesOnWhatAProcessSends) {
  // The shell asks its parent, which is this process, for the signal and then dies of it.
  EXPECT_EQ(run("trap 'exit 9' USR1; kill -USR1 $PPID; for turn in $(seq 100); do sleep 0.1; done"),
            (RunResult{.child = ChildEnd{.exitStatus = 9}}));
  EXPECT_EQ(client.calls, kHeldAndLetGo);
}

TEST_F(RunSessionTest, LetsGoWhenItIsInterruptedBeforeTheCommandRuns) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    (void)std::signal(number, SIG_DFL);  // what is ignored is not watched
    client.calls.clear();
    client.sleepPending.clear();
    client.onCall = nullptr;
    sigemptyset(&recorded.context.signals.blocked);
    EventLoop turn = *EventLoop::create();
    turn.post([number] { ::raise(number); });
    turn.post([&] {
      client.onCall = [&] { turn.post([this] { client.sleepPending.back()(SleepReply{true, "Sleep on"}); }); };
    });
    const RunResult result =
        runHeld(turn, {.client = client, .timer = timer, .gate = gate},
                {.words = {"/bin/sh", "-c", "exit 0"}, .duration = Seconds{3600}}, recorded.context);
    EXPECT_EQ(result, (RunResult{.code = 128 + number}));
    EXPECT_EQ(client.calls, kHeldAndLetGo);
  }
}

}  // namespace
}  // namespace brindle
