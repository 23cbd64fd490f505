// `brindle status`, `ports`, `agents`, `snapshot`.
#include "cli/report_commands.h"

#include <thread>

#include "base/json_writer.h"
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/report_text.h"
#include "logic/reports/cli_reports.h"
#include "platform/settings.h"

namespace brindle {
namespace {

constexpr std::string_view kClearScreen = "\x1b[H\x1b[2J";

Report statusReport(const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
  const StatusDocument document = CLIReports::status(snapshot.report());
  return {options.json ? CLIReports::jsonText(document) + "\n" : ReportText::status(document, output), true};
}

Report portsReport(const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
  const PortsDocument document = CLIReports::ports(snapshot.report());
  return {options.json ? CLIReports::jsonText(document) + "\n" : ReportText::ports(document, snapshot, output),
          !document.listeners.empty()};
}

Report agentsReport(const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
  const AgentsDocument document = CLIReports::agents(snapshot.report(), snapshot.now);
  return {options.json ? CLIReports::jsonText(document) + "\n" : ReportText::agents(document, snapshot, output),
          !document.sessions.empty() || !document.leftBehind.empty()};
}

Report snapshotReport(const HostSnapshot& snapshot, const ReportOptions&, const Output&) {
  const JsonStyle style{.pretty = true, .sortedKeys = true, .escapeSlashes = false};
  return {writeJson(JsonValue(encodeSnapshot(snapshot.processes)), style) + "\n", true};
}

int runStatus(const Arguments& arguments, CommandContext& context) {
  return runReport(arguments, context, {ListingDetail::everything, statusReport});
}

int runPorts(const Arguments& arguments, CommandContext& context) {
  return runReport(arguments, context, {ListingDetail::listeners, portsReport});
}

int runAgents(const Arguments& arguments, CommandContext& context) {
  return runReport(arguments, context, {ListingDetail::agents, agentsReport});
}

int runSnapshot(const Arguments& arguments, CommandContext& context) {
  return runReport(arguments, context, {ListingDetail::everything, snapshotReport});
}

constexpr OptionSpec kReportOptions[] = {kJsonOption, kWatchOption, kSampleOption, kSnapshotOption,
                                         kNowOption,  kUidOption,   kRulesOption};
constexpr OptionSpec kPortsOptions[] = {kJsonOption, kWatchOption, kSnapshotOption,
                                        kNowOption,  kUidOption,   kRulesOption};
constexpr OptionSpec kSnapshotOptions[] = {kSampleOption, kSnapshotOption, kNowOption, kUidOption, kRulesOption};

}  // namespace

void remarkUnreadSettings(CommandContext& context) {
  const std::string problem = settingsOf(context.environment).problem;
  if (!problem.empty()) context.output.remark(problem);
}

int runReport(const Arguments& arguments, CommandContext& context, const ReportKind& kind) {
  const auto [options, problem] = reportOptionsOf(arguments);
  if (!problem.empty()) return wrongUsage(context, problem);
  remarkUnreadSettings(context);
  std::string told;
  for (;;) {
    const ReportSnapshotResult snapshot = snapshotFor(options, kind.detail, context.environment);
    if (!snapshot) {
      context.output.remark(snapshot.error());
      return ExitCode::kFailure;
    }
    const Report report = kind.make(*snapshot, options, context.output);
    if (options.watch && !options.json && context.terminals.output) context.output.print(kClearScreen);
    context.output.print(report.text);
    const std::string unseen = options.json ? std::string() : ReportText::unseen(*snapshot);
    if (!unseen.empty() && unseen != told) context.output.remark(unseen);
    told = unseen;
    // Whoever looks also remembers who started what; a failure costs evidence later, not this report.
    if (!options.snapshotFile && kind.detail != ListingDetail::listeners) {
      (void)rememberOwners(context.environment, *snapshot).has_value();
    }
    if (!options.watch) return report.found ? ExitCode::kDone : ExitCode::kNegative;
    if (context.output.readerGone()) return ExitCode::kDone;
    std::this_thread::sleep_for(*options.watch);
  }
}

constinit const Command kStatusCommand = {
    .name = "status",
    .summary = "one line: what agents run, what they left behind, and what it holds",
    .usage = "[--json] [--watch [SECONDS]]",
    .options = kReportOptions,
    .run = runStatus};

constinit const Command kPortsCommand = {.name = "ports",
                                         .summary = "lists who listens on which port",
                                         .usage = "[--json] [--watch [SECONDS]]",
                                         .details = "Exits with 1 when nothing listens.",
                                         .options = kPortsOptions,
                                         .run = runPorts};

constinit const Command kAgentsCommand = {
    .name = "agents",
    .summary = "lists the agents, what they started and what they left behind",
    .usage = "[--json] [--watch [SECONDS]] [--sample]",
    .details =
        "CPU figures, and with them the activity, are averages since the last run of up to 10 minutes ago;\n"
        "--sample measures instead. Exits with 1 when there is no agent and nothing was left behind.",
    .options = kReportOptions,
    .run = runAgents};

constinit const Command kSnapshotCommand = {
    .name = "snapshot",
    .summary = "prints the processes of this machine as JSON",
    .usage = "[--sample]",
    .details = "What it prints can be given to --snapshot of the reports, here or on another machine.",
    .options = kSnapshotOptions,
    .run = runSnapshot};

}  // namespace brindle
