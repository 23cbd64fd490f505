#include "logic/power/keep_awake_copy.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using KeepAwakeCopy::detail;
using KeepAwakeCopy::names;
using KeepAwakeCopy::notificationTitle;
using KeepAwakeCopy::statusLine;
constexpr KeepAwakeRules kRules{.enabled = true, .batteryFloor = 35};

TEST(KeepAwakeCopy, JoinsNamesAsASentenceDoes) {
  EXPECT_EQ(names({}), "");
  EXPECT_EQ(names({"a"}), "a");
  EXPECT_EQ(names({"a", "b"}), "a and b");
  EXPECT_EQ(names({"a", "b", "c"}), "a, b and c");
  EXPECT_EQ(names({"a", "b", "c", "d"}), "a, b, c and d");
}

TEST(KeepAwakeCopy, DropsRepeatedNamesAndKeepsTheirOrder) {
  EXPECT_EQ(names({"a", "b", "a"}), "a and b");
  EXPECT_EQ(names({"b", "b", "b"}), "b");
  EXPECT_EQ(names({"c", "a", "c", "b", "a"}), "c, a and b");
}

TEST(KeepAwakeCopy, CountsRepeatsInTheNotificationTitle) {
  EXPECT_EQ(notificationTitle({"a"}), "Brindle: keeping awake while a works");
  EXPECT_EQ(notificationTitle({"a", "a"}), "Brindle: keeping awake while a work");
  EXPECT_EQ(notificationTitle({"a", "b", "a"}), "Brindle: keeping awake while a and b work");
}

TEST(KeepAwakeCopy, HasALineForEachStatus) {
  EXPECT_EQ(statusLine(KeepAwakeHolding{{"a", "b", "a"}}), "Awake for a and b");
  EXPECT_EQ(statusLine(KeepAwakeReleasedBattery{18, 20}), "Let go at 18% battery");
  EXPECT_EQ(statusLine(KeepAwakeOff{}), "Keep awake is off");
  EXPECT_EQ(statusLine(KeepAwakeWaiting{}), "Ready, no agent is working");
}

TEST(KeepAwakeCopy, WritesTheHeatInLowerCase) {
  EXPECT_EQ(statusLine(KeepAwakeReleasedThermal{ThermalLevel::serious}), "Let go, the Mac is serious");
  EXPECT_EQ(statusLine(KeepAwakeReleasedThermal{ThermalLevel::critical}), "Let go, the Mac is critical");
  EXPECT_EQ(statusLine(KeepAwakeReleasedThermal{ThermalLevel::nominal}), "Let go, the Mac is cool");
}

TEST(KeepAwakeCopy, SaysWhenTheHoldEndsByTheNumberOfSessions) {
  EXPECT_EQ(detail(KeepAwakeHolding{{"a"}}, kRules),
            "Display can sleep. Lets go when the session finishes, at 35% battery or if the Mac gets hot.");
  EXPECT_EQ(detail(KeepAwakeHolding{{"a", "a"}}, kRules),
            "Display can sleep. Lets go when both sessions finish, at 35% battery or if the Mac gets hot.");
  EXPECT_EQ(detail(KeepAwakeHolding{{"a", "b", "a"}}, kRules),
            "Display can sleep. Lets go when all 3 sessions finish, at 35% battery or if the Mac gets hot.");
}

TEST(KeepAwakeCopy, ExplainsWhyItLetGo) {
  EXPECT_EQ(detail(KeepAwakeReleasedBattery{18, 20}, kRules),
            "Below the 20% floor, so your Mac can sleep. Plug in to keep it awake again.");
  EXPECT_EQ(detail(KeepAwakeReleasedThermal{ThermalLevel::serious}, kRules),
            "Your Mac can sleep to cool down. Brindle holds it again when it cools.");
}

TEST(KeepAwakeCopy, ExplainsWhatItWouldDo) {
  EXPECT_EQ(detail(KeepAwakeOff{}, kRules),
            "Turn it on to keep the Mac from idle sleep while every AI agent you run is working.");
  EXPECT_EQ(
      detail(KeepAwakeWaiting{}, kRules),
      "Brindle holds the Mac awake when an agent session starts working, and lets go at 35% battery or if the Mac "
      "gets hot.");
}

}  // namespace
}  // namespace brindle
