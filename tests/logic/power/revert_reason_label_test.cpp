#include "logic/power/revert_reason_label.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

TEST(RevertReasonLabel, NamesEveryReasonForPeople) {
  std::vector<std::string> labels;
  for (const auto& row : allCases<RevertReason>()) labels.emplace_back(label(row.value));
  EXPECT_EQ(labels, (std::vector<std::string>{"Agents finished", "Battery floor", "Thermal limit", "Turned off",
                                              "Max duration reached", "Brindle quit", "Brindle disconnected",
                                              "No heartbeat from Brindle", "Helper started", "Helper uninstalled"}));
}

TEST(RevertReasonLabel, SaysNothingForWhatIsNoCase) { EXPECT_EQ(label(static_cast<RevertReason>(99)), ""); }

}  // namespace
}  // namespace brindle
