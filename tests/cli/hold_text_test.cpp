#include "cli/hold_text.h"

#include <gtest/gtest.h>

#include <string>

#include "logic/helper/lid_sleep_limits.h"

namespace brindle {
namespace {

std::string problemOf(const std::string& text) { return holdDuration(text).problem; }

TEST(HoldText, HoldsForFourHoursWhenNothingIsSaid) {
  EXPECT_EQ(holdDuration(std::nullopt), (HoldDuration{.duration = LidSleepLimits::defaultDuration}));
}

TEST(HoldText, TakesAnyDurationUpToTheLimit) {
  EXPECT_EQ(holdDuration("90s"), (HoldDuration{.duration = Seconds{90}}));
  EXPECT_EQ(holdDuration("1s"), (HoldDuration{.duration = Seconds{1}}));
  EXPECT_EQ(holdDuration("11h59m59s").duration, Seconds{43199});
  EXPECT_EQ(holdDuration("12h"), (HoldDuration{.duration = Seconds{43200}}));
}

TEST(HoldText, RefusesMoreThanTheLimitAndNothing) {
  EXPECT_EQ(problemOf("12h1s"), "--for: expected 12h at most, got \"12h1s\"");
  EXPECT_EQ(problemOf("0s"), "--for: expected more than nothing, got \"0s\"");
}

TEST(HoldText, SaysWhatADurationLooksLike) {
  EXPECT_EQ(problemOf("4"), "--for: expected a duration such as 90s, 45m, 4h or 1h30m, got \"4\"");
}

TEST(HoldText, LetsGoAtTwentyPercentWhenNothingIsSaid) {
  EXPECT_EQ(batteryFloorOf(std::nullopt), (BatteryFloor{.percent = 20}));
}

TEST(HoldText, TakesABatteryFloorFromFiveToNinety) {
  EXPECT_EQ(batteryFloorOf("5"), (BatteryFloor{.percent = 5}));
  EXPECT_EQ(batteryFloorOf("35"), (BatteryFloor{.percent = 35}));
  EXPECT_EQ(batteryFloorOf("90"), (BatteryFloor{.percent = 90}));
  EXPECT_EQ(batteryFloorOf("35%"), (BatteryFloor{.percent = 35}));
}

TEST(HoldText, RefusesEveryOtherBatteryFloor) {
  for (const std::string text : {"4", "91", "0", "-20", "", "%", "20%%", "20.5", " 20", "x", "99999999999999999999"}) {
    EXPECT_EQ(batteryFloorOf(text).problem,
              "--battery-floor: expected a percentage from 5 to 90, got \"" + text + "\"");
  }
}

TEST(HoldText, TellsAMissingHelperFromOneThatRefuses) {
  EXPECT_EQ(problemText({HelperProblemKind::notInstalled, "nothing provides it"}),
            "no helper to talk to: nothing provides it");
  EXPECT_EQ(problemText({HelperProblemKind::unreachable, "no bus"}), "no helper to talk to: no bus");
  EXPECT_EQ(problemText({HelperProblemKind::refused, "not authorised"}), "the helper refuses: not authorised");
}

TEST(HoldText, SaysWhatToDoAboutAnExpiredHold) {
  EXPECT_EQ(endText({.phase = HoldPhase::ended,
                     .end = HoldEnd::maxDurationReached,
                     .text = std::string(HelperReplyText::kMaxDurationReached)}),
            "sleep stays on: Max duration reached. Turn it off first. 'brindle sleep on' does that");
}

TEST(HoldText, GivesTheHelpersOwnReason) {
  EXPECT_EQ(endText({.phase = HoldPhase::ended, .end = HoldEnd::failed, .text = "logind failed"}),
            "sleep stays on: logind failed");
  EXPECT_EQ(endText({.phase = HoldPhase::ended,
                     .end = HoldEnd::refused,
                     .text = "not authorised",
                     .problem = HelperProblemKind::refused}),
            "the helper refuses: not authorised");
}

TEST(HoldText, TellsAPauseFromALoss) {
  EXPECT_EQ(interruptionText({.phase = HoldPhase::paused, .text = "the battery is at 15 %"}),
            "sleep is on for now: the battery is at 15 %");
  EXPECT_EQ(interruptionText({.phase = HoldPhase::waiting, .text = "the helper has ended"}),
            "sleep is on, asking again soon: the helper has ended");
  EXPECT_EQ(interruptionText({.phase = HoldPhase::paused}), "sleep is on for now");
}

TEST(BatteryFloor, TakesAPercentageFromFiveToNinety) {
  const auto percent = [](std::string text) { return batteryFloorOf(text).percent; };
  EXPECT_EQ(batteryFloorOf(std::nullopt), (BatteryFloor{.percent = 20}));
  EXPECT_EQ(percent("5"), 5);
  EXPECT_EQ(percent("90"), 90);
  EXPECT_EQ(percent("35%"), 35);
  for (const char* text : {"4", "91", "-5", "x", "", "%", "20%%", "20.5"}) {
    EXPECT_NE(batteryFloorOf(std::string(text)).problem, "") << text;
  }
}

}  // namespace
}  // namespace brindle
