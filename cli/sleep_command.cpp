// `brindle sleep off|on|status`.
#include "cli/command_line.h"
#include "cli/commands.h"
#include "cli/duration_text.h"
#include "cli/exit_code.h"
#include "cli/hold_text.h"
#include "cli/sleep_off.h"
#include "platform/policy_power_gate.h"
#include "platform/power_source.h"

namespace brindle {

namespace {

int problem(const HelperProblem& problem, CommandContext& context) {
  context.output.remark(problemText(problem));
  return ExitCode::kFailure;
}

int off(const Arguments& arguments, EventLoop& loop, CommandContext& context) {
  const auto [duration, wrong] = holdDuration(arguments.value("--for"));
  if (!wrong.empty()) return wrongUsage(context, wrong);
  const BatteryFloor floor = batteryFloorOf(arguments.value("--battery-floor"));
  if (!floor.problem.empty()) return wrongUsage(context, floor.problem);
  const auto client = connectToHelper(loop);
  LoopHoldTimer timer(loop);
  PolicyPowerGate gate(loop, floor.percent, readPowerAndHeat);
  return sleepOff(loop, {.client = *client, .timer = timer, .gate = gate}, duration, context);
}

int switchedOn(const HelperAnswer<SleepReply>& answer, CommandContext& context) {
  if (!answer) return problem(answer.error(), context);
  if (!answer->ok) {
    context.output.remark("sleep may still be off: " + answer->message);
    return ExitCode::kFailure;
  }
  context.output.print("Sleep is on.\n");
  return ExitCode::kDone;
}

int shownStatus(const HelperAnswer<HelperStatus>& answer, CommandContext& context) {
  if (!answer) return problem(answer.error(), context);
  if (!answer->sleepDisabled) {
    context.output.print("Sleep is on.\n");
    return ExitCode::kNegative;
  }
  // Where the system itself is asked, nobody knows for how long.
  const bool known = answer->remaining > Seconds{0};
  context.output.print(known ? "Sleep is off for another " + durationText(answer->remaining) + ".\n"
                             : "Sleep is off.\n");
  return ExitCode::kDone;
}

int finished(int code) { return code < 0 ? ExitCode::kFailure : code; }

int on(EventLoop& loop, CommandContext& context) {
  const auto client = connectToHelper(loop);
  client->setSleepDisabled({.disabled = false},
                           [&](const HelperAnswer<SleepReply>& answer) { loop.exit(switchedOn(answer, context)); });
  return finished(loop.run());
}

int status(EventLoop& loop, CommandContext& context) {
  const auto client = connectToHelper(loop);
  client->status([&](const HelperAnswer<HelperStatus>& answer) { loop.exit(shownStatus(answer, context)); });
  return finished(loop.run());
}

int runSleep(const Arguments& arguments, CommandContext& context) {
  const std::string& verb = arguments.words[0];
  for (const std::string_view option : {"--for", "--battery-floor"}) {
    if (verb != "off" && arguments.has(option)) {
      return wrongUsage(context, std::string(option) + " goes with off only");
    }
  }
  auto loop = EventLoop::create();
  if (!loop) {
    context.output.remark(loop.error().message());
    return ExitCode::kFailure;
  }
  if (verb == "off") return off(arguments, *loop, context);
  if (verb == "on") return on(*loop, context);
  return status(*loop, context);
}

constexpr std::string_view kVerbs[] = {"off", "on", "status"};
constexpr ArgumentSpec kArguments[] = {{.name = "off|on|status",
                                        .help = "holds sleep off until interrupted, switches it on, or says how it is",
                                        .choices = kVerbs}};
constexpr OptionSpec kOptions[] = {
    {.name = "--for", .value = "DURATION", .help = "how long sleep stays off at most, 12h or less; 4h when not given"},
    {.name = "--battery-floor",
     .value = "PERCENT",
     .help = "lets go at this charge on battery, 5 to 90; 20 when not given"}};

}  // namespace

constinit const Command kSleepCommand = {
    .name = "sleep",
    .summary = "switches system sleep off or on, or tells which it is",
    .usage = "off [--for DURATION] [--battery-floor PERCENT]\non\nstatus",
    .details =
        "'off' holds sleep off as long as it runs, the lid closed or not, and lets go however it ends: after "
        "the time, at Ctrl-C, or killed. Its exit status is 0 when the time is over, 128 and the number of the "
        "signal that interrupted it, and 1 when an earlier hold has used up its time and sleep must be switched "
        "on first.\n\n"
        "'on' switches sleep on, whoever holds it off; a holder that goes on asks again within half a "
        "minute.\n\n"
        "'status' exits with 0 while sleep is off and with 1 while it is on.",
    .options = kOptions,
    .arguments = kArguments,
    .run = runSleep};

}  // namespace brindle
