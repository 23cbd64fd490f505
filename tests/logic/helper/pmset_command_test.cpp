#include "logic/helper/pmset_command.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace brindle {
namespace {

TEST(PmsetCommand, SaysItsWholeCommandLine) {
  EXPECT_EQ(pmsetCommandLine(PmsetCommand::disableSleep), "/usr/bin/pmset -a disablesleep 1");
  EXPECT_EQ(pmsetCommandLine(PmsetCommand::restoreSleep), "/usr/bin/pmset -a disablesleep 0");
}

TEST(PmsetCommand, HasTheArgumentsOfTheTool) {
  using Arguments = std::array<std::string_view, 3>;
  EXPECT_EQ(pmsetArguments(PmsetCommand::disableSleep), (Arguments{"-a", "disablesleep", "1"}));
  EXPECT_EQ(pmsetArguments(PmsetCommand::restoreSleep), (Arguments{"-a", "disablesleep", "0"}));
}

TEST(PmsetCommand, EndsEachArgumentWithANul) {
  for (const auto& row : allCases<PmsetCommand>()) {
    for (const std::string_view argument : pmsetArguments(row.value)) {
      EXPECT_EQ(std::string_view(argument.data()), argument);
    }
  }
}

TEST(PmsetCommand, IsTrueForDisablingAlone) {
  EXPECT_TRUE(disablesSleep(PmsetCommand::disableSleep));
  EXPECT_FALSE(disablesSleep(PmsetCommand::restoreSleep));
}

TEST(PmsetCommand, HasTwoCasesWhoseRawValuesRoundTrip) {
  ASSERT_EQ(allCases<PmsetCommand>().size(), 2U);
  EXPECT_EQ(textOf(PmsetCommand::disableSleep), "disableSleep");
  EXPECT_EQ(textOf(PmsetCommand::restoreSleep), "restoreSleep");
  for (const auto& row : allCases<PmsetCommand>()) EXPECT_EQ(enumFrom<PmsetCommand>(row.text), row.value);
  EXPECT_EQ(enumFrom<PmsetCommand>("DisableSleep"), std::nullopt);
}

TEST(PmsetCommand, CanBeKeptInAHashedSet) {
  const std::unordered_set<PmsetCommand> both{PmsetCommand::disableSleep, PmsetCommand::restoreSleep,
                                              PmsetCommand::disableSleep};
  EXPECT_EQ(both.size(), 2U);
}

}  // namespace
}  // namespace brindle
