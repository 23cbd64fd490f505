#include "logic/plan/plan_window_kind.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

TEST(PlanWindowKind, LastsFiveHoursOrSevenDays) {
  EXPECT_EQ(length(PlanWindowKind::session), Seconds{18000});
  EXPECT_EQ(length(PlanWindowKind::week), Seconds{604800});
}

TEST(PlanWindowKind, HasALabelForEachCase) {
  EXPECT_EQ(label(PlanWindowKind::session), "this 5 hour window");
  EXPECT_EQ(label(PlanWindowKind::week), "this week");
}

TEST(PlanWindowKind, RoundTripsItsRawValuesInTheirOrder) {
  std::vector<std::string> texts;
  for (const auto& row : allCases<PlanWindowKind>()) {
    EXPECT_EQ(static_cast<std::size_t>(row.value), texts.size());
    EXPECT_EQ(enumFrom<PlanWindowKind>(row.text), row.value);
    texts.emplace_back(row.text);
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"session", "week"}));
}

TEST(PlanWindowKind, AnswersNothingForWhatIsNoCase) {
  EXPECT_EQ(length(static_cast<PlanWindowKind>(5)), Seconds{0});
  EXPECT_EQ(label(static_cast<PlanWindowKind>(5)), "");
}

}  // namespace
}  // namespace brindle
