#include "cli/report_text.h"

#include <unordered_map>

#include "base/text.h"
#include "cli/duration_text.h"
#include "cli/shown_table.h"
#include "inventory/valid_text.h"
#include "logic/sessions/byte_text.h"

namespace brindle::ReportText {
namespace {

using Align = TextTable::Align;

std::string spanText(std::int64_t seconds) { return ageText(Seconds{static_cast<double>(seconds)}); }

std::string leftBehindTable(std::string_view heading, const std::vector<LeftBehindDocument>& rows,
                            const Output& output) {
  if (rows.empty()) return {};
  TextTable table({{"PID", Align::right},
                   {std::string(heading), Align::left, kOriginWidth},
                   {"MEMORY", Align::right},
                   {"PORTS", Align::left, kPortsWidth},
                   {"COMMAND", Align::left, kCommandWidth}});
  for (const LeftBehindDocument& row : rows) {
    table.add({std::to_string(row.pid), row.origin, ByteText::text(row.memoryBytes), portList(row.ports), row.command});
  }
  return shownTable(table, output);
}

std::string leftBehindTables(const GhostsDocument& document, const Output& output) {
  const std::string certain = leftBehindTable("LEFT BEHIND BY", document.leftBehind, output);
  const std::string likely = leftBehindTable("PERHAPS LEFT BEHIND BY", document.likely, output);
  return certain.empty() || likely.empty() ? certain + likely : certain + "\n" + likely;
}

}  // namespace

std::string counted(std::size_t count, std::string_view one, std::string_view several) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : several);
}

std::string portList(const std::vector<int>& ports) {
  std::vector<std::string> texts;
  for (const int port : ports) texts.push_back(std::to_string(port));
  return joined(texts, ", ");
}

std::string status(const StatusDocument& document, const Output& output) {
  return output.painted(document.ghosts > 0 ? Paint::yellow : Paint::green, terminalText(document.summary)) + "\n";
}

std::string ports(const PortsDocument& document, const HostSnapshot& snapshot, const Output& output) {
  if (document.listeners.empty()) {
    return snapshot.unownedListeners > 0 ? "Nothing that can be seen listens.\n" : "Nothing listens.\n";
  }
  std::unordered_map<std::int32_t, const TrackedProcess*> byPid;
  for (const TrackedProcess& process : snapshot.processes) byPid.try_emplace(process.pid, &process);
  TextTable table({{"PORT", Align::right},
                   {"PID", Align::right},
                   {"NAME", Align::left, kNameWidth},
                   {"PROJECT", Align::left, kNameWidth},
                   {"FRAMEWORK"},
                   {"AGE", Align::right},
                   {"OPEN TO"},
                   {"LEFT ALONE", Align::left, kReasonWidth}});
  for (const PortListener& row : document.listeners) {
    const auto found = byPid.find(row.pid);
    const TrackedProcess* process = found == byPid.end() ? nullptr : found->second;
    const std::string age = process == nullptr ? "" : ageText(snapshot.now - process->start);
    const std::string open = snapshot.reachablePorts.contains(row.port) ? "network" : "";
    table.add({std::to_string(row.port), std::to_string(row.pid), row.name, row.project.value_or(""),
               process == nullptr ? "" : process->framework.value_or(""), age, open, row.protectedReason.value_or("")});
  }
  return shownTable(table, output);
}

std::string agents(const AgentsDocument& document, const HostSnapshot& snapshot, const Output& output) {
  std::string text;
  if (document.sessions.empty()) text = "No agent is running.\n";
  TextTable table({{"PID", Align::right},
                   {"AGENT", Align::left, kNameWidth},
                   {"PROJECT", Align::left, kNameWidth},
                   {"ACTIVITY"},
                   {"UP", Align::right},
                   {"MEMORY", Align::right},
                   {"PORTS", Align::left, kPortsWidth}});
  for (const AgentSessionDocument& session : document.sessions) {
    table.add({std::to_string(session.pid), session.agent, session.project.value_or(""), session.activity,
               spanText(session.uptimeSeconds), ByteText::text(session.memoryBytes), portList(session.ports)});
    for (const AgentChildDocument& child : session.started) {
      table.add({std::to_string(child.pid), "  " + child.name, "", child.kind, "", ByteText::text(child.memoryBytes),
                 portList(child.ports)});
    }
  }
  if (!table.empty()) text += shownTable(table, output);
  const std::string left =
      leftBehindTables({.leftBehind = document.leftBehind, .likely = leftBehindRows(snapshot.likely)}, output);
  return left.empty() ? text : text + "\n" + left;
}

std::string idle(const IdleDocument& document, const Output& output) {
  TextTable table({{"PID", Align::right},
                   {"NAME", Align::left, kNameWidth},
                   {"PROJECT", Align::left, kNameWidth},
                   {"UP", Align::right},
                   {"MEMORY", Align::right},
                   {"PORTS", Align::left, kPortsWidth},
                   {"LEFT ALONE", Align::left, kReasonWidth}});
  const auto add = [&](const IdleRow& row) {
    table.add({std::to_string(row.pid), row.name, row.project.value_or(""), spanText(row.uptimeSeconds),
               ByteText::text(row.memoryBytes), portList(row.ports), row.protectedReason.value_or("")});
  };
  for (const IdleRow& row : document.stop) add(row);
  for (const IdleRow& row : document.skipped) add(row);
  std::string text = table.empty() ? "" : shownTable(table, output) + "\n";
  return text + terminalText(document.summary) + "\n";
}

std::string ghosts(const GhostsDocument& document, const Output& output) {
  const std::string text = leftBehindTables(document, output);
  return text.empty() ? "Nothing was left behind.\n" : text;
}

std::string unseen(const HostSnapshot& snapshot) {
  std::vector<std::string> parts;
  if (snapshot.uninspected > 0) {
    const auto count = static_cast<std::size_t>(snapshot.uninspected);
    parts.push_back(counted(count, "process", "processes") + " of other users could not be inspected");
  }
  if (snapshot.unownedListeners > 0) {
    const auto count = static_cast<std::size_t>(snapshot.unownedListeners);
    parts.push_back(counted(count, "listening port belongs to a process", "listening ports belong to processes") +
                    " that cannot be seen");
  }
  return joined(parts, "; ");
}

}  // namespace brindle::ReportText
