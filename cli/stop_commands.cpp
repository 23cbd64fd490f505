// `brindle quit`, `stop`, `idle`, `ghosts`.
#include <algorithm>
#include <cmath>
#include <string>

#include "base/json_writer.h"
#include "base/number_text.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/duration_text.h"
#include "cli/exit_code.h"
#include "cli/report_commands.h"
#include "cli/report_text.h"
#include "cli/stop_list.h"
#include "cli/stop_runner.h"
#include "inventory/protections.h"
#include "inventory/valid_text.h"
#include "logic/reports/cli_reports.h"
#include "logic/reports/idle_candidates.h"
#include "logic/reports/idle_stop.h"
#include "logic/sessions/record_json.h"

namespace brindle {
namespace {

constexpr Seconds kUsualIdleAge{7200};
constexpr std::int64_t kHighestPort = 65535;

int negative(CommandContext& context, const std::string& text) {
  context.output.remark(text);
  return ExitCode::kNegative;
}

/// A living machine, for what is about to be stopped; a recorded one cannot be.
std::optional<HostSnapshot> living(CommandContext& context) {
  auto snapshot = snapshotFor({}, ListingDetail::everything, context.environment);
  if (!snapshot) {
    context.output.remark(snapshot.error());
    return std::nullopt;
  }
  remarkUnreadSettings(context);
  // What survives its agent must be known later; a failure costs that evidence, not this command.
  (void)rememberOwners(context.environment, *snapshot).has_value();
  return std::move(*snapshot);
}

int runQuit(const Arguments& arguments, CommandContext& context) {
  const auto pid = integerFromText(arguments.words[0]);
  if (!pid || *pid < 1 || *pid > INT32_MAX) {
    return wrongUsage(context, "quit " + terminalText(arguments.words[0]) + ": expected the pid of an agent session");
  }
  const auto snapshot = living(context);
  if (!snapshot) return ExitCode::kFailure;
  const auto root = static_cast<std::int32_t>(*pid);
  const auto session = std::ranges::find(snapshot->sessions, root, &AgentSession::pid);
  if (session == snapshot->sessions.end()) {
    return negative(context, "no agent session has the pid " + std::to_string(root) + "; brindle agents lists them");
  }
  return runStop(stopTree(*snapshot, {.root = root, .asSession = true}, ownChain()), arguments, context);
}

/// The process that ":3000" or "812" means; an empty problem and null when there is none.
struct Target {
  const TrackedProcess* process = nullptr;
  std::string missing;
};
std::optional<Target> targetOf(const std::string& word, const HostSnapshot& snapshot) {
  const bool isPort = word.starts_with(':');
  const auto number = integerFromText(isPort ? std::string_view(word).substr(1) : std::string_view(word));
  if (!number || *number < 1 || *number > (isPort ? kHighestPort : std::int64_t{INT32_MAX})) return std::nullopt;
  if (isPort)
    return Target{listenerOn(snapshot, static_cast<int>(*number)), "nothing that can be seen listens on port "};
  return Target{processOf(snapshot, static_cast<std::int32_t>(*number)), "there is no process "};
}

int runStopCommand(const Arguments& arguments, CommandContext& context) {
  const std::string& word = arguments.words[0];
  const auto snapshot = living(context);
  if (!snapshot) return ExitCode::kFailure;
  const auto target = targetOf(word, *snapshot);
  if (!target) return wrongUsage(context, "stop " + terminalText(word) + ": expected :PORT or a pid");
  if (target->process == nullptr) {
    return negative(context, target->missing + word.substr(word.starts_with(':') ? 1 : 0));
  }
  return runStop(stopTree(*snapshot, {.root = target->process->pid}, ownChain()), arguments, context);
}

/// Only this machine's processes can be stopped, once, and what is told of it is for people.
std::string problemOfStopping(const Arguments& arguments) {
  if (arguments.has("--json") || arguments.has("--watch") || arguments.has("--snapshot")) {
    return "--stop does not go with --json, --watch or --snapshot";
  }
  return reportOptionsOf(arguments).problem;
}

IdlePlan idlePlanOf(const HostSnapshot& snapshot, Seconds minimumAge) {
  ReportSnapshot report = snapshot.report();
  const ProtectionReasons reasons = unaskedReasons(snapshot);
  const ReportSnapshot unasked{.processes = report.processes,
                               .sessions = report.sessions,
                               .leftBehind = report.leftBehind,
                               .protections = reasons,
                               .currentUser = report.currentUser,
                               .rules = report.rules};
  return IdleStop::plan(idleCandidates(unasked, snapshot.now), minimumAge.count());
}

int runIdle(const Arguments& arguments, CommandContext& context) {
  Seconds age = kUsualIdleAge;
  if (const auto text = arguments.value("--older-than")) {
    const auto parsed = parseDuration(*text);
    if (!parsed) {
      return wrongUsage(context, "--older-than " + terminalText(*text) + ": " + std::string(kDurationExpectation));
    }
    age = *parsed;
  }
  if (arguments.has("--stop")) {
    if (const std::string problem = problemOfStopping(arguments); !problem.empty()) return wrongUsage(context, problem);
    const auto snapshot = living(context);
    if (!snapshot) return ExitCode::kFailure;
    return runStop(stopIdle(*snapshot, idlePlanOf(*snapshot, age), ownChain()), arguments, context);
  }
  const auto make = [age](const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
    const IdleDocument document = IdleStop::document(idlePlanOf(snapshot, age), age.count());
    return Report{options.json ? CLIReports::jsonText(document) + "\n" : ReportText::idle(document, output),
                  !document.stop.empty() || !document.skipped.empty()};
  };
  return runReport(arguments, context, {ListingDetail::everything, make});
}

JsonArray rowsOf(const std::vector<LeftBehind>& list) {
  JsonArray rows;
  for (const LeftBehind& each : list) {
    JsonObject row;
    row.append("pid", each.process.pid);
    row.append("command", each.process.commandLine);
    row.append("origin", each.origin);
    row.append("memoryBytes", unsignedNumber(each.process.footprint));
    row.append("ports", portsToJson(each.process.ports));
    rows.emplace_back(std::move(row));
  }
  return rows;
}

Report ghostsReport(const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
  const bool found = !snapshot.leftBehind.empty() || !snapshot.likely.empty();
  if (!options.json) return {ReportText::ghosts(snapshot, output), found};
  JsonObject document;
  document.append("schema", kReportSchema);
  document.append("command", "ghosts");
  document.append("leftBehind", rowsOf(snapshot.leftBehind));
  document.append("likely", rowsOf(snapshot.likely));
  const JsonStyle style{.pretty = true, .sortedKeys = true, .escapeSlashes = false};
  return {writeJson(JsonValue(std::move(document)), style) + "\n", found};
}

int runGhosts(const Arguments& arguments, CommandContext& context) {
  if (!arguments.has("--stop")) return runReport(arguments, context, {ListingDetail::agents, ghostsReport});
  if (const std::string problem = problemOfStopping(arguments); !problem.empty()) return wrongUsage(context, problem);
  const auto snapshot = living(context);
  if (!snapshot) return ExitCode::kFailure;
  return runStop(stopLeftBehind(*snapshot, ownChain()), arguments, context);
}

constexpr OptionSpec kStopFlag = {.name = "--stop", .help = "stop them, after asking"};
constexpr OptionSpec kOlderThan = {
    .name = "--older-than", .value = "DURATION", .help = "only what has run this long; 2h when not given"};
constexpr OptionSpec kStopOptions[] = {kYesOption, kForceOption, kDryRunOption};
constexpr OptionSpec kIdleOptions[] = {kOlderThan,    kStopFlag,   kYesOption,   kForceOption,
                                       kDryRunOption, kJsonOption, kWatchOption, kSnapshotOption,
                                       kNowOption,    kUidOption,  kRulesOption};
constexpr OptionSpec kGhostOptions[] = {kStopFlag,    kYesOption,      kForceOption, kDryRunOption, kJsonOption,
                                        kWatchOption, kSnapshotOption, kNowOption,   kUidOption,    kRulesOption};
constexpr ArgumentSpec kSessionWord[] = {{.name = "SESSION_PID", .help = "the pid that brindle agents shows"}};
constexpr ArgumentSpec kTargetWord[] = {{.name = ":PORT|PID", .help = "who listens on the port, or the process"}};

constexpr std::string_view kStopDetails =
    "Shows what would be stopped and what is left alone and why, asks, and stops it: the topmost process first,\n"
    "then what did not follow. Exits with 1 when something still runs or nothing was stopped, also because there\n"
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

constinit const Command kIdleCommand = {
    .name = "idle",
    .summary = "lists dev servers and the like that have run for long, and stops them",
    .usage =
        "[--older-than DURATION] [--json] [--watch [SECONDS]]\n--stop [--older-than DURATION] [--yes] [--force] "
        "[--dry-run]",
    .details = "Exits with 1 when nothing is old enough.",
    .options = kIdleOptions,
    .run = runIdle};

constinit const Command kGhostsCommand = {
    .name = "ghosts",
    .summary = "lists what outlived the agent that started it, and stops it",
    .usage = "[--json] [--watch [SECONDS]]\n--stop [--yes] [--force] [--dry-run]",
    .details =
        "What has only perhaps been left behind is shown and never stopped; nor is what clients are connected to.\n"
        "Exits with 1 when nothing was left behind.",
    .options = kGhostOptions,
    .run = runGhosts};

}  // namespace brindle
