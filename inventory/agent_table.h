// The coding agents that are known, and everything by which each can be told. Data; the rules are in
// agent_recognition.h.
//
// Observed with the programs themselves on Linux, or read in their published sources. To add an agent, add a case,
// its display name and a row; the tests walk the table.
#pragma once

#include <span>
#include <string_view>

#include "base/enum_text.h"

namespace brindle {

enum class AgentKind {
  amp,
  claudeCode,
  codex,
  geminiCli,
  copilot,
  cursor,
  opencode,
  goose,
  aider,
  crush,
  qwenCode,
  auggie,
  kilo,
  kimi,
  droid,
  devin,
  cline,
};

/// The texts are the display names.
template <>
inline constexpr auto kEnumTexts<AgentKind> = std::to_array<EnumText<AgentKind>>({
    {AgentKind::amp, "Amp"},
    {AgentKind::claudeCode, "Claude Code"},
    {AgentKind::codex, "Codex"},
    {AgentKind::geminiCli, "Gemini CLI"},
    {AgentKind::copilot, "Copilot"},
    {AgentKind::cursor, "Cursor"},
    {AgentKind::opencode, "opencode"},
    {AgentKind::goose, "goose"},
    {AgentKind::aider, "aider"},
    {AgentKind::crush, "Crush"},
    {AgentKind::qwenCode, "Qwen Code"},
    {AgentKind::auggie, "Auggie"},
    {AgentKind::kilo, "Kilo"},
    {AgentKind::kimi, "Kimi"},
    {AgentKind::droid, "Droid"},
    {AgentKind::devin, "Devin"},
    {AgentKind::cline, "Cline"},
});

/// A variable that an agent sets for what it starts; with an empty value any value marks.
struct AgentMarker {
  std::string_view variable;
  std::string_view value;
};

struct AgentRow {
  AgentKind kind;
  /// Base names of executable, first argument or script.
  std::span<const std::string_view> programs;
  /// Ends of the path of the executable or script, "*" for one component.
  std::span<const std::string_view> paths;
  /// Variables in the environment of its children; one that is there is enough.
  std::span<const AgentMarker> markers;
  /// Variables with the agent's pid.
  std::span<const std::string_view> ownerVariables;
  /// Variables that differ from session to session.
  std::span<const std::string_view> sessionVariables;
};

/// One row a kind, in declaration order. The order decides between markers of several agents: Amp also sets Claude
/// Code's variable, so it comes first.
[[nodiscard]] std::span<const AgentRow> agentTable();

/// The row of `kind`.
[[nodiscard]] const AgentRow& agentRow(AgentKind kind);

/// The names of all variables that the rules ask for: the only ones a process source may read from an environment.
[[nodiscard]] std::span<const std::string_view> namedVariables();

}  // namespace brindle
