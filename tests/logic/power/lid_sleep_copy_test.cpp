#include "logic/power/lid_sleep_copy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace brindle {
namespace {

using LidSleepCopy::detail;
constexpr LidSleepCopy::Shown kEnabled{.enabled = true, .active = false};
constexpr LidSleepCopy::Shown kDisabled{.enabled = false, .active = false};
constexpr Seconds kFourHours{14400};

TEST(LidSleepCopy, LabelsTheToggle) {
  EXPECT_EQ(LidSleepCopy::toggleLabel(true), "On");
  EXPECT_EQ(LidSleepCopy::toggleLabel(false), "Off");
}

TEST(LidSleepCopy, SaysForHowLongItWouldDisableSleep) {
  EXPECT_EQ(detail(HelperInstallState::ready, kEnabled, kFourHours),
            "Disables sleep only while every AI agent you run is working, for 4 h at most.");
}

TEST(LidSleepCopy, RoundsHalfAnHourUp) {
  EXPECT_EQ(detail(HelperInstallState::ready, kEnabled, Seconds{5400}),
            "Disables sleep only while every AI agent you run is working, for 2 h at most.");
  EXPECT_EQ(detail(HelperInstallState::ready, kEnabled, Seconds{5399}),
            "Disables sleep only while every AI agent you run is working, for 1 h at most.");
}

TEST(LidSleepCopy, SaysWhenSleepComesBackWhileItIsDisabled) {
  const std::string expected =
      "Sleep is disabled, so a closed lid doesn't sleep the Mac. Turns back on when agents finish, at the battery "
      "floor "
      "or heat limit, when Brindle quits, or after 12 h.";
  EXPECT_EQ(detail(HelperInstallState::ready, {.enabled = true, .active = true}, Seconds{43200}), expected);
  EXPECT_EQ(detail(HelperInstallState::ready, {.enabled = false, .active = true}, Seconds{43200}), expected);
}

TEST(LidSleepCopy, InvitesToTurnItOnWhenReadyButOff) {
  EXPECT_EQ(detail(HelperInstallState::ready, kDisabled, kFourHours),
            "Turn it on to keep the Mac awake with the lid closed while agents work.");
}

TEST(LidSleepCopy, SaysWhatIsMissingWhateverTheSwitches) {
  for (const LidSleepCopy::Shown shown : {kEnabled, kDisabled, LidSleepCopy::Shown{true, true}}) {
    EXPECT_EQ(detail(HelperInstallState::notInstalled, shown, kFourHours),
              "Install the helper to keep the Mac awake with the lid closed, on battery too. macOS asks an admin to "
              "allow it once.");
    EXPECT_EQ(detail(HelperInstallState::needsApproval, shown, kFourHours),
              "Allow Brindle in System Settings > General > Login Items, then come back.");
    EXPECT_EQ(detail(HelperInstallState::unavailable, shown, kFourHours),
              "This build has no helper. Install Brindle from the DMG to use it.");
  }
}

TEST(LidSleepCopy, WritesAnyDurationWithoutFailing) {
  for (const double odd : {std::nan(""), 1e300, -1e300}) {
    EXPECT_TRUE(detail(HelperInstallState::ready, kEnabled, Seconds{odd}).ends_with(" h at most."));
  }
}

}  // namespace
}  // namespace brindle
