#include "cli/completion_script.h"

#include <gtest/gtest.h>

#include "cli/command_table.h"
#include "tests/cli/sample_commands.h"

namespace brindle {
namespace {

using SampleCommands::kAll;

bool holds(const std::string& text, std::string_view part) { return text.find(part) != std::string::npos; }

TEST(CompletionScript, KnowsThreeShells) {
  ASSERT_EQ(allCases<Shell>().size(), 3u);
  for (const auto& row : allCases<Shell>()) EXPECT_EQ(enumFrom<Shell>(row.text), row.value);
}

TEST(CompletionScript, NamesEveryCommandAndOptionInEveryShell) {
  for (const auto& row : allCases<Shell>()) {
    const std::string script = completionScript(row.value, allCommands());
    for (const Command* command : allCommands()) {
      EXPECT_TRUE(holds(script, command->name)) << row.text << ' ' << command->name;
      if (command->style == ArgumentStyle::raw) continue;
      for (const OptionSpec& option : command->options) {
        EXPECT_TRUE(holds(script, option.name.substr(2))) << row.text << ' ' << option.name;
      }
    }
  }
}

TEST(CompletionScript, OffersChoicesAndWordsToBash) {
  const std::string script = completionScript(Shell::bash, kAll);
  EXPECT_TRUE(holds(script, "      '') words='sleep stop ports run hook --help --no-color --version' ;;\n"));
  EXPECT_TRUE(
      holds(script, "      sleep) words='off on status --for --json --watch --framing --help --no-color' ;;\n"));
  EXPECT_TRUE(holds(script, "    'sleep --framing') words='auto lines header' ;;\n"));
  EXPECT_TRUE(holds(script, "    'sleep --for') words='' ;;\n"));
  EXPECT_FALSE(holds(script, "'sleep --watch')")) << "what follows may be another option";
}

TEST(CompletionScript, DescribesOptionsToZsh) {
  const std::string script = completionScript(Shell::zsh, kAll);
  EXPECT_TRUE(script.starts_with("#compdef brindle\n"));
  EXPECT_TRUE(holds(script, "    'sleep:switches'\n"));
  EXPECT_TRUE(holds(script, "'--for[how long]:DURATION:_default'"));
  EXPECT_TRUE(holds(script, "'--watch[repeats]::SECONDS:_default'"));
  EXPECT_TRUE(holds(script, "'--framing[how messages are framed]:FRAMING:(auto lines header)'"));
  EXPECT_TRUE(holds(script, "':WHAT:(off on status)'"));
  EXPECT_TRUE(holds(script, "'*:MORE:_default'"));
  EXPECT_TRUE(holds(script, "'*::command:_normal'"));
  EXPECT_TRUE(holds(script, "      run)\n        if [[ \"$words[2]\" == -- ]] && ((CURRENT > 2)); then\n"));
}

TEST(CompletionScript, DescribesOptionsToFish) {
  const std::string script = completionScript(Shell::fish, kAll);
  EXPECT_TRUE(holds(script, "complete -c brindle -n __fish_use_subcommand -f -a sleep -d 'switches'\n"));
  EXPECT_TRUE(holds(script, "-n '__fish_seen_subcommand_from sleep' -l for -r -d 'how long'\n"));
  EXPECT_TRUE(holds(script, "_from run' -x -a '(__fish_complete_subcommand --fcs-skip=2)'\n"));
  EXPECT_TRUE(holds(script, "-l framing -r -f -a 'auto lines header' -d 'how messages are framed'\n"));
  EXPECT_TRUE(holds(script, "-n '__fish_seen_subcommand_from sleep' -f -a 'off on status' -d 'what to do'\n"));
}

TEST(CompletionScript, OffersTheNamesOfCommandsWhereOneIsMeant) {
  static constexpr ArgumentSpec kName[] = {
      {.name = "COMMAND", .help = "which", .required = false, .namesCommand = true}};
  static constexpr Command kHelps = {
      .name = "help", .summary = "helps", .arguments = kName, .run = SampleCommands::show};
  const std::array<const Command*, 2> commands = {&SampleCommands::kBare, &kHelps};
  EXPECT_TRUE(holds(completionScript(Shell::bash, commands), "      help) words='ports help --help --no-color' ;;\n"));
  EXPECT_TRUE(holds(completionScript(Shell::zsh, commands), "'::COMMAND:(ports help)'"));
  EXPECT_TRUE(holds(completionScript(Shell::fish, commands), "-f -a 'ports help' -d 'which'\n"));
}

TEST(CompletionScript, QuotesWhatAShellWouldRead) {
  static constexpr OptionSpec kOptions[] = {{.name = "--own", .value = "A:B", .help = "the user's [own] x:y"}};
  static constexpr Command kCommand = {
      .name = "odd", .summary = "isn't: easy", .options = kOptions, .run = SampleCommands::show};
  const std::array<const Command*, 1> commands = {&kCommand};
  const std::string zsh = completionScript(Shell::zsh, commands);
  EXPECT_TRUE(holds(zsh, R"('odd:isn'\''t\: easy')"));
  EXPECT_TRUE(holds(zsh, R"('--own[the user'\''s \[own\] x\:y]:A\:B:_default')"));
  const std::string fish = completionScript(Shell::fish, commands);
  EXPECT_TRUE(holds(fish, R"(-d 'isn\'t: easy')"));
}

}  // namespace
}  // namespace brindle
