#include "logic/helper/lid_sleep_limits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace brindle {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(LidSleepLimits, ClampsToBetweenOneMinuteAndTwelveHours) {
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{0}), Seconds{60});
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{3600}), Seconds{3600});
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{43200.5}), Seconds{43200});
}

TEST(LidSleepLimits, KeepsWhatLiesOnOrInsideTheBounds) {
  for (const double inside : {60.0, 60.001, 43199.999, 43200.0}) {
    EXPECT_EQ(LidSleepLimits::clamp(Seconds{inside}), Seconds{inside});
  }
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{59.999}), Seconds{60});
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{43200.001}), Seconds{43200});
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{-5}), Seconds{60});
}

TEST(LidSleepLimits, ClampsWhatIsNoNumberToTheLowerBound) {
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{std::nan("")}), Seconds{60});
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{kInfinity}), Seconds{43200});
  EXPECT_EQ(LidSleepLimits::clamp(Seconds{-kInfinity}), Seconds{60});
}

TEST(LidSleepLimits, HoldsTheAgreedTimes) {
  EXPECT_EQ(LidSleepLimits::defaultDuration, Seconds{14400});
  EXPECT_EQ(LidSleepLimits::minDuration, Seconds{60});
  EXPECT_EQ(LidSleepLimits::maxDuration, Seconds{43200});
  EXPECT_EQ(LidSleepLimits::heartbeatInterval, Seconds{30});
  EXPECT_EQ(LidSleepLimits::heartbeatTimeout, Seconds{90});
  EXPECT_EQ(LidSleepLimits::tickInterval, Seconds{5});
}

TEST(LidSleepLimits, OffersTwoOfThemAsFunctions) {
  EXPECT_EQ(LidSleepLimits::maxDurationValue(), Seconds{43200});
  EXPECT_EQ(LidSleepLimits::heartbeatTimeoutValue(), Seconds{90});
}

TEST(LidSleepLimits, OffersOneTwoFourEightAndTwelveHours) {
  EXPECT_EQ(LidSleepLimits::durationChoices,
            (std::array{Seconds{3600}, Seconds{7200}, Seconds{14400}, Seconds{28800}, Seconds{43200}}));
}

TEST(LidSleepLimits, OffersTheDefaultAndOnlyWhatNeedsNoClamping) {
  const auto& choices = LidSleepLimits::durationChoices;
  EXPECT_NE(std::find(choices.begin(), choices.end(), LidSleepLimits::defaultDuration), choices.end());
  for (const Seconds choice : choices) EXPECT_EQ(LidSleepLimits::clamp(choice), choice);
}

}  // namespace
}  // namespace brindle
