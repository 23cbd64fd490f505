#include "cli/stop_runner.h"

#include <unistd.h>

#include <algorithm>
#include <set>
#include <vector>

#include "base/stream.h"
#include "cli/exit_code.h"
#include "cli/report_commands.h"
#include "cli/report_text.h"
#include "cli/shown_table.h"
#include "inventory/valid_text.h"
#include "logic/reports/stop_confirm.h"
#include "logic/sessions/byte_text.h"
#include "platform/process_source.h"
#include "platform/process_stopper.h"

namespace brindle {
namespace {

using Align = TextTable::Align;
using Decision = StopConfirm::Decision;

/// The longest answer that is read; more declines.
constexpr std::size_t kAnswerLimit = 64;

std::optional<std::string> readAnswer() {
  std::string line;
  for (;;) {
    char each = 0;
    const Result<std::size_t> count = readSome(kStandardInput, {&each, 1});
    if (!count || *count == 0) return line.empty() ? std::nullopt : std::optional(line);
    if (each == '\n') return line;
    if (line.size() <= kAnswerLimit) line += each;
  }
}

std::vector<StopTarget> targetsOf(const StopList& list) {
  std::vector<StopTarget> targets;
  for (const StopItem& item : list.items) {
    if (!item.leftAlone) targets.push_back({item.pid, item.startTime, item.first});
  }
  return targets;
}

std::string fateText(StopFate fate) {
  switch (fate) {
    case StopFate::stopped:
      return "stopped";
    case StopFate::gone:
      return "had ended already";
    case StopFate::running:
      return "still runs";
    case StopFate::refused:
      return "could not be signalled";
  }
  return {};
}

/// The ports that were to be freed and have no listener any more. Another process may have taken one in between, and
/// then it is not free.
std::vector<int> freedPorts(const StopList& list) {
  std::set<int> ports;
  for (const StopItem& item : list.items) {
    if (!item.leftAlone) ports.insert(item.ports.begin(), item.ports.end());
  }
  if (ports.empty()) return {};
  const std::set<int> taken = listeningPorts();
  std::erase_if(ports, [&](int port) { return taken.contains(port); });
  return {ports.begin(), ports.end()};
}

int carryOut(const StopList& list, bool force, CommandContext& context) {
  const std::vector<StopFate> fates = stopProcesses(targetsOf(list), {.force = force});
  std::size_t at = 0;
  bool allGone = true;
  bool anyThere = false;
  for (const StopItem& item : list.items) {
    if (item.leftAlone) continue;
    const StopFate fate = fates[at++];
    const bool gone = fate == StopFate::stopped || fate == StopFate::gone;
    allGone = allGone && gone;
    anyThere = anyThere || fate != StopFate::gone;
    const std::string line = std::to_string(item.pid) + " " + terminalText(item.name) + ": " + fateText(fate);
    context.output.print((gone ? line : context.output.painted(Paint::red, line)) + "\n");
  }
  const std::vector<int> freed = freedPorts(list);
  if (!freed.empty()) {
    context.output.print((freed.size() == 1 ? "Free again: port " : "Free again: ports ") +
                         ReportText::portList(freed) + ".\n");
  }
  if (!anyThere) {
    context.output.remark("nothing was stopped: it had all ended already");
    return ExitCode::kNegative;
  }
  if (!allGone && !force) context.output.remark("some processes still run; --force kills them");
  return allGone ? ExitCode::kDone : ExitCode::kNegative;
}

}  // namespace

std::string stopUsageProblem(const Arguments& arguments) {
  if (!arguments.has("--stop")) {
    for (const OptionSpec& option : {kYesOption, kForceOption, kDryRunOption}) {
      if (arguments.has(option.name)) return std::string(option.name) + " goes with --stop only";
    }
    return {};
  }
  if (arguments.has("--json") || arguments.has("--watch") || arguments.has("--snapshot")) {
    return "--stop does not go with --json, --watch or --snapshot";
  }
  return reportOptionsOf(arguments).problem;
}

std::optional<HostSnapshot> livingSnapshot(CommandContext& context) {
  auto snapshot = snapshotFor({}, ListingDetail::everything, context.environment);
  if (!snapshot) {
    context.output.remark(snapshot.error());
    return std::nullopt;
  }
  remarkUnreadSettings(context);
  // A failure costs evidence later, not this command.
  (void)rememberOwners(context.environment, *snapshot).has_value();
  return std::move(*snapshot);
}

std::unordered_set<std::int32_t> ownChain() {
  std::unordered_set<std::int32_t> pids{static_cast<std::int32_t>(::getpid())};
  for (const ProcessFacts& facts : processChain(static_cast<std::int32_t>(::getpid()))) pids.insert(facts.pid);
  return pids;
}

std::string stopListText(const StopList& list, const Output& output) {
  TextTable table({{"PID", Align::right},
                   {"NAME", Align::left, kNameWidth},
                   {"MEMORY", Align::right},
                   {"PORTS", Align::left, kPortsWidth},
                   {"LEFT ALONE", Align::left, kReasonWidth},
                   {"COMMAND", Align::left, kCommandWidth}});
  for (const StopItem& item : list.items) {
    table.add({std::to_string(item.pid), item.name, ByteText::text(item.footprint), ReportText::portList(item.ports),
               item.leftAlone.value_or(""), item.commandLine});
  }
  if (table.empty()) return list.summary() + "\n";
  return shownTable(table, output) + "\n" + list.summary() + "\n";
}

int runStop(const StopList& list, const Arguments& arguments, CommandContext& context) {
  context.output.print(stopListText(list, context.output));
  if (list.stopping() == 0) return ExitCode::kNegative;
  if (arguments.has("--dry-run")) return ExitCode::kDone;
  const StopConfirm confirm{.agreedInAdvance = arguments.has("--yes"),
                            .interactive = context.terminals.input && context.terminals.error};
  const Decision decision = confirm.decide([&] {
    context.output.printRemark("Stop " + ReportText::counted(list.stopping(), "process", "processes") + "? [y/N] ");
    std::optional<std::string> answer = readAnswer();
    // At the end of the input the question's line is still open.
    if (!answer) context.output.printRemark("\n");
    return answer;
  });
  switch (decision) {
    case Decision::proceed:
      return carryOut(list, arguments.has("--force"), context);
    case Decision::declined:
      context.output.remark("nothing was stopped");
      return ExitCode::kNegative;
    case Decision::needsTTY:
      context.output.remark("nothing was stopped: there is no terminal to ask at; --yes agrees in advance");
      return ExitCode::kNegative;
  }
  return ExitCode::kFailure;
}

}  // namespace brindle
