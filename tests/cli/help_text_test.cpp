#include "cli/help_text.h"

#include <gtest/gtest.h>

#include "tests/cli/sample_commands.h"

namespace brindle {
namespace {

TEST(HelpText, ListsCommandsInTheirOrderInTwoColumns) {
  EXPECT_EQ(overallHelp(SampleCommands::kAll),
            "Brindle keeps the computer awake while coding agents work, and lets it sleep\n"
            "again.\n"
            "\n"
            "Usage: brindle COMMAND [OPTIONS]\n"
            "\n"
            "Commands:\n"
            "  sleep  switches\n"
            "  stop   stops\n"
            "  ports  lists the ports\n"
            "  run    runs\n"
            "  hook   listens\n"
            "\n"
            "Options:\n"
            "  -h, --help  shows this help, or that of a command\n"
            "  --no-color  never uses colour\n"
            "  --version   shows the version\n"
            "\n"
            "Exit status: 0 done, 1 a negative answer, 2 wrong usage or a failure, 130 Ctrl-C\n");
}

TEST(HelpText, ShowsEveryFormArgumentAndOptionOfACommand) {
  EXPECT_EQ(commandHelp(SampleCommands::kVerbed),
            "Usage: brindle sleep off [--for DURATION]\n"
            "       brindle sleep on\n"
            "       brindle sleep status\n"
            "\n"
            "brindle sleep switches.\n"
            "\n"
            "It takes a while.\n"
            "\n"
            "Arguments:\n"
            "  WHAT  what to do\n"
            "\n"
            "Options:\n"
            "  --for DURATION               how long\n"
            "  --json                       prints the document\n"
            "  --watch [SECONDS]            repeats\n"
            "  --framing auto|lines|header  how messages are framed\n"
            "  -h, --help                   shows this help\n");
}

TEST(HelpText, LeavesOutWhatACommandDoesNotHave) {
  EXPECT_EQ(commandHelp(SampleCommands::kBare),
            "Usage: brindle ports\n"
            "\n"
            "brindle ports lists the ports.\n"
            "\n"
            "Options:\n"
            "  -h, --help  shows this help\n");
}

TEST(HelpText, BreaksWhatIsTooWideBelowWhereItBegan) {
  static constexpr OptionSpec kOptions[] = {
      {.name = "--long",
       .value = "VALUE",
       .help = "what can only be told in more words than one line of the help can hold"}};
  static constexpr Command kCommand = {
      .name = "odd",
      .summary = "does things",
      .usage = "[--a-first-option VALUE] [--a-second-option VALUE] [--a-third-option [VALUE]]",
      .details =
          "One two three four five six seven eight nine ten eleven twelve thirteen fourteen fifteen.\n\n"
          "  kept as it is, however long it is, because it is a line to paste somewhere else\n\nEnd.",
      .options = kOptions,
      .run = SampleCommands::show};
  EXPECT_EQ(commandHelp(kCommand),
            "Usage: brindle odd [--a-first-option VALUE] [--a-second-option VALUE]\n"
            "                   [--a-third-option [VALUE]]\n"
            "\n"
            "brindle odd does things.\n"
            "\n"
            "One two three four five six seven eight nine ten eleven twelve thirteen fourteen\n"
            "fifteen.\n"
            "\n"
            "  kept as it is, however long it is, because it is a line to paste somewhere else\n"
            "\n"
            "End.\n"
            "\n"
            "Options:\n"
            "  --long VALUE  what can only be told in more words than one line of the help\n"
            "                can hold\n"
            "  -h, --help    shows this help\n");
}

TEST(HelpText, NamesTheVersion) { EXPECT_EQ(versionText(), "brindle 1.3.0"); }

}  // namespace
}  // namespace brindle
