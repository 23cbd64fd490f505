// `brindle help [COMMAND]`.
#include "cli/command_line.h"
#include "cli/command_table.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/help_text.h"

namespace brindle {

namespace {

int runHelp(const Arguments& arguments, CommandContext& context) {
  if (arguments.words.empty()) {
    context.output.print(overallHelp(allCommands()));
    return ExitCode::kDone;
  }
  const Command* command = findCommand(allCommands(), arguments.words[0]);
  if (command == nullptr) return unknownCommand(allCommands(), arguments.words[0], context);
  context.output.print(commandHelp(*command));
  return ExitCode::kDone;
}

constexpr ArgumentSpec kArguments[] = {{.name = "COMMAND",
                                        .help = "the command to explain; all of them are listed without it",
                                        .required = false,
                                        .namesCommand = true}};

}  // namespace

constinit const Command kHelpCommand = {.name = "help",
                                        .summary = "shows the help of a command",
                                        .usage = "[COMMAND]",
                                        .arguments = kArguments,
                                        .run = runHelp};

}  // namespace brindle
