// `brindle run [OPTIONS] -- COMMAND…`.
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/exit_code.h"
#include "cli/hold_text.h"
#include "cli/run_session.h"
#include "platform/policy_power_gate.h"
#include "platform/power_source.h"

namespace brindle {

namespace {

/// Everything that holds sleep off lives and ends in here, before this process may die of the command's signal.
RunResult runHere(const RunRequest& request, std::int64_t batteryFloor, CommandContext& context) {
  auto loop = EventLoop::create();
  if (!loop) {
    context.output.remark(loop.error().message());
    return {.code = ExitCode::kFailure};
  }
  const auto client = connectToHelper(*loop);
  LoopHoldTimer timer(*loop);
  PolicyPowerGate gate(*loop, batteryFloor, readPowerAndHeat);
  return runHeld(*loop, {.client = *client, .timer = timer, .gate = gate}, request, context);
}

int runRun(const Arguments& arguments, CommandContext& context) {
  if (arguments.trailing.empty()) return wrongUsage(context, "expected a command");
  const auto [duration, wrong] = holdDuration(arguments.value("--for"));
  if (!wrong.empty()) return wrongUsage(context, wrong);
  const BatteryFloor floor = batteryFloorOf(arguments.value("--battery-floor"));
  if (!floor.problem.empty()) return wrongUsage(context, floor.problem);
  const RunResult result =
      runHere({.words = arguments.trailing, .duration = duration, .bestEffort = arguments.has("--best-effort")},
              floor.percent, context);
  if (!result.child) return result.code;
  if (result.child->killedBy == 0) return result.child->exitStatus;
  dieOf(result.child->killedBy);
  return ExitCode::kSignalBase + result.child->killedBy;
}

constexpr OptionSpec kOptions[] = {
    {.name = "--for", .value = "DURATION", .help = "how long sleep stays off at most, 12h or less; 4h when not given"},
    {.name = "--battery-floor",
     .value = "PERCENT",
     .help = "lets go at this charge on battery, 5 to 90; 20 when not given"},
    {.name = "--best-effort", .help = "runs COMMAND also when sleep cannot be held off"}};

}  // namespace

constinit const Command kRunCommand = {
    .name = "run",
    .summary = "holds system sleep off while a command runs",
    .usage = "[--for DURATION] [--battery-floor PERCENT] [--best-effort] -- COMMAND…",
    .details =
        "COMMAND keeps its terminal, streams and signals, and its exit status is passed on: 128 and the number "
        "of the signal when one killed it, 127 when there is no such command, 126 when it cannot be executed. "
        "When sleep cannot be held off, COMMAND is not run and the exit status is 2. When the time is over "
        "sleep comes back on and COMMAND goes on.",
    .options = kOptions,
    .style = ArgumentStyle::trailingCommand,
    .run = runRun};

}  // namespace brindle
