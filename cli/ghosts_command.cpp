// `brindle ghosts`: lists what outlived its agent, and stops it.
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/report_commands.h"
#include "cli/report_text.h"
#include "cli/stop_runner.h"
#include "logic/reports/cli_reports.h"

namespace brindle {
namespace {

Report ghostsReport(const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
  const GhostsDocument document = CLIReports::ghosts(snapshot.report(), snapshot.likely);
  return {options.json ? CLIReports::jsonText(document) + "\n" : ReportText::ghosts(document, output),
          !document.leftBehind.empty() || !document.likely.empty()};
}

int runGhosts(const Arguments& arguments, CommandContext& context) {
  if (const std::string problem = stopUsageProblem(arguments); !problem.empty()) return wrongUsage(context, problem);
  if (!arguments.has("--stop")) return runReport(arguments, context, {ListingDetail::agents, ghostsReport});
  const auto snapshot = livingSnapshot(context);
  if (!snapshot) return ExitCode::kFailure;
  return runStop(stopLeftBehind(*snapshot, ownChain()), arguments, context);
}

constexpr OptionSpec kOptions[] = {kStopOption,  kYesOption,      kForceOption, kDryRunOption, kJsonOption,
                                   kWatchOption, kSnapshotOption, kNowOption,   kUidOption,    kRulesOption};

}  // namespace

constinit const Command kGhostsCommand = {
    .name = "ghosts",
    .summary = "lists what outlived the agent that started it, and stops it",
    .usage = "[--json] [--watch [SECONDS]]\n--stop [--yes] [--force] [--dry-run]",
    .details =
        "What has only perhaps been left behind is shown and never stopped; nor is what clients are connected to. "
        "Exits with 1 when nothing was left behind. --stop shows what would be stopped and what is left alone and why, "
        "asks, and stops it as 'brindle stop' does.",
    .options = kOptions,
    .run = runGhosts};

}  // namespace brindle
