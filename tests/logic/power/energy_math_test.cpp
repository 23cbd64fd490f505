#include "logic/power/energy_math.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace brindle {
namespace {

using EnergyMath::joules;
using EnergyMath::level;
using EnergyMath::percent;
using EnergyMath::totalWatts;
using EnergyMath::watts;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNaN = std::nan("");

TEST(EnergyMath, ReadsMillijoulesWithBlanksAroundThem) { EXPECT_EQ(joules(5, " mJ "), 0.005); }

TEST(EnergyMath, KnowsEveryUnit) {
  EXPECT_EQ(joules(3, "J"), 3.0);
  EXPECT_EQ(joules(3, "mJ"), 0.003);
  EXPECT_EQ(joules(3, "uJ"), 0.000003);
  EXPECT_EQ(joules(3, "\xC2\xB5J"), 0.000003);
  EXPECT_EQ(joules(3, "\xCE\xBCJ"), 0.000003);
  EXPECT_EQ(joules(3, "nJ"), 0.000000003);
}

TEST(EnergyMath, DividesInsteadOfMultiplyingByTheReciprocal) {
  bool differed = false;
  for (std::int64_t value = 1; value < 1000; ++value) {
    const auto exact = static_cast<double>(value) / 1000;
    ASSERT_EQ(joules(value, "mJ"), exact);
    ASSERT_EQ(joules(value, "uJ"), static_cast<double>(value) / 1e6);
    ASSERT_EQ(joules(value, "nJ"), static_cast<double>(value) / 1e9);
    differed = differed || exact != static_cast<double>(value) * 0.001;
  }
  EXPECT_TRUE(differed);  // else the loop could not tell the two apart
}

TEST(EnergyMath, KnowsNoOtherUnit) {
  for (const char* unit : {"", "MJ", "j", "kJ", "m J", "UJ", "Wh", "mJ\xFF", "\xB5J"}) {
    EXPECT_EQ(joules(5, unit), std::nullopt) << unit;
  }
}

TEST(EnergyMath, TrimsEveryWhiteSpace) { EXPECT_EQ(joules(5, "\t\n\xE2\x80\x83J\xC2\xA0\r"), 5.0); }

TEST(EnergyMath, KeepsTheSignOfJoules) { EXPECT_EQ(joules(-5, "J"), -5.0); }

TEST(EnergyMath, DividesEnergyByTime) {
  EXPECT_EQ(watts(2000, "mJ", Seconds{2}), 1.0);
  EXPECT_EQ(watts(1, "J", Seconds{4}), 0.25);
}

TEST(EnergyMath, HasNoPowerWithoutEnergyOrTime) {
  EXPECT_EQ(watts(0, "J", Seconds{2}), 0);
  EXPECT_EQ(watts(-1, "J", Seconds{2}), 0);
  EXPECT_EQ(watts(5, "J", Seconds{0}), 0);
  EXPECT_EQ(watts(5, "J", Seconds{-1}), 0);
  EXPECT_EQ(watts(5, "J", Seconds{kNaN}), 0);
  EXPECT_EQ(watts(5, "MJ", Seconds{2}), 0);
}

TEST(EnergyMath, SumsTheReadingsOfOneName) {
  const std::vector<EnergyReading> readings{{"a", "J", 2}, {"b", "J", 100}, {"a", "mJ", 4000}};
  EXPECT_EQ(totalWatts("a", readings, Seconds{2}), 3.0);
  EXPECT_EQ(totalWatts("b", readings, Seconds{2}), 50.0);
}

TEST(EnergyMath, SumsNothingForANameThatNoReadingHas) {
  const std::vector<EnergyReading> readings{{"a", "J", 2}};
  EXPECT_EQ(totalWatts("A", readings, Seconds{2}), 0);
  EXPECT_EQ(totalWatts("", readings, Seconds{2}), 0);
  EXPECT_EQ(totalWatts("a", {}, Seconds{2}), 0);
}

TEST(EnergyMath, AddsNothingForReadingsWithoutPower) {
  const std::vector<EnergyReading> readings{{"a", "J", 2}, {"a", "?", 7}, {"a", "J", -7}, {"a", "J", 0}};
  EXPECT_EQ(totalWatts("a", readings, Seconds{1}), 2.0);
  EXPECT_EQ(totalWatts("a", readings, Seconds{0}), 0);
}

TEST(EnergyMath, MeasuresAgainstTheLargerOfReferenceAndFloor) {
  EXPECT_EQ(percent({.value = 50, .reference = 200, .floor = 100}), 25);
  EXPECT_EQ(percent({.value = 50, .reference = 100, .floor = 200}), 25);
  EXPECT_EQ(percent({.value = 50, .reference = 100, .floor = 100}), 50);
}

TEST(EnergyMath, LimitsThePercentage) {
  EXPECT_EQ(percent({.value = 300, .reference = 200, .floor = 100}), 100);
  EXPECT_EQ(percent({.value = 201, .reference = 200, .floor = 100}), 100);
  EXPECT_EQ(percent({.value = 200, .reference = 200, .floor = 100}), 100);
  EXPECT_EQ(percent({.value = 199, .reference = 200, .floor = 100}), 99.5);
  EXPECT_EQ(percent({.value = 1, .reference = 200, .floor = 100}), 0.5);
  EXPECT_EQ(percent({.value = -5, .reference = 200, .floor = 100}), 0);
}

TEST(EnergyMath, AnswersAHundredForSomethingOfNothing) {
  EXPECT_EQ(percent({.value = 5, .reference = 0, .floor = 0}), 100);
  EXPECT_EQ(percent({.value = 0.5, .reference = 0, .floor = 0}), 100);
  EXPECT_EQ(percent({.value = 5, .reference = -0.0, .floor = -0.0}), 100);
  EXPECT_EQ(percent({.value = -5, .reference = 0, .floor = 0}), 0);
}

TEST(EnergyMath, AnswersZeroWhereThereIsNoAnswer) {
  EXPECT_EQ(percent({.value = 0, .reference = 0, .floor = 0}), 0);
  EXPECT_EQ(percent({.value = kNaN, .reference = 1, .floor = 1}), 0);
  EXPECT_EQ(percent({.value = kInfinity, .reference = kInfinity, .floor = 1}), 0);
}

TEST(EnergyMath, NamesTheLevelByItsThresholds) {
  EXPECT_EQ(level(0), "Idle");
  EXPECT_EQ(level(0.009), "Idle");
  EXPECT_EQ(level(0.01), "Light use");
  EXPECT_EQ(level(0.499), "Light use");
  EXPECT_EQ(level(0.5), "Busy");
  EXPECT_EQ(level(1000), "Busy");
}

RC_GTEST_PROP(EnergyMathProperty, KeepsEveryPercentageBetweenZeroAndAHundred, ()) {
  const auto any = [] {
    return *rc::gen::oneOf(rc::gen::arbitrary<double>(),
                           rc::gen::elementOf(std::vector<double>{0.0, -0.0, kInfinity, -kInfinity, kNaN, 5e-324}));
  };
  const double result = percent({.value = any(), .reference = any(), .floor = any()});
  RC_ASSERT(result >= 0);
  RC_ASSERT(result <= 100);
}

RC_GTEST_PROP(EnergyMathProperty, SumsLikeTheReadingsOneByOne, (const std::vector<std::int32_t>& values)) {
  std::vector<EnergyReading> readings;
  double expected = 0;
  for (const std::int32_t value : values) {
    const bool mine = value % 2 == 0;
    readings.push_back({mine ? "mine" : "other", "uJ", value});
    if (mine) expected += watts(value, "uJ", Seconds{3});
  }
  RC_ASSERT(totalWatts("mine", readings, Seconds{3}) == expected);
  RC_ASSERT(totalWatts("mine", readings, Seconds{3}) >= 0);
}

}  // namespace
}  // namespace brindle
