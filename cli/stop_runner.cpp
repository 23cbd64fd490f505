#include "cli/stop_runner.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <vector>

#include "cli/exit_code.h"
#include "cli/report_text.h"
#include "cli/text_table.h"
#include "inventory/valid_text.h"
#include "logic/reports/stop_confirm.h"
#include "logic/sessions/byte_text.h"
#include "platform/process_source.h"
#include "platform/process_stopper.h"

namespace brindle {
namespace {

using Align = TextTable::Align;
using Decision = StopConfirm::Decision;

constexpr std::size_t kNameWidth = 24;
constexpr std::size_t kCommandWidth = 50;
/// The longest answer that is read; more declines.
constexpr std::size_t kAnswerLimit = 64;

std::optional<std::string> readAnswer() {
  std::string line;
  for (;;) {
    char each = 0;
    const ssize_t count = ::read(STDIN_FILENO, &each, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return line.empty() ? std::nullopt : std::optional(line);
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
  if (!allGone && !force) context.output.remark("some processes still run: --force ends them without asking them");
  return allGone ? ExitCode::kDone : ExitCode::kNegative;
}

}  // namespace

std::unordered_set<std::int32_t> ownChain() {
  std::unordered_set<std::int32_t> pids{static_cast<std::int32_t>(::getpid())};
  for (const ProcessFacts& facts : processChain(static_cast<std::int32_t>(::getpid()))) pids.insert(facts.pid);
  return pids;
}

std::string stopListText(const StopList& list, const Output& output) {
  TextTable table({{"PID", Align::right},
                   {"NAME", Align::left, kNameWidth},
                   {"MEMORY", Align::right},
                   {"PORTS"},
                   {"LEFT ALONE"},
                   {"COMMAND", Align::left, kCommandWidth}});
  for (const StopItem& item : list.items) {
    table.add({std::to_string(item.pid), item.name, ByteText::text(item.footprint), ReportText::portList(item.ports),
               item.leftAlone.value_or(""), item.commandLine});
  }
  if (table.empty()) return list.summary() + "\n";
  const std::string text = table.text();
  const std::size_t end = text.find('\n');
  return output.painted(Paint::bold, text.substr(0, end)) + text.substr(end) + "\n" + list.summary() + "\n";
}

int runStop(const StopList& list, const Arguments& arguments, CommandContext& context) {
  context.output.print(stopListText(list, context.output));
  if (list.stopping() == 0) return ExitCode::kNegative;
  if (arguments.has("--dry-run")) return ExitCode::kDone;
  const StopConfirm confirm{.agreedInAdvance = arguments.has("--yes"),
                            .interactive = context.terminals.input && context.terminals.error};
  const Decision decision = confirm.decide([&] {
    context.output.printRemark("Stop " + ReportText::counted(list.stopping(), "process", "processes") + "? [y/N] ");
    return readAnswer();
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
