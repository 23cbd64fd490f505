#include "logic/reports/status_summary.h"

#include <string_view>
#include <vector>

#include "base/text.h"
#include "logic/sessions/byte_text.h"

namespace brindle {
namespace {

struct Count {
  std::int64_t number;
  std::string_view one;
};

/// "1 ghost" or "2 ghosts"; nothing for none.
void appendCount(const Count& count, std::vector<std::string>& parts) {
  if (count.number < 1) return;
  std::string& part = parts.emplace_back(std::to_string(count.number) + " ");
  part += count.one;
  if (count.number > 1) part += "s";
}

/// "a", "a and b", "a, b and c".
std::string enumerated(std::vector<std::string> parts) {
  if (parts.size() < 2) return joined(parts, "");
  const std::string last = std::move(parts.back());
  parts.pop_back();
  return joined(parts, ", ") + " and " + last;
}

std::string portsText(const std::vector<int>& ports) {
  std::vector<std::string> numbers;
  numbers.reserve(ports.size());
  for (const int port : ports) numbers.push_back(std::to_string(port));
  return (ports.size() > 1 ? "ports " : "port ") + joined(numbers, ", ");
}

}  // namespace

std::string statusSummary(const StatusDocument& document) {
  std::vector<std::string> who;
  appendCount({document.ghosts, "ghost"}, who);
  appendCount({document.devServers, "dev server"}, who);
  appendCount({document.agentSessions, "agent session"}, who);
  if (who.empty()) return "All clear.";

  std::vector<std::string> what;
  if (document.memoryBytes > 0) what.push_back(ByteText::text(document.memoryBytes));
  if (!document.ports.empty()) what.push_back(portsText(document.ports));
  const bool onlyOne = document.ghosts + document.devServers + document.agentSessions == 1;
  std::string summary = enumerated(std::move(who));
  if (!what.empty()) summary += (onlyOne ? " holds " : " hold ") + enumerated(std::move(what));
  return summary + ".";
}

}  // namespace brindle
