#include "logic/plan/plan_sample.h"

#include <gtest/gtest.h>

#include "base/json_writer.h"

namespace brindle {
namespace {

using PlanSampleLog::appending;
using Samples = std::vector<PlanSample>;
constexpr Date kNow = dateFromSeconds(1'000'000);

PlanSample sample(double seconds, double used) { return {kNow + Seconds{seconds}, used}; }

TEST(PlanSample, RoundTripsItsDateAsSeconds) {
  const PlanSample reading{dateFromSeconds(12.5), 40.25};
  EXPECT_EQ(writeJson(encode(reading)), R"({"at":12.5,"used":40.25})");
  EXPECT_EQ(decodePlanSample(encode(reading)), reading);
}

TEST(PlanSample, NeedsBothMembersAsNumbers) {
  EXPECT_EQ(decodePlanSample(JsonObject{{"at", 1}}), std::nullopt);
  EXPECT_EQ(decodePlanSample(JsonObject{{"used", 1}}), std::nullopt);
  for (const JsonValue& wrong : {JsonValue(), JsonValue(true), JsonValue("1"), JsonValue(JsonArray{})}) {
    EXPECT_EQ(decodePlanSample(JsonObject{{"at", wrong}, {"used", 1}}), std::nullopt);
    EXPECT_EQ(decodePlanSample(JsonObject{{"at", 1}, {"used", wrong}}), std::nullopt);
  }
}

TEST(PlanSample, IsEqualWhenBothMembersAre) {
  EXPECT_EQ(sample(0, 1), sample(0, 1));
  EXPECT_NE(sample(0, 1), sample(1, 1));
  EXPECT_NE(sample(0, 1), sample(0, 2));
}

TEST(PlanSampleLog, TakesTheFirstReading) {
  EXPECT_EQ(appending(sample(0, 5), {}, std::nullopt, PlanWindowKind::session), Samples{sample(0, 5)});
}

TEST(PlanSampleLog, KeepsTheListOnASmallDrop) {
  EXPECT_EQ(appending(sample(1, 40), {sample(0, 40.4)}, std::nullopt, PlanWindowKind::session),
            (Samples{sample(0, 40.4), sample(1, 40)}));
  EXPECT_EQ(appending(sample(1, 40), {sample(0, 40.5)}, std::nullopt, PlanWindowKind::session).size(), 2U);
}

TEST(PlanSampleLog, EmptiesTheListFirstOnAGreaterDrop) {
  EXPECT_EQ(appending(sample(1, 40), {sample(-1, 12), sample(0, 41)}, std::nullopt, PlanWindowKind::session),
            Samples{sample(1, 40)});
  EXPECT_EQ(appending(sample(1, 40), {sample(0, 40.5001)}, std::nullopt, PlanWindowKind::session).size(), 1U);
}

TEST(PlanSampleLog, MeasuresTheDropAgainstTheLastReadingAlone) {
  EXPECT_EQ(appending(sample(2, 10), {sample(0, 90), sample(1, 10)}, std::nullopt, PlanWindowKind::week).size(), 3U);
}

TEST(PlanSampleLog, DropsReadingsOfEarlierWindows) {
  const Date resets = kNow + length(PlanWindowKind::session);
  EXPECT_EQ(appending(sample(10, 5), {sample(-1, 1), sample(-0.001, 2), sample(0, 3), sample(5, 4)}, resets,
                      PlanWindowKind::session),
            (Samples{sample(0, 3), sample(5, 4), sample(10, 5)}));
}

TEST(PlanSampleLog, DropsEarlierWindowsBeforeItLooksForAReset) {
  const Date resets = kNow + length(PlanWindowKind::session);
  EXPECT_EQ(appending(sample(10, 1), {sample(0, 1), sample(-1, 90)}, resets, PlanWindowKind::session),
            (Samples{sample(0, 1), sample(10, 1)}));
}

TEST(PlanSampleLog, KeepsEveryAgeWithoutAResetDate) {
  EXPECT_EQ(appending(sample(0, 5), {sample(-1e8, 5)}, std::nullopt, PlanWindowKind::session).size(), 2U);
}

TEST(PlanSampleLog, UsesTheLengthOfTheWindow) {
  const Date resets = kNow + Seconds{100};
  EXPECT_EQ(appending(sample(0, 5), {sample(-20000, 5)}, resets, PlanWindowKind::session).size(), 1U);
  EXPECT_EQ(appending(sample(0, 5), {sample(-20000, 5)}, resets, PlanWindowKind::week).size(), 2U);
}

TEST(PlanSampleLog, PushesTheOldestOutBeyondAHundredAndTwenty) {
  Samples samples;
  for (int i = 0; i < 119; ++i) samples = appending(sample(i, 5), samples, std::nullopt, PlanWindowKind::week);
  samples = appending(sample(119, 5), samples, std::nullopt, PlanWindowKind::week);
  ASSERT_EQ(samples.size(), 120U);
  EXPECT_EQ(samples.front(), sample(0, 5));
  samples = appending(sample(120, 5), samples, std::nullopt, PlanWindowKind::week);
  ASSERT_EQ(samples.size(), 120U);
  EXPECT_EQ(samples.front(), sample(1, 5));
  EXPECT_EQ(samples.back(), sample(120, 5));
}

TEST(PlanSampleLog, CutsAnOverlongListToItsLimit) {
  const Samples samples = appending(sample(1, 5), Samples(500, sample(0, 5)), std::nullopt, PlanWindowKind::week);
  EXPECT_EQ(samples.size(), 120U);
  EXPECT_EQ(samples.back(), sample(1, 5));
}

}  // namespace
}  // namespace brindle
