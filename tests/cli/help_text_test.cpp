#include "cli/help_text.h"

#include <gtest/gtest.h>

#include "tests/cli/sample_commands.h"

namespace brindle {
namespace {

TEST(HelpText, ListsCommandsInTheirOrderInTwoColumns) {
  EXPECT_EQ(overallHelp(SampleCommands::kAll),
            "Brindle keeps the computer awake while coding agents work, and lets it sleep again.\n"
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
            "Exit status: 0 done, 1 a negative answer, 2 wrong usage or a failure, 130 interrupted.\n");
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

TEST(HelpText, NamesTheVersion) { EXPECT_EQ(versionText(), "brindle 1.3.0"); }

}  // namespace
}  // namespace brindle
