// `brindle quit` and `brindle stop`.
#include <algorithm>
#include <limits>
#include <string>

#include "base/number_text.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/stop_runner.h"
#include "cli/usage_text.h"
#include "inventory/protections.h"

namespace brindle {
namespace {

constexpr std::int64_t kHighestPort = 65535;

int negative(CommandContext& context, const std::string& text) {
  context.output.remark(text);
  return ExitCode::kNegative;
}

/// A whole number from 1 to `highest`.
std::optional<std::int32_t> numberUpTo(std::int64_t highest, std::string_view text) {
  const auto number = integerFromText(text);
  if (!number || *number < 1 || *number > highest) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

std::optional<std::int32_t> pidFrom(std::string_view text) {
  return numberUpTo(std::numeric_limits<std::int32_t>::max(), text);
}

int runQuit(const Arguments& arguments, CommandContext& context) {
  const std::string& word = arguments.words[0];
  const auto pid = pidFrom(word);
  if (!pid) return wrongUsage(context, expectedText({.expected = "the pid of an agent session", .got = word}));
  const auto snapshot = livingSnapshot(context);
  if (!snapshot) return ExitCode::kFailure;
  const auto session = std::ranges::find(snapshot->sessions, *pid, &AgentSession::pid);
  if (session == snapshot->sessions.end()) {
    return negative(context, "no agent session has the pid " + word + "; 'brindle agents' lists them");
  }
  return runStop(stopTree(*snapshot, {.root = *pid, .asSession = true}, ownChain()), arguments, context);
}

int runStopCommand(const Arguments& arguments, CommandContext& context) {
  const std::string& word = arguments.words[0];
  const bool isPort = word.starts_with(':');
  const auto number = isPort ? numberUpTo(kHighestPort, std::string_view(word).substr(1)) : pidFrom(word);
  if (!number) return wrongUsage(context, expectedText({.expected = ":PORT or PID", .got = word}));
  const auto snapshot = livingSnapshot(context);
  if (!snapshot) return ExitCode::kFailure;
  const TrackedProcess* process = isPort ? listenerOn(*snapshot, *number) : processOf(*snapshot, *number);
  if (process == nullptr) {
    const std::string missing = isPort ? "nothing that can be seen listens on port " : "there is no process ";
    return negative(context, missing + std::to_string(*number));
  }
  return runStop(stopTree(*snapshot, {.root = process->pid}, ownChain()), arguments, context);
}

constexpr OptionSpec kStopOptions[] = {kYesOption, kForceOption, kDryRunOption};
constexpr ArgumentSpec kSessionWord[] = {{.name = "SESSION_PID", .help = "the pid that 'brindle agents' shows"}};
constexpr ArgumentSpec kTargetWord[] = {{.name = ":PORT or PID", .help = "who listens on the port, or the process"}};

constexpr std::string_view kStopDetails =
    "Shows what would be stopped and what is left alone and why, asks, and stops it: the topmost process first, "
    "then what did not follow. Exits with 1 when something still runs or nothing was stopped, also because there "
    "is no terminal to ask at.";

}  // namespace

constinit const Command kQuitCommand = {.name = "quit",
                                        .summary = "quits an agent session with everything it started",
                                        .usage = "SESSION_PID [--yes] [--force] [--dry-run]",
                                        .details = kStopDetails,
                                        .options = kStopOptions,
                                        .arguments = kSessionWord,
                                        .run = runQuit};

constinit const Command kStopCommand = {
    .name = "stop",
    .summary = "stops the process that listens on a port, or any process, with what hangs below it",
    .usage = ":PORT|PID [--yes] [--force] [--dry-run]",
    .details = kStopDetails,
    .options = kStopOptions,
    .arguments = kTargetWord,
    .run = runStopCommand};

}  // namespace brindle
