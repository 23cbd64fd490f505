#include "helper/logind_switch.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>

#include "tests/helper/helper_fakes.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kCall = R"(Inhibit("sleep:handle-lid-switch", "Brindle", "Coding agents are working", "block"))";

/// Gives out the writing ends of pipes, so that a test sees whether a lock is still held.
class ScriptedInhibitor final : public Inhibitor {
 public:
  Result<Descriptor> inhibit(const InhibitorRequest& request) override {
    requests.push_back(request);
    if (refusal) return tl::make_unexpected(*refusal);
    int ends[2];
    if (pipe(ends) != 0 || fcntl(ends[0], F_SETFL, O_NONBLOCK) != 0) return fail(errno, "pipe");
    reading.emplace_back(ends[0]);
    return Descriptor(ends[1]);
  }
  Result<bool> isListed(const InhibitorRequest&) override {
    ++lookups;
    if (silence) return tl::make_unexpected(*silence);
    return listed;
  }
  /// Whether the lock number `index` is still open somewhere.
  bool isHeld(std::size_t index) {
    char byte = 0;
    return read(reading.at(index).get(), &byte, 1) < 0 && errno == EAGAIN;
  }

  std::vector<InhibitorRequest> requests;
  std::vector<Descriptor> reading;
  std::optional<Failure> refusal;
  std::optional<Failure> silence;
  bool listed = true;
  int lookups = 0;
};

struct LogindSwitchTest : ::testing::Test {
  bool disable() { return sleepSwitch.run(PmsetCommand::disableSleep, std::nullopt); }
  bool restore(RevertReason reason) { return sleepSwitch.run(PmsetCommand::restoreSleep, reason); }

  ScriptedInhibitor inhibitor;
  RecordingLog log;
  LogindSwitch sleepSwitch{inhibitor, log};
};
using LogindSwitchHold = LogindSwitchTest;
using LogindSwitchRecheck = LogindSwitchTest;

TEST_F(LogindSwitchHold, TakesOneBlockingLockAndClosesIt) {
  EXPECT_TRUE(disable());
  EXPECT_THAT(inhibitor.requests, ElementsAre(InhibitorRequest{"sleep:handle-lid-switch", "Brindle",
                                                               "Coding agents are working", "block"}));
  EXPECT_TRUE(inhibitor.isHeld(0));
  EXPECT_TRUE(restore(RevertReason::turnedOff));
  EXPECT_FALSE(inhibitor.isHeld(0));
  EXPECT_THAT(log.lines, ElementsAre(kCall + " exit 0 reason request", "close(" + kCall + ") exit 0 reason turnedOff"));
}

TEST_F(LogindSwitchHold, SaysThatItHadNothingToClose) {
  EXPECT_TRUE(restore(RevertReason::helperStart));
  EXPECT_THAT(log.lines, ElementsAre("close(no lock) exit 0 reason helperStart"));
  EXPECT_THAT(inhibitor.requests, IsEmpty());
}

TEST_F(LogindSwitchHold, FailsWithTheReasonInTheLogWhenNoLockIsGiven) {
  inhibitor.refusal = Failure{.code = EACCES, .doing = "org.freedesktop.DBus.Error.AccessDenied: no"};
  EXPECT_FALSE(disable());
  EXPECT_THAT(log.lines, ElementsAre("error: logind gave no lock: org.freedesktop.DBus.Error.AccessDenied: no",
                                     kCall + " exit 13 reason request"));
  inhibitor.listed = false;
  sleepSwitch.recheck();
  EXPECT_EQ(inhibitor.lookups, 0) << "a hold that never came about is not looked after";
}

TEST_F(LogindSwitchHold, KeepsOneLockWhenAskedTwice) {
  EXPECT_TRUE(disable());
  EXPECT_TRUE(disable());
  EXPECT_FALSE(inhibitor.isHeld(0));
  EXPECT_TRUE(inhibitor.isHeld(1));
}

TEST_F(LogindSwitchHold, EndsWithTheSwitch) {
  {
    LogindSwitch other(inhibitor, log);
    ASSERT_TRUE(other.run(PmsetCommand::disableSleep, std::nullopt));
    ASSERT_TRUE(inhibitor.isHeld(0));
  }
  EXPECT_FALSE(inhibitor.isHeld(0));
}

TEST_F(LogindSwitchHold, IsCalledLogind) { EXPECT_EQ(sleepSwitch.name(), "logind"); }

TEST_F(LogindSwitchRecheck, DoesNothingWhileSleepIsOn) {
  sleepSwitch.recheck();
  EXPECT_EQ(inhibitor.lookups, 0);
  EXPECT_FALSE(sleepSwitch.needsRecheck());
}

TEST_F(LogindSwitchRecheck, LeavesAListedLockAlone) {
  ASSERT_TRUE(disable());
  sleepSwitch.recheck();
  EXPECT_EQ(inhibitor.lookups, 1);
  EXPECT_EQ(inhibitor.requests.size(), 1U);
  EXPECT_TRUE(inhibitor.isHeld(0));
}

TEST_F(LogindSwitchRecheck, TakesALostLockAgain) {
  ASSERT_TRUE(disable());
  inhibitor.listed = false;
  log.lines.clear();
  sleepSwitch.recheck();
  EXPECT_FALSE(inhibitor.isHeld(0));
  EXPECT_TRUE(inhibitor.isHeld(1));
  EXPECT_FALSE(sleepSwitch.needsRecheck());
  EXPECT_THAT(log.lines,
              ElementsAre("error: logind has lost the lock, taking it again", kCall + " exit 0 reason request"));
}

TEST_F(LogindSwitchRecheck, IsWantedAgainWhenTheLockIsRefused) {
  ASSERT_TRUE(disable());
  inhibitor.listed = false;
  inhibitor.refusal = Failure{.code = EBUSY, .doing = "suspending"};
  sleepSwitch.recheck();
  EXPECT_TRUE(sleepSwitch.needsRecheck());
  inhibitor.refusal.reset();
  sleepSwitch.recheck();
  EXPECT_FALSE(sleepSwitch.needsRecheck());
  EXPECT_TRUE(inhibitor.isHeld(1));
}

TEST_F(LogindSwitchRecheck, IsWantedAgainWhenNobodyAnswers) {
  ASSERT_TRUE(disable());
  inhibitor.silence = Failure{.code = ETIMEDOUT, .doing = "silence"};
  sleepSwitch.recheck();
  EXPECT_TRUE(sleepSwitch.needsRecheck());
  EXPECT_EQ(inhibitor.requests.size(), 1U) << "unknown is not lost";
  EXPECT_TRUE(inhibitor.isHeld(0));
}

TEST_F(LogindSwitchRecheck, IsNoLongerWantedOnceSleepIsOn) {
  ASSERT_TRUE(disable());
  inhibitor.silence = Failure{.code = ETIMEDOUT, .doing = "silence"};
  sleepSwitch.recheck();
  ASSERT_TRUE(sleepSwitch.needsRecheck());
  EXPECT_TRUE(restore(RevertReason::connectionLost));
  EXPECT_FALSE(sleepSwitch.needsRecheck());
  sleepSwitch.recheck();
  EXPECT_EQ(inhibitor.lookups, 1);
}

}  // namespace
}  // namespace brindle
