// `brindle setup`: registration snippets, and the safe installation of hooks and MCP server.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/setup_run.h"
#include "platform/executable_path.h"
#include "system/child_process.h"

namespace brindle {
namespace {

std::optional<std::string> programInPath(const Environment& environment, std::string_view name) {
  const std::string path = environment("PATH").value_or("");
  for (std::size_t at = 0; at <= path.size();) {
    const std::size_t end = std::min(path.find(':', at), path.size());
    const std::string folder = path.substr(at, end - at);
    at = end + 1;
    // A folder that is relative names another program tomorrow.
    if (!folder.starts_with('/')) continue;
    std::string file = folder + "/" + std::string(name);
    struct stat status {};
    const bool isProgram = ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (isProgram && ::access(file.c_str(), X_OK) == 0) return file;
  }
  return std::nullopt;
}

/// The path under which the program is found in PATH, if it is this one: it outlives the next version, where the
/// resolved one may not.
std::string lastingPath(const Environment& environment, const std::string& resolved) {
  const auto found = programInPath(environment, "brindle");
  std::error_code unknown;
  if (found && std::filesystem::canonical(*found, unknown) == resolved) return *found;
  return resolved;
}

std::string runToItsEnd(const std::vector<std::string>& words) {
  const auto child = ChildProcess::start({.program = words.front(),
                                          .arguments = {words.begin() + 1, words.end()},
                                          .searchesPath = true,
                                          .nullStreams = true,
                                          .defaultSignals = true});
  if (!child) return child.error().message();
  const auto end = child->wait();
  if (!end) return end.error().message();
  if (end->killedBy != 0) return "ended by signal " + std::to_string(end->killedBy);
  if (end->exitStatus != 0) return "ended with " + std::to_string(end->exitStatus);
  return {};
}

/// The client of a word that the table of arguments allows.
std::optional<MCPClient> clientOf(const Arguments& arguments) {
  for (const auto& row : allCases<MCPClient>()) {
    if (!arguments.words.empty() && arguments.words.front() == clientWord(row.value)) return row.value;
  }
  return std::nullopt;
}

int runSetupCommand(const Arguments& arguments, CommandContext& context) {
  SetupRequest request{.client = clientOf(arguments)};
  int actions = 0;
  const auto take = [&](std::string_view option, SetupAction action) {
    if (!arguments.has(option)) return;
    request.action = action;
    ++actions;
  };
  take("--dry-run", SetupAction::dryRun);
  take("--apply", SetupAction::apply);
  take("--undo", SetupAction::undo);
  if (actions > 1) return wrongUsage(context, "expected one of --dry-run, --apply and --undo");
  const Result<std::string> program = executablePath();
  if (!program) {
    context.output.remark(program.error().message());
    return ExitCode::kFailure;
  }
  const SetupMachine machine{
      .program = lastingPath(context.environment, *program),
      .findProgram = [&](std::string_view name) { return programInPath(context.environment, name); },
      .run = runToItsEnd};
  return runSetup(request, machine, context);
}

constexpr std::string_view kClients[] = {"claude", "cursor", "codex"};
constexpr ArgumentSpec kArguments[] = {{.name = "CLIENT",
                                        .help = "claude, cursor or codex; all that are used here when not given",
                                        .required = false,
                                        .choices = kClients}};
constexpr OptionSpec kOptions[] = {{.name = "--dry-run", .help = "shows what --apply would change"},
                                   {.name = "--apply", .help = "adds hooks and MCP server to the agents' settings"},
                                   {.name = "--undo", .help = "takes them away again"}};

}  // namespace

constinit const Command kSetupCommand = {
    .name = "setup",
    .summary = "connects coding agents to brindle",
    .usage = "[claude|cursor|codex] [--dry-run|--apply|--undo]",
    .details =
        "Without an option it prints what to paste or to run. --apply does it: hooks for Claude Code, the notify "
        "command of Codex, and the MCP server for all three, by the agents' own commands where they are "
        "installed. Only entries of brindle are changed; everything else keeps its bytes, and a copy of the "
        "original is kept until --undo. CLAUDE_CONFIG_DIR and CODEX_HOME are followed. Exit status 1: something "
        "was left alone because it belongs to another program.",
    .options = kOptions,
    .arguments = kArguments,
    .run = runSetupCommand};

}  // namespace brindle
