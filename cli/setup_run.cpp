#include "cli/setup_run.h"

#include <algorithm>

#include "base/text.h"
#include "cli/exit_code.h"
#include "cli/line_diff.h"
#include "logic/mcp/shell_word.h"
#include "platform/directories.h"

namespace brindle {
namespace {

std::string commandLine(const std::vector<std::string>& words) {
  std::vector<std::string> quoted;
  for (const std::string& word : words) quoted.push_back(shellWord(word));
  return joined(quoted, " ");
}

std::string diffOf(const SettingsChange& change) {
  const std::string nothing = "/dev/null";
  return lineDiff({.beforeName = change.before ? change.path : nothing,
                   .afterName = change.after ? change.path : nothing,
                   .before = change.before ? *change.before : std::string_view(),
                   .after = change.after ? *change.after : std::string_view()});
}

/// The work for one agent, and what is told about it.
class ClientRun {
 public:
  ClientRun(const ClientSetup& setup, const SetupMachine& machine, CommandContext& context)
      : setup_(setup), machine_(machine), context_(context), name_(clientName(setup.client)) {}

  int run(SetupAction action) {
    for (const SettingsEdit& edit : setup_.edits) {
      change(action == SetupAction::undo ? plannedRemoval(edit) : plannedAddition(edit), action);
    }
    if (setup_.registration) registerServer(action);
    if (!changed_ && code_ == ExitCode::kDone) context_.output.print(name_ + ": nothing to change\n");
    return code_;
  }

 private:
  void tell(int code, const std::string& text) {
    context_.output.remark(name_ + ": " + text);
    code_ = std::max(code_, code);
  }

  void change(const SettingsChange& change, SetupAction action) {
    for (const std::string& each : change.declined) tell(ExitCode::kNegative, change.path + ": " + each);
    if (!change.problem.empty()) tell(ExitCode::kFailure, change.path + ": " + change.problem + "; left alone");
    if (!change.changes()) return;
    changed_ = true;
    if (action == SetupAction::dryRun) {
      context_.output.print(diffOf(change));
      return;
    }
    if (const std::string problem = carriedOut(change); !problem.empty()) {
      tell(ExitCode::kFailure, change.path + ": " + problem);
      return;
    }
    std::string done = name_ + (change.after ? ": wrote " : ": removed ") + change.path;
    if (change.firstTouch && change.before) done += "; the original is in " + backupPath(change.path);
    context_.output.print(done + "\n");
  }

  void registerServer(SetupAction action) {
    const SetupRegistration& registration = *setup_.registration;
    const bool adds = action != SetupAction::undo;
    if (adds && registeredState(registration) == ServerState::foreign) {
      tell(ExitCode::kNegative,
           registration.file + ": an MCP server \"brindle\" of somebody else is registered; left alone");
    }
    for (const auto& words : adds ? commandsToAdd(registration) : commandsToRemove(registration)) {
      changed_ = true;
      if (action == SetupAction::dryRun) {
        context_.output.print(name_ + ": would run: " + commandLine(words) + "\n");
        continue;
      }
      if (const std::string problem = machine_.run(words); !problem.empty()) {
        tell(ExitCode::kFailure, commandLine(words) + ": " + problem);
        return;
      }
      context_.output.print(name_ + ": ran " + commandLine(words) + "\n");
    }
  }

  const ClientSetup& setup_;
  const SetupMachine& machine_;
  CommandContext& context_;
  std::string name_;
  bool changed_ = false;
  int code_ = ExitCode::kDone;
};

int show(const SetupRequest& request, const SetupMachine& machine, CommandContext& context) {
  std::string text;
  for (const auto& row : allCases<MCPClient>()) {
    if (request.client && *request.client != row.value) continue;
    const MCPConfigSnippet snippet = MCPConfigSnippet::make(row.value, machine.program);
    text += text.empty() ? "" : "\n";
    text += context.output.painted(Paint::bold, clientName(row.value)) + ": " + snippet.title + "\n\n";
    text += snippet.text + "\n";
  }
  context.output.print(text);
  return ExitCode::kDone;
}

/// Whether the path can stand in JSON, in TOML and on a command line alike.
bool isWritable(std::string_view path) {
  return isValidUtf8(path) &&
         std::ranges::none_of(path, [](char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f; });
}

}  // namespace

int runSetup(const SetupRequest& request, const SetupMachine& machine, CommandContext& context) {
  if (request.action == SetupAction::show) return show(request, machine, context);
  if (!isWritable(machine.program)) {
    context.output.remark("the path of brindle cannot be written into settings: it is no text of one line");
    return ExitCode::kFailure;
  }
  const auto home = homeFolder(context.environment);
  if (!home) {
    context.output.remark("no home folder: set HOME");
    return ExitCode::kFailure;
  }
  int code = ExitCode::kDone;
  bool any = false;
  for (const auto& row : allCases<MCPClient>()) {
    if (request.client && *request.client != row.value) continue;
    const ClientSetup setup = clientSetup(row.value, *home, context.environment, machine);
    if (!request.client && !setup.present) continue;
    any = true;
    code = std::max(code, ClientRun(setup, machine, context).run(request.action));
  }
  if (any) return code;
  context.output.remark("no agent is used here; name one to set it up all the same");
  return ExitCode::kNegative;
}

}  // namespace brindle
