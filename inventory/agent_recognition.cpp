#include "inventory/agent_recognition.h"

#include <algorithm>

#include "base/number_text.h"

namespace brindle {
namespace {

bool servesMcp(const ProgramIdentity& program) {
  const std::string_view word = program.subcommand();
  return word == "mcp" || word == "mcp-server" || word == "mcp-serve";
}

bool carriesMarker(const AgentMarker& marker, const ProcessFacts& facts) {
  const auto value = facts.variable(marker.variable);
  return value && !value->empty() && (marker.value.empty() || *value == marker.value);
}

bool isProgramOf(const AgentRow& row, const ProgramIdentity& program) {
  if (program.isCalledAnyOf(row.programs)) return true;
  return std::ranges::any_of(row.paths, [&](std::string_view pattern) {
    return pathEndsWith(program.path, pattern) || pathEndsWith(program.scriptPath, pattern);
  });
}

std::optional<AgentKind> agentProgram(const ProgramIdentity& program) {
  for (const AgentRow& row : agentTable()) {
    if (isProgramOf(row, program)) return row.kind;
  }
  return std::nullopt;
}

}  // namespace

bool isAgentDaemon(const ProgramIdentity& program) {
  const auto kind = agentProgram(program);
  if (kind == AgentKind::claudeCode) return program.subcommand() == "daemon";
  if (kind == AgentKind::codex) {
    return (program.hasArgument("app-server") && program.hasArgument("--managed-daemon")) ||
           (program.hasArgument("daemon") && program.hasArgument("pid-update-loop"));
  }
  return false;
}

std::optional<AgentKind> recogniseAgent(const ProgramIdentity& program) {
  const auto kind = agentProgram(program);
  if (!kind || servesMcp(program) || isAgentDaemon(program)) return std::nullopt;
  return kind;
}

std::optional<AgentKind> recogniseAgent(const ProcessFacts& facts) { return recogniseAgent(identityOf(facts)); }

std::optional<AgentOnChain> nearestAgent(std::span<const ProcessFacts> chain) {
  std::optional<AgentOnChain> found;
  for (std::size_t place = 0; place < chain.size(); ++place) {
    const auto kind = recogniseAgent(chain[place]);
    if (!kind) continue;
    if (!found) {
      found = AgentOnChain{*kind, place, place};
    } else if (found->kind == *kind) {
      found->root = place;
    } else {
      break;
    }
  }
  return found;
}

std::vector<AgentKind> agentsNamedByVariables(const ProcessFacts& facts) {
  std::vector<AgentKind> kinds;
  for (const AgentRow& row : agentTable()) {
    const bool marked =
        std::ranges::any_of(row.markers, [&](const AgentMarker& marker) { return carriesMarker(marker, facts); });
    const bool owned = ownerPidOf(row, facts).has_value();
    if (!marked && !owned) continue;
    const bool ampOnly =
        row.kind == AgentKind::claudeCode && !owned && !kinds.empty() && kinds.front() == AgentKind::amp;
    if (!ampOnly) kinds.push_back(row.kind);
  }
  return kinds;
}

std::optional<std::int32_t> ownerPidFrom(std::string_view text) {
  const auto pid = wholeFromText<std::int32_t>(text);
  return pid && *pid > 1 ? pid : std::nullopt;
}

std::optional<std::int32_t> ownerPidOf(const AgentRow& row, const ProcessFacts& facts) {
  for (const std::string_view name : row.ownerVariables) {
    const auto text = facts.variable(name);
    if (!text) continue;
    if (const auto pid = ownerPidFrom(*text)) return pid;
  }
  return std::nullopt;
}

}  // namespace brindle
