// `brindle completion bash|zsh|fish`.
#include "cli/command_table.h"
#include "cli/commands.h"
#include "cli/completion_script.h"
#include "cli/exit_code.h"

namespace brindle {

namespace {

int runCompletion(const Arguments& arguments, CommandContext& context) {
  const auto shell = enumFrom<Shell>(arguments.words[0]);
  if (!shell) return ExitCode::kFailure;  // the choices below let no other word through
  context.output.print(completionScript(*shell, allCommands()));
  return ExitCode::kDone;
}

constexpr std::string_view kShells[] = {"bash", "zsh", "fish"};
constexpr ArgumentSpec kArguments[] = {
    {.name = "bash|zsh|fish", .help = "the shell that shall complete brindle's words", .choices = kShells}};

}  // namespace

constinit const Command kCompletionCommand = {
    .name = "completion",
    .summary = "prints a completion script for a shell",
    .usage = "bash|zsh|fish",
    .details =
        "For bash put this line into ~/.bashrc, for zsh into ~/.zshrc below 'compinit', for fish into "
        "~/.config/fish/config.fish:\n\n"
        "  source <(brindle completion bash)\n"
        "  source <(brindle completion zsh)\n"
        "  brindle completion fish | source",
    .arguments = kArguments,
    .run = runCompletion};

}  // namespace brindle
