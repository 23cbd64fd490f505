#include "inventory/agent_table.h"

#include <array>
#include <cstddef>

namespace brindle {
namespace {

using Names = std::string_view;
constexpr std::span<const Names> kNone{};
constexpr std::span<const AgentMarker> kNoMarkers{};

constexpr auto kAmpPrograms = std::to_array<Names>({"amp"});
constexpr auto kAmpMarkers = std::to_array<AgentMarker>({{"AGENT", "amp"}});

constexpr auto kClaudePrograms = std::to_array<Names>({"claude"});
constexpr auto kClaudePaths = std::to_array<Names>(
    {"claude/versions/*", "@anthropic-ai/claude-code/cli.js", "@anthropic-ai/claude-code/bin/claude.exe"});
constexpr auto kClaudeMarkers = std::to_array<AgentMarker>({{"CLAUDECODE", ""}, {"CLAUDE_CODE_SESSION_ID", ""}});
constexpr auto kClaudeOwners = std::to_array<Names>({"CLAUDE_PID"});
constexpr auto kClaudeSessions = std::to_array<Names>({"CLAUDE_CODE_SESSION_ID"});

constexpr auto kCodexPrograms = std::to_array<Names>({"codex"});
constexpr auto kCodexPaths = std::to_array<Names>({"@openai/codex/bin/codex.js"});
constexpr auto kCodexMarkers = std::to_array<AgentMarker>(
    {{"CODEX_THREAD_ID", ""}, {"CODEX_SANDBOX", ""}, {"CODEX_SANDBOX_NETWORK_DISABLED", ""}});
constexpr auto kCodexSessions = std::to_array<Names>({"CODEX_THREAD_ID"});

constexpr auto kGeminiPrograms = std::to_array<Names>({"gemini"});
constexpr auto kGeminiMarkers = std::to_array<AgentMarker>({{"GEMINI_CLI", ""}});

constexpr auto kCopilotPrograms = std::to_array<Names>({"copilot"});
constexpr auto kCopilotPaths = std::to_array<Names>({"@github/copilot/index.js"});
constexpr auto kCopilotMarkers = std::to_array<AgentMarker>({{"COPILOT_CLI", ""}, {"COPILOT_AGENT_SESSION_ID", ""}});
constexpr auto kCopilotSessions = std::to_array<Names>({"COPILOT_AGENT_SESSION_ID"});

constexpr auto kCursorPrograms = std::to_array<Names>({"cursor-agent"});
constexpr auto kCursorPaths = std::to_array<Names>({"cursor-agent/versions/*/node"});
constexpr auto kCursorMarkers = std::to_array<AgentMarker>({{"CURSOR_AGENT", ""}});
constexpr auto kCursorSessions = std::to_array<Names>({"CURSOR_TRACE_ID"});

constexpr auto kOpencodePrograms = std::to_array<Names>({"opencode"});
constexpr auto kOpencodeMarkers = std::to_array<AgentMarker>({{"OPENCODE", ""}, {"OPENCODE_PID", ""}});
constexpr auto kOpencodeOwners = std::to_array<Names>({"OPENCODE_PID"});

constexpr auto kGoosePrograms = std::to_array<Names>({"goose", "goosed"});
constexpr auto kGooseMarkers = std::to_array<AgentMarker>({{"GOOSE_TERMINAL", ""}, {"AGENT", "goose"}});

constexpr auto kAiderPrograms = std::to_array<Names>({"aider"});

constexpr auto kCrushPrograms = std::to_array<Names>({"crush"});
constexpr auto kCrushMarkers = std::to_array<AgentMarker>({{"CRUSH", ""}});

constexpr auto kQwenPrograms = std::to_array<Names>({"qwen"});
constexpr auto kQwenMarkers = std::to_array<AgentMarker>({{"QWEN_CODE", ""}});

constexpr auto kAuggiePrograms = std::to_array<Names>({"auggie"});
constexpr auto kAuggieMarkers = std::to_array<AgentMarker>({{"AUGMENT_AGENT", ""}});

constexpr auto kKiloPrograms = std::to_array<Names>({"kilo"});
constexpr auto kKiloMarkers = std::to_array<AgentMarker>({{"KILO_PID", ""}});
constexpr auto kKiloOwners = std::to_array<Names>({"KILO_PID"});

constexpr auto kKimiPrograms = std::to_array<Names>({"kimi"});
constexpr auto kKimiMarkers = std::to_array<AgentMarker>({{"KIMI_CODE_CLI", ""}});

constexpr auto kDroidPrograms = std::to_array<Names>({"droid"});
constexpr auto kDevinPrograms = std::to_array<Names>({"devin"});

constexpr auto kClinePrograms = std::to_array<Names>({"cline"});
constexpr auto kClineMarkers = std::to_array<AgentMarker>({{"CLINE_ACTIVE", ""}});

constexpr auto kAgents = std::to_array<AgentRow>({
    {AgentKind::amp, kAmpPrograms, kNone, kAmpMarkers, kNone, kNone},
    {AgentKind::claudeCode, kClaudePrograms, kClaudePaths, kClaudeMarkers, kClaudeOwners, kClaudeSessions},
    {AgentKind::codex, kCodexPrograms, kCodexPaths, kCodexMarkers, kNone, kCodexSessions},
    {AgentKind::geminiCli, kGeminiPrograms, kNone, kGeminiMarkers, kNone, kNone},
    {AgentKind::copilot, kCopilotPrograms, kCopilotPaths, kCopilotMarkers, kNone, kCopilotSessions},
    {AgentKind::cursor, kCursorPrograms, kCursorPaths, kCursorMarkers, kNone, kCursorSessions},
    {AgentKind::opencode, kOpencodePrograms, kNone, kOpencodeMarkers, kOpencodeOwners, kNone},
    {AgentKind::goose, kGoosePrograms, kNone, kGooseMarkers, kNone, kNone},
    {AgentKind::aider, kAiderPrograms, kNone, kNoMarkers, kNone, kNone},
    {AgentKind::crush, kCrushPrograms, kNone, kCrushMarkers, kNone, kNone},
    {AgentKind::qwenCode, kQwenPrograms, kNone, kQwenMarkers, kNone, kNone},
    {AgentKind::auggie, kAuggiePrograms, kNone, kAuggieMarkers, kNone, kNone},
    {AgentKind::kilo, kKiloPrograms, kNone, kKiloMarkers, kKiloOwners, kNone},
    {AgentKind::kimi, kKimiPrograms, kNone, kKimiMarkers, kNone, kNone},
    {AgentKind::droid, kDroidPrograms, kNone, kNoMarkers, kNone, kNone},
    {AgentKind::devin, kDevinPrograms, kNone, kNoMarkers, kNone, kNone},
    {AgentKind::cline, kClinePrograms, kNone, kClineMarkers, kNone, kNone},
});

constexpr auto kNamedVariables = std::to_array<Names>({
    "AGENT",
    "CLAUDECODE",
    "CLAUDE_CODE_SESSION_ID",
    "CLAUDE_PID",
    "CODEX_THREAD_ID",
    "CODEX_SANDBOX",
    "CODEX_SANDBOX_NETWORK_DISABLED",
    "GEMINI_CLI",
    "COPILOT_CLI",
    "COPILOT_AGENT_SESSION_ID",
    "CURSOR_AGENT",
    "CURSOR_TRACE_ID",
    "OPENCODE",
    "OPENCODE_PID",
    "GOOSE_TERMINAL",
    "CRUSH",
    "QWEN_CODE",
    "AUGMENT_AGENT",
    "KILO_PID",
    "KIMI_CODE_CLI",
    "CLINE_ACTIVE",
});

}  // namespace

std::span<const AgentRow> agentTable() { return kAgents; }

const AgentRow& agentRow(AgentKind kind) { return kAgents[static_cast<std::size_t>(kind)]; }

std::span<const std::string_view> namedVariables() { return kNamedVariables; }

}  // namespace brindle
