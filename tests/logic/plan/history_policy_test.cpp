#include "logic/plan/history_policy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace brindle {
namespace {

using HistoryPolicy::label;
using HistoryPolicy::retentionDays;

TEST(HistoryPolicy, OffersSevenRangesInTheirOrder) {
  EXPECT_EQ(HistoryPolicy::ranges, (std::array<double, 7>{1, 6, 12, 24, 168, 720, 8760}));
}

TEST(HistoryPolicy, LabelsEveryRange) {
  std::vector<std::string> labels;
  for (const double hours : HistoryPolicy::ranges) labels.push_back(label(hours));
  EXPECT_EQ(labels,
            (std::vector<std::string>{"1 Hour", "6 Hours", "12 Hours", "24 Hours", "7 Days", "30 Days", "1 Year"}));
}

TEST(HistoryPolicy, LabelsAnyOtherSpanByItsWholeHours) {
  EXPECT_EQ(label(6.9), "6 Hours");
  EXPECT_EQ(label(1.5), "1 Hours");
  EXPECT_EQ(label(0), "0 Hours");
  EXPECT_EQ(label(-2.5), "-2 Hours");
  EXPECT_EQ(label(168.5), "168 Hours");
  EXPECT_EQ(label(std::nan("")), "0 Hours");
  EXPECT_EQ(label(std::numeric_limits<double>::infinity()), "9223372036854775807 Hours");
}

TEST(HistoryPolicy, KeepsAChosenRetention) {
  for (const std::int64_t days : {30, 90, 180, 365}) EXPECT_EQ(retentionDays(days), days);
}

TEST(HistoryPolicy, KeepsAYearWhenNothingValidIsChosen) {
  for (const std::int64_t days : {60, 0, -30, 29, 31, 366}) EXPECT_EQ(retentionDays(days), 365);
  EXPECT_EQ(retentionDays(std::nullopt), 365);
}

TEST(HistoryPolicy, OffersFourRetentions) {
  EXPECT_EQ(HistoryPolicy::retentionChoices, (std::array<std::int64_t, 4>{30, 90, 180, 365}));
}

}  // namespace
}  // namespace brindle
