#include "logic/helper/revert_reason.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace brindle {
namespace {

TEST(RevertReason, NamesItsCasesInTheirOrder) {
  std::vector<std::string> texts;
  for (const auto& row : allCases<RevertReason>()) texts.emplace_back(row.text);
  EXPECT_EQ(texts,
            (std::vector<std::string>{"agentsFinished", "batteryFloor", "thermal", "turnedOff", "maxDuration",
                                      "appQuit", "connectionLost", "heartbeatLost", "helperStart", "uninstall"}));
}

TEST(RevertReason, DeclaresItsCasesInTheOrderOfTheirTexts) {
  int expected = 0;
  for (const auto& row : allCases<RevertReason>()) EXPECT_EQ(static_cast<int>(row.value), expected++);
  EXPECT_EQ(expected, static_cast<int>(RevertReason::uninstall) + 1);
}

TEST(RevertReason, RoundTripsEveryRawValue) {
  for (const auto& row : allCases<RevertReason>()) {
    EXPECT_EQ(enumFrom<RevertReason>(row.text), row.value);
    EXPECT_EQ(textOf(row.value), row.text);
  }
}

TEST(RevertReason, KnowsNoOtherText) {
  for (const char* text : {"", "thermal ", "Thermal", "request"}) EXPECT_EQ(enumFrom<RevertReason>(text), std::nullopt);
}

TEST(RevertReason, CanBeKeptInAHashedSet) {
  std::unordered_set<RevertReason> reasons;
  for (const auto& row : allCases<RevertReason>()) reasons.insert(row.value);
  EXPECT_EQ(reasons.size(), 10U);
}

}  // namespace
}  // namespace brindle
