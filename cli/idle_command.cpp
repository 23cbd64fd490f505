// `brindle idle`: lists what has run for long, and stops it.
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/duration_text.h"
#include "cli/exit_code.h"
#include "cli/report_commands.h"
#include "cli/report_text.h"
#include "cli/stop_runner.h"
#include "cli/usage_text.h"
#include "inventory/protections.h"
#include "logic/reports/cli_reports.h"
#include "logic/reports/idle_candidates.h"
#include "logic/reports/idle_stop.h"

namespace brindle {
namespace {

constexpr Seconds kUsualAge{7200};

IdlePlan planOf(const HostSnapshot& snapshot, Seconds minimumAge) {
  const ReportSnapshot report = snapshot.report();
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
  if (const std::string problem = stopUsageProblem(arguments); !problem.empty()) return wrongUsage(context, problem);
  Seconds age = kUsualAge;
  if (const auto text = arguments.value("--older-than")) {
    const auto parsed = parseDuration(*text);
    if (!parsed) {
      return wrongUsage(context,
                        expectedText({.subject = "--older-than", .expected = kExpectedDuration, .got = *text}));
    }
    age = *parsed;
  }
  if (arguments.has("--stop")) {
    const auto snapshot = livingSnapshot(context);
    if (!snapshot) return ExitCode::kFailure;
    return runStop(stopIdle(*snapshot, planOf(*snapshot, age), ownChain()), arguments, context);
  }
  const auto make = [age](const HostSnapshot& snapshot, const ReportOptions& options, const Output& output) {
    const IdleDocument document = IdleStop::document(planOf(snapshot, age), age.count());
    return Report{options.json ? CLIReports::jsonText(document) + "\n" : ReportText::idle(document, output),
                  !document.stop.empty() || !document.skipped.empty()};
  };
  return runReport(arguments, context, {ListingDetail::everything, make});
}

constexpr OptionSpec kOlderThan = {
    .name = "--older-than", .value = "DURATION", .help = "only what has run this long; 2h when not given"};
constexpr OptionSpec kOptions[] = {kOlderThan,   kStopOption,     kYesOption, kForceOption, kDryRunOption, kJsonOption,
                                   kWatchOption, kSnapshotOption, kNowOption, kUidOption,   kRulesOption};

}  // namespace

constinit const Command kIdleCommand = {
    .name = "idle",
    .summary = "lists dev servers and the like that have run for long, and stops them",
    .usage =
        "[--older-than DURATION] [--json] [--watch [SECONDS]]\n"
        "--stop [--older-than DURATION] [--yes] [--force] [--dry-run]",
    .details =
        "Exits with 1 when nothing is old enough. --stop shows what would be stopped and what is left alone and why, "
        "asks, "
        "and stops it as 'brindle stop' does.",
    .options = kOptions,
    .run = runIdle};

}  // namespace brindle
