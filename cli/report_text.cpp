#include "cli/report_text.h"

#include <unordered_map>

#include "base/text.h"
#include "cli/duration_text.h"
#include "cli/text_table.h"
#include "inventory/valid_text.h"
#include "logic/sessions/byte_text.h"

namespace brindle::ReportText {
namespace {

using Align = TextTable::Align;

constexpr std::size_t kNameWidth = 24;
constexpr std::size_t kCommandWidth = 60;

std::string withHeadingPainted(const std::string& table, const Output& output) {
  const std::size_t end = table.find('\n');
  return output.painted(Paint::bold, table.substr(0, end)) + table.substr(end);
}

std::string spanText(std::int64_t seconds) { return durationText(Seconds{static_cast<double>(seconds)}); }

std::string leftBehindTable(const std::vector<LeftBehindDocument>& rows, const Output& output) {
  TextTable table({{"PID", Align::right},
                   {"LEFT BEHIND BY"},
                   {"MEMORY", Align::right},
                   {"PORTS"},
                   {"COMMAND", Align::left, kCommandWidth}});
  for (const LeftBehindDocument& row : rows) {
    table.add({std::to_string(row.pid), row.origin, ByteText::text(row.memoryBytes), portList(row.ports), row.command});
  }
  return withHeadingPainted(table.text(), output);
}

std::vector<LeftBehindDocument> documentsOf(const std::vector<LeftBehind>& list) {
  std::vector<LeftBehindDocument> rows;
  for (const LeftBehind& each : list) {
    rows.push_back(
        {each.process.pid, each.process.commandLine, each.origin, each.process.footprint, each.process.ports});
  }
  return rows;
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
  if (document.listeners.empty()) return "Nothing listens.\n";
  std::unordered_map<std::int32_t, const TrackedProcess*> byPid;
  for (const TrackedProcess& process : snapshot.processes) byPid.try_emplace(process.pid, &process);
  TextTable table({{"PORT", Align::right},
                   {"PID", Align::right},
                   {"NAME", Align::left, kNameWidth},
                   {"PROJECT", Align::left, kNameWidth},
                   {"FRAMEWORK"},
                   {"AGE", Align::right},
                   {"OPEN TO"},
                   {"LEFT ALONE"}});
  for (const PortListener& row : document.listeners) {
    const auto found = byPid.find(row.pid);
    const TrackedProcess* process = found == byPid.end() ? nullptr : found->second;
    const std::string age = process == nullptr ? "" : durationText(snapshot.now - process->start);
    const std::string open = snapshot.reachablePorts.contains(row.port) ? "network" : "";
    table.add({std::to_string(row.port), std::to_string(row.pid), row.name, row.project.value_or(""),
               process == nullptr ? "" : process->framework.value_or(""), age, open, row.protectedReason.value_or("")});
  }
  return withHeadingPainted(table.text(), output);
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
                   {"PORTS"}});
  for (const AgentSessionDocument& session : document.sessions) {
    table.add({std::to_string(session.pid), session.agent, session.project.value_or(""), session.activity,
               spanText(session.uptimeSeconds), ByteText::text(session.memoryBytes), portList(session.ports)});
    for (const AgentChildDocument& child : session.started) {
      table.add({std::to_string(child.pid), "  " + child.name, "", child.kind, "", ByteText::text(child.memoryBytes),
                 portList(child.ports)});
    }
  }
  if (!table.empty()) text += withHeadingPainted(table.text(), output);
  if (!document.leftBehind.empty()) text += "\n" + leftBehindTable(document.leftBehind, output);
  if (!snapshot.likely.empty()) text += "\n" + leftBehindTable(documentsOf(snapshot.likely), output);
  return text;
}

std::string idle(const IdleDocument& document, const Output& output) {
  TextTable table({{"PID", Align::right},
                   {"NAME", Align::left, kNameWidth},
                   {"PROJECT", Align::left, kNameWidth},
                   {"UP", Align::right},
                   {"MEMORY", Align::right},
                   {"PORTS"},
                   {"LEFT ALONE"}});
  const auto add = [&](const IdleRow& row) {
    table.add({std::to_string(row.pid), row.name, row.project.value_or(""), spanText(row.uptimeSeconds),
               ByteText::text(row.memoryBytes), portList(row.ports), row.protectedReason.value_or("")});
  };
  for (const IdleRow& row : document.stop) add(row);
  for (const IdleRow& row : document.skipped) add(row);
  std::string text = table.empty() ? "" : withHeadingPainted(table.text(), output) + "\n";
  return text + terminalText(document.summary) + "\n";
}

std::string ghosts(const HostSnapshot& snapshot, const Output& output) {
  if (snapshot.leftBehind.empty() && snapshot.likely.empty()) return "Nothing was left behind.\n";
  std::string text;
  if (!snapshot.leftBehind.empty()) text += leftBehindTable(documentsOf(snapshot.leftBehind), output);
  if (!snapshot.leftBehind.empty() && !snapshot.likely.empty()) text += "\n";
  if (!snapshot.likely.empty()) text += leftBehindTable(documentsOf(snapshot.likely), output);
  return text;
}

std::string unseen(const HostSnapshot& snapshot) {
  std::vector<std::string> parts;
  if (snapshot.uninspected > 0) {
    const auto count = static_cast<std::size_t>(snapshot.uninspected);
    parts.push_back(counted(count, "process", "processes") + " of other users could not be inspected");
  }
  if (snapshot.unownedListeners > 0) {
    const auto count = static_cast<std::size_t>(snapshot.unownedListeners);
    parts.push_back(counted(count, "listening port", "listening ports") + " of a process that could not be found");
  }
  return joined(parts, ", ");
}

}  // namespace brindle::ReportText
