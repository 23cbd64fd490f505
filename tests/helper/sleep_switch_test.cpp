#include "helper/sleep_switch.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(SwitchLogLine, NamesTheDeedItsStatusAndItsReason) {
  EXPECT_EQ(switchLogLine("/usr/bin/pmset -a disablesleep 0", 0, RevertReason::helperStart),
            "/usr/bin/pmset -a disablesleep 0 exit 0 reason helperStart");
}

TEST(SwitchLogLine, CallsAbsenceARequest) {
  EXPECT_EQ(switchLogLine("deed", 3, std::nullopt), "deed exit 3 reason request");
}

TEST(SwitchLogLine, GivesEveryReasonItsOwnText) {
  for (const auto& [reason, text] : allCases<RevertReason>()) {
    EXPECT_EQ(switchLogLine("deed", -1, reason), "deed exit -1 reason " + std::string(text));
  }
}

}  // namespace
}  // namespace brindle
