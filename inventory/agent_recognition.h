// Which agent a process is, which agent on a chain of ancestors is the nearest, and which agent a process's
// environment names.
//
// Used by the inventory, the hook commands and the process sources. Pure; any facts give an answer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "inventory/agent_table.h"
#include "inventory/process_facts.h"
#include "inventory/program_identity.h"

namespace brindle {

/// The agent that this process is; none for other programs, for an agent's program that serves MCP
/// ("claude mcp serve") and for its daemons (isAgentDaemon).
[[nodiscard]] std::optional<AgentKind> recogniseAgent(const ProgramIdentity& program);
[[nodiscard]] std::optional<AgentKind> recogniseAgent(const ProcessFacts& facts);

/// Whether it is an agent's background daemon, which lives on by design: no session, and never left behind.
[[nodiscard]] bool isAgentDaemon(const ProgramIdentity& program);

/// An agent found on a chain of ancestors.
struct AgentOnChain {
  AgentKind kind;
  /// Place on the chain of the agent's process nearest to its beginning.
  std::size_t nearest = 0;
  /// Place of the outermost process of the same agent that follows without another agent between: one agent can be a
  /// wrapper and a child, and the session is rooted at the wrapper. Equals `nearest` for agents of one process.
  std::size_t root = 0;

  bool operator==(const AgentOnChain&) const = default;
};

/// `chain` holds a process, its parent, its parent's parent and so on. None when no agent is on it.
[[nodiscard]] std::optional<AgentOnChain> nearestAgent(std::span<const ProcessFacts> chain);

/// The agents whose variables the process carries, in the order of the table. Variables are inherited through nested
/// agents, so several may be named, and a live ancestor decides before any of them. Amp hides Claude Code, whose
/// variable it sets.
[[nodiscard]] std::vector<AgentKind> agentsNamedByVariables(const ProcessFacts& facts);

/// The pid that the value of an owner variable names: a whole number above 1.
[[nodiscard]] std::optional<std::int32_t> ownerPidFrom(std::string_view text);

/// The pid in the first of the agent's owner variables that names one.
[[nodiscard]] std::optional<std::int32_t> ownerPidOf(const AgentRow& row, const ProcessFacts& facts);

}  // namespace brindle
