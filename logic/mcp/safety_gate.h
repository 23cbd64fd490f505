// Whether Brindle would leave a target alone or ask the person before stopping it. It stops nothing.
//
// Asked by the MCP tools for one process, port or agent session; the host fills the input from its snapshot. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// The answer as the tools report it.
struct MCPSafetyVerdict {
  /// SafetyGate::kLeaveAlone or SafetyGate::kAskFirst.
  std::string verdict;
  /// A sentence for people.
  std::string reason;
  /// The target's display name; absent when nothing matched.
  std::optional<std::string> name;

  bool operator==(const MCPSafetyVerdict&) const = default;
};

namespace SafetyGate {

inline constexpr std::string_view kLeaveAlone = "leaveAlone";
inline constexpr std::string_view kAskFirst = "askFirst";
/// The label of the built-in protection of agents, which does not keep an agent session from being quit.
inline constexpr std::string_view kAgentsLabel = "AI agents";

struct Input {
  /// A process of this user matches the target; when false, nothing else counts.
  bool found = false;
  std::optional<std::string> name;
  bool system = false;
  bool otherUser = false;
  /// The target is Brindle itself.
  bool brindle = false;
  /// Why a rule of the user or a built-in protection covers it; no full stop.
  std::optional<std::string> protectedReason;
  /// The target is a live agent session.
  bool isSession = false;

  bool operator==(const Input&) const = default;
};

/// The first that holds decides: not found, another user's (before system, so that a system process of another user
/// names the owner), a system process, Brindle itself, protected. A session is left alone only for a reason that does
/// not mention kAgentsLabel. Everything else is asked about first.
[[nodiscard]] MCPSafetyVerdict decide(const Input& input);

}  // namespace SafetyGate

}  // namespace brindle
