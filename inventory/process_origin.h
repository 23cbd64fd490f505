// Which agent a process comes from that no longer hangs below it: still owned, left behind, or only likely so.
//
// Used by the inventory. That a process has been adopted by the system proves nothing: a server put into the
// background by a living agent looks the same. So the roots of adopted subtrees are judged by evidence, strongest
// first, and what lies below them follows. Pure; linear in the number of processes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/enum_text.h"
#include "inventory/agent_table.h"
#include "inventory/ownership_record.h"
#include "inventory/process_facts.h"
#include "logic/sessions/system_process_rules.h"

namespace brindle {

enum class OriginTie {
  /// The agent runs; the process belongs to its session.
  owned,
  /// The agent is gone.
  leftBehind,
  /// Its session is not to be found among the living ones; never proposed for stopping.
  likely,
};

template <>
inline constexpr auto kEnumTexts<OriginTie> = std::to_array<EnumText<OriginTie>>(
    {{OriginTie::owned, "owned"}, {OriginTie::leftBehind, "left behind"}, {OriginTie::likely, "likely"}});

enum class OriginEvidence {
  /// A variable with the agent's pid. Says nothing of a process whose pids are counted elsewhere.
  ownerPid,
  /// An ownership record of ours.
  record,
  /// A variable that the agent sets, while none of its kind is old enough to have set it.
  environment,
  /// A variable or argument of a session that no living process shares.
  session,
};

/// The texts complete "Claude Code (exited), by …".
template <>
inline constexpr auto kEnumTexts<OriginEvidence> = std::to_array<EnumText<OriginEvidence>>({
    {OriginEvidence::ownerPid, "its owner's pid"},
    {OriginEvidence::record, "Brindle's record"},
    {OriginEvidence::environment, "its environment"},
    {OriginEvidence::session, "its session"},
});

struct ProcessOrigin {
  std::int32_t pid = 0;
  OriginTie tie = OriginTie::leftBehind;
  OriginEvidence evidence = OriginEvidence::environment;
  /// The agent's display name.
  std::string agent;
  /// The root process of the agent that runs, or that ran; absent when the evidence does not name one.
  std::optional<std::int32_t> agentPid;
  /// The process is the adopted root; false for what lies below one.
  bool root = false;

  bool operator==(const ProcessOrigin&) const = default;
};

struct OriginQuestion {
  /// All processes of one moment; of two with one pid the first counts.
  std::span<const ProcessFacts> processes;
  /// Records of the running boot.
  std::span<const OwnershipRecord> records;
  std::uint32_t currentUser = 0;
  const SystemProcessRules& rules;
  /// Agents that may well run where they cannot be seen. That none of them is seen then says nothing.
  std::span<const AgentKind> outOfSight = {};
};

/// One entry for each process of the current user that is tied to an agent without hanging below it, in the order of
/// the processes. Never among them: agents and what hangs below one, system processes, and programs that live on by
/// design (livesOnByDesign) with everything below them.
[[nodiscard]] std::vector<ProcessOrigin> findOrigins(const OriginQuestion& question);

/// Whether the process itself shows a trace of an agent, in a variable or an argument. Without one and without a record
/// nothing ties it to an agent, so a source need not read more of it.
[[nodiscard]] bool showsTrace(const ProcessFacts& facts);

/// "Claude Code (exited), by its environment"; "Claude Code (perhaps exited), by its session"; "Claude Code, by …" for
/// an owned process.
[[nodiscard]] std::string originText(const ProcessOrigin& origin);

}  // namespace brindle
