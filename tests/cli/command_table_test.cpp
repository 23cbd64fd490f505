#include "cli/command_table.h"

#include <gtest/gtest.h>

#include <set>

#include "cli/help_text.h"
#include "cli/text_table.h"
#include "tests/cli/sample_commands.h"

namespace brindle {
namespace {

using SampleCommands::kAll;

TEST(CommandTable, FindsACommandOnlyByItsWholeName) {
  EXPECT_EQ(findCommand(kAll, "sleep"), &SampleCommands::kVerbed);
  EXPECT_EQ(findCommand(kAll, "slee"), nullptr);
  EXPECT_EQ(findCommand(kAll, "Sleep"), nullptr);
  EXPECT_EQ(findCommand(kAll, ""), nullptr);
}

TEST(CommandTable, SuggestsForOneOrTwoSlipsAndNotForThree) {
  EXPECT_EQ(suggestedCommand(kAll, "slep"), "sleep");
  EXPECT_EQ(suggestedCommand(kAll, "sleeep"), "sleep");
  EXPECT_EQ(suggestedCommand(kAll, "slepe"), "sleep");
  EXPECT_EQ(suggestedCommand(kAll, "xleex"), "sleep");
  EXPECT_EQ(suggestedCommand(kAll, "xlxxp"), "");
}

TEST(CommandTable, SuggestsNothingWhenHalfOfTheLettersDiffer) {
  EXPECT_EQ(suggestedCommand(kAll, "rux"), "run");
  EXPECT_EQ(suggestedCommand(kAll, "rxx"), "");
  EXPECT_EQ(suggestedCommand(kAll, "xxop"), "");
  EXPECT_EQ(suggestedCommand(kAll, ""), "");
}

TEST(CommandTable, DoesNotCompareEndlessNames) { EXPECT_EQ(suggestedCommand(kAll, std::string(100000, 's')), ""); }

// What follows holds for every command that is ever added.

TEST(CommandTable, EveryCommandIsCompleteAndHasANameOfItsOwn) {
  std::set<std::string_view> names;
  ASSERT_FALSE(allCommands().empty());
  for (const Command* command : allCommands()) {
    EXPECT_TRUE(names.insert(command->name).second) << command->name;
    EXPECT_NE(command->run, nullptr) << command->name;
    EXPECT_FALSE(command->name.empty());
    EXPECT_FALSE(command->summary.empty()) << command->name;
    EXPECT_FALSE(command->summary.ends_with('.')) << command->name;
    EXPECT_EQ(command->summary.find('\n'), std::string_view::npos) << command->name;
    EXPECT_EQ(findCommand(allCommands(), command->name), command);
  }
}

TEST(CommandTable, EveryOptionIsSpeltInFullAndExplained) {
  for (const Command* command : allCommands()) {
    std::set<std::string_view> names = {"--help", "--no-color"};
    for (const OptionSpec& option : command->options) {
      EXPECT_TRUE(names.insert(option.name).second) << command->name << ' ' << option.name;
      EXPECT_TRUE(option.name.starts_with("--")) << command->name << ' ' << option.name;
      EXPECT_FALSE(option.help.empty()) << command->name << ' ' << option.name;
      if (option.valueOptional || !option.choices.empty()) {
        EXPECT_FALSE(option.value.empty()) << command->name << ' ' << option.name;
      }
    }
  }
}

TEST(CommandTable, OnlyTheLastArgumentIsRepeatedAndNoneIsRequiredAfterAnOptionalOne) {
  for (const Command* command : allCommands()) {
    bool required = true;
    for (const ArgumentSpec& argument : command->arguments) {
      EXPECT_TRUE(required || !argument.required) << command->name << ' ' << argument.name;
      EXPECT_TRUE(!argument.repeated || &argument == &command->arguments.back()) << command->name;
      required = argument.required;
    }
  }
}

TEST(CommandTable, HelpFitsIntoEightyColumns) {
  std::string texts = overallHelp(allCommands());
  for (const Command* command : allCommands()) texts += commandHelp(*command);
  for (std::size_t at = 0; at < texts.size();) {
    const std::size_t end = texts.find('\n', at);
    ASSERT_NE(end, std::string::npos);
    const std::string line = texts.substr(at, end - at);
    EXPECT_LE(shownWidth(line), 80U) << line;
    EXPECT_FALSE(line.ends_with(' ')) << line;
    at = end + 1;
  }
}

TEST(CommandTable, HelpNamesEveryCommandAndOption) {
  const std::string overall = overallHelp(allCommands());
  for (const Command* command : allCommands()) {
    EXPECT_NE(overall.find("\n  " + std::string(command->name) + " "), std::string::npos) << command->name;
    for (const OptionSpec& option : command->options) {
      EXPECT_NE(commandHelp(*command).find("\n  " + std::string(option.name)), std::string::npos) << option.name;
    }
  }
}

}  // namespace
}  // namespace brindle
