#include "logic/plan/plan_usage_parser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

using PlanUsageParser::parse;
using PlanUsageParser::resetText;
using PlanUsageParser::Window;
using PlanUsageParser::Windows;
constexpr Date kTenOClock = dateFromSeconds(1'735'725'600);  // 2025-01-01T10:00:00Z

std::optional<Window> session(const std::string& window) { return parse(R"({"five_hour":)" + window + "}").session; }

TEST(PlanUsageParser, ReadsBothWindows) {
  EXPECT_EQ(parse(R"({"five_hour":{"utilization":42.5,"resets_at":"2025-01-01T10:00:00Z"},)"
                  R"("seven_day":{"utilization":7,"resets_at":"2025-01-01T11:00:00+01:00"},"seven_day_opus":null})"),
            (Windows{.session = Window{42.5, kTenOClock}, .week = Window{7, kTenOClock}}));
}

TEST(PlanUsageParser, LimitsTheUseToBetweenZeroAndAHundred) {
  const std::vector<std::pair<std::string, double>> cases{
      {"134.5", 100},   {"-3", 0},      {"100", 100},  {"100.001", 100}, {"99.999", 99.999}, {"0", 0}, {"-0.001", 0},
      {"0.001", 0.001}, {"1e300", 100}, {"-1e300", 0}, {"5", 5}};
  for (const auto& [text, used] : cases) {
    EXPECT_EQ(session(R"({"utilization":)" + text + "}"), (Window{used, std::nullopt})) << text;
  }
}

TEST(PlanUsageParser, KeepsAWindowWithoutAResetDate) {
  EXPECT_EQ(session(R"({"utilization":5})"), (Window{5, std::nullopt}));
  for (const std::string wrong : {"null", "1735725600", "true", "[]", "{}", "\"\"", "\"soon\""}) {
    EXPECT_EQ(session(R"({"utilization":5,"resets_at":)" + wrong + "}"), (Window{5, std::nullopt})) << wrong;
  }
}

TEST(PlanUsageParser, HasNoWindowWithoutANumberOfUse) {
  EXPECT_EQ(session(R"({"resets_at":"2025-01-01T10:00:00Z"})"), std::nullopt);
  for (const std::string wrong : {"null", "\"5\"", "true", "false", "[5]", "{}"}) {
    EXPECT_EQ(session(R"({"utilization":)" + wrong + "}"), std::nullopt) << wrong;
  }
}

TEST(PlanUsageParser, HasNoWindowThatIsNoObject) {
  for (const std::string wrong : {"null", "5", "true", "\"x\"", "[]", R"([{"utilization":5}])"}) {
    EXPECT_EQ(session(wrong), std::nullopt) << wrong;
  }
}

TEST(PlanUsageParser, ReadsResetDatesWithAndWithoutAFraction) {
  EXPECT_EQ(session(R"({"utilization":5,"resets_at":"2025-01-01T10:00:00Z"})")->resets, kTenOClock);
  const auto withFraction = session(R"({"utilization":5,"resets_at":"2025-01-01T10:00:00.125Z"})")->resets;
  ASSERT_TRUE(withFraction);
  EXPECT_NEAR((*withFraction - kTenOClock).count(), 0.125, 1e-6);
}

TEST(PlanUsageParser, HasNoResetDateWithoutATimeZone) {
  EXPECT_EQ(session(R"({"utilization":5,"resets_at":"2025-01-01T10:00:00"})"), (Window{5, std::nullopt}));
  EXPECT_EQ(session(R"({"utilization":5,"resets_at":"2025-01-01"})"), (Window{5, std::nullopt}));
}

TEST(PlanUsageParser, ReadsAWeekAlone) {
  EXPECT_EQ(parse(R"({"seven_day":{"utilization":7}})"), (Windows{.week = Window{7, std::nullopt}}));
}

TEST(PlanUsageParser, HasNoWindowsInWhatIsNoObjectOrNoJson) {
  for (const std::string_view text : {"", "null", "[]", "7", "\"five_hour\"", "{", "\xFF", R"({"five_hour":{}}x)"}) {
    EXPECT_EQ(parse(text), Windows{}) << text;
  }
}

TEST(PlanUsageParser, HasNoWindowsInACutDocument) {
  const std::string whole = R"({"five_hour":{"utilization":42.5,"resets_at":"2025-01-01T10:00:00Z"}})";
  ASSERT_NE(parse(whole), Windows{});
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_EQ(parse(std::string_view(whole).substr(0, size)), Windows{}) << size;
  }
}

TEST(PlanUsageParser, SurvivesHugeAndDeepDocuments) {
  EXPECT_EQ(parse(std::string(100'000, '[') + std::string(100'000, ']')), Windows{});
  std::string deep = R"({"five_hour":)";
  for (int i = 0; i < 100'000; ++i) deep += R"({"five_hour":)";
  EXPECT_EQ(parse(deep), Windows{});
  const std::string big = R"({"seven_day":{"utilization":7},"x":")" + std::string(10'000'000, 'y') + "\"}";
  EXPECT_EQ(parse(big).week, (Window{7, std::nullopt}));
}

TEST(ResetText, IsAbsentWithoutADate) { EXPECT_EQ(resetText(std::nullopt, kTenOClock), std::nullopt); }

TEST(ResetText, ShowsTheTimeLeftInItsTwoLargestUnits) {
  const std::vector<std::pair<double, std::string>> cases{
      {-1e9, "Resets now"},           {-1, "Resets now"},          {0, "Resets now"},
      {0.999, "Resets now"},          {1, "Resets in 0m"},         {59, "Resets in 0m"},
      {59.999, "Resets in 0m"},       {60, "Resets in 1m"},        {720, "Resets in 12m"},
      {3599, "Resets in 59m"},        {3600, "Resets in 1h 00m"},  {3659, "Resets in 1h 00m"},
      {11100, "Resets in 3h 05m"},    {11400, "Resets in 3h 10m"}, {86399, "Resets in 23h 59m"},
      {86399.9, "Resets in 23h 59m"}, {86400, "Resets in 1d 0h"},  {90000, "Resets in 1d 1h"},
      {190800, "Resets in 2d 5h"},    {604800, "Resets in 7d 0h"}};
  for (const auto& [seconds, expected] : cases) {
    EXPECT_EQ(resetText(kTenOClock + Seconds{seconds}, kTenOClock), expected) << seconds;
  }
}

TEST(ResetText, TakesAnyDateWithoutFailing) {
  EXPECT_EQ(resetText(dateFromSeconds(std::nan("")), kTenOClock), "Resets now");
  EXPECT_EQ(resetText(dateFromSeconds(-std::numeric_limits<double>::infinity()), kTenOClock), "Resets now");
  EXPECT_TRUE(resetText(dateFromSeconds(1e300), kTenOClock)->starts_with("Resets in "));
}

TEST(PlanUsageWindow, IsEqualWhenUseAndResetDateAre) {
  EXPECT_EQ((Window{5, kTenOClock}), (Window{5, kTenOClock}));
  EXPECT_EQ((Window{5, std::nullopt}), (Window{5, std::nullopt}));
  EXPECT_NE((Window{5, kTenOClock}), (Window{5, std::nullopt}));
  EXPECT_NE((Window{5, kTenOClock}), (Window{5, kTenOClock + Seconds{1}}));
  EXPECT_NE((Window{5, kTenOClock}), (Window{6, kTenOClock}));
}

}  // namespace
}  // namespace brindle
