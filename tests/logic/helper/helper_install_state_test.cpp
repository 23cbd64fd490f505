#include "logic/helper/helper_install_state.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

TEST(HelperInstallState, TellsHowFarTheInstallationHasCome) {
  EXPECT_EQ(statusText(HelperInstallState::notInstalled), "Helper not installed");
  EXPECT_EQ(statusText(HelperInstallState::needsApproval), "Helper needs approval in System Settings");
  EXPECT_EQ(statusText(HelperInstallState::ready), "Helper installed and approved");
  EXPECT_EQ(statusText(HelperInstallState::unavailable), "Helper not available in this build");
}

TEST(HelperInstallState, HasItsFourCasesInTheirOrder) {
  std::vector<std::string> names;
  for (const auto& row : allCases<HelperInstallState>()) {
    EXPECT_EQ(static_cast<std::size_t>(row.value), names.size());
    EXPECT_EQ(enumFrom<HelperInstallState>(row.text), row.value);
    EXPECT_FALSE(statusText(row.value).empty());
    names.emplace_back(row.text);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"notInstalled", "needsApproval", "ready", "unavailable"}));
}

TEST(HelperInstallState, SaysNothingForWhatIsNoCase) { EXPECT_EQ(statusText(static_cast<HelperInstallState>(17)), ""); }

}  // namespace
}  // namespace brindle
