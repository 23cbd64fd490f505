#include "cli/command_line.h"

#include "cli/command_table.h"
#include "cli/exit_code.h"
#include "cli/help_text.h"
#include "cli/option_parser.h"

namespace brindle {

namespace {

int printHelp(std::span<const Command* const> commands, CommandContext& context) {
  context.output.print(overallHelp(commands));
  return ExitCode::kDone;
}

int printVersion(CommandContext& context) {
  context.output.print(versionText() + "\n");
  return ExitCode::kDone;
}

/// A command that reads its words itself knows no help, because whoever calls it must not get any; a person who asks
/// for nothing else, at a terminal, may.
bool asksRawHelp(const Command& command, const std::vector<std::string>& words, const CommandContext& context) {
  return command.style == ArgumentStyle::raw && context.terminals.output && words.size() == 1 &&
         (words[0] == "--help" || words[0] == "-h");
}

int runCommand(const Command& command, const std::vector<std::string>& words, CommandContext& context) {
  context.command = command.name;
  ParsedArguments parsed = parseArguments(command, words);
  if (asksRawHelp(command, words, context)) parsed = HelpAsked{};
  if (const auto* problem = std::get_if<UsageProblem>(&parsed)) return wrongUsage(context, problem->text);
  const auto* arguments = std::get_if<Arguments>(&parsed);
  if (arguments == nullptr) {
    context.output.print(commandHelp(command));
    return ExitCode::kDone;
  }
  if (arguments->has("--no-color")) context.output.refuseColour();
  return command.run(*arguments, context);
}

int dispatch(std::span<const Command* const> commands, std::span<const std::string> words, CommandContext& context) {
  while (!words.empty() && words[0] == "--no-color") {
    context.output.refuseColour();
    words = words.subspan(1);
  }
  if (words.empty()) {
    context.output.printRemark(overallHelp(commands));
    return ExitCode::kFailure;
  }
  const std::string& first = words[0];
  const auto rest = words.subspan(1);
  if (const Command* command = findCommand(commands, first)) {
    return runCommand(*command, {rest.begin(), rest.end()}, context);
  }
  const bool asksHelp = first == "--help" || first == "-h";
  if (asksHelp || first == "--version") {
    if (!rest.empty()) return wrongUsage(context, first + ": unexpected argument \"" + rest[0] + "\"");
    return asksHelp ? printHelp(commands, context) : printVersion(context);
  }
  if (first.starts_with('-')) return wrongUsage(context, "unknown option " + first);
  return unknownCommand(commands, first, context);
}

}  // namespace

int runCommandLine(std::span<const Command* const> commands, const std::vector<std::string>& words,
                   CommandContext& context) {
  return context.output.finish(dispatch(commands, words, context));
}

int unknownCommand(std::span<const Command* const> commands, std::string_view name, CommandContext& context) {
  std::string text = "unknown command \"" + std::string(name) + "\"";
  const std::string_view suggestion = suggestedCommand(commands, name);
  if (suggestion.empty()) {
    text += "; 'brindle --help' lists the commands";
  } else {
    text += "; did you mean \"" + std::string(suggestion) + "\"?";
  }
  return wrongUsage(context, text);
}

int wrongUsage(CommandContext& context, std::string_view text) {
  const std::string prefix = context.command.empty() ? "" : std::string(context.command) + ": ";
  context.output.remark(prefix + std::string(text));
  return ExitCode::kFailure;
}

}  // namespace brindle
