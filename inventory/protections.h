// Which processes must be left alone, and the candidates of plans that follow from it.
//
// Used by the reports, the stopping commands and the MCP safety question, so that all of them give the same reason
// for the same process. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/host_snapshot.h"
#include "logic/mcp/safety_gate.h"
#include "logic/sessions/session_quit_plan.h"

namespace brindle {

/// Why a process is left alone that others are connected to, by plans that nobody has named it in.
inline constexpr std::string_view kConnectedReason = "Clients are connected";

/// The label of the built-in protection of a program: "AI agents", "Terminals", "IDEs", "Databases", "Containers".
[[nodiscard]] std::optional<std::string> builtInProtection(const TrackedProcess& process);

/// The folder of the macOS application that a program belongs to, with a slash at its end: of several, as for a helper
/// in an application, the outermost. Empty for other programs. A view into `path`.
[[nodiscard]] std::string_view applicationFolder(std::string_view path);

/// Whether it is a program of ours.
[[nodiscard]] bool isBrindle(const TrackedProcess& process);

/// All processes as candidates. Agents are protected except those of the session rooted at `quitting`, which are the
/// root itself and every agent below it.
[[nodiscard]] std::vector<QuitCandidate> quitCandidates(const HostSnapshot& snapshot,
                                                        std::optional<std::int32_t> quitting = std::nullopt);

/// The reasons of all processes that have one. Reads processes, rules, terminals and the user's rules of `snapshot`.
[[nodiscard]] ProtectionReasons protectionReasons(const HostSnapshot& snapshot);

/// The same for plans that nobody has named a process in: processes with live clients are left alone too.
[[nodiscard]] ProtectionReasons unaskedReasons(const HostSnapshot& snapshot);

/// What a safety question is about; the first that is given decides.
struct SafetyTarget {
  std::optional<std::int32_t> pid;
  std::optional<std::int32_t> port;
  std::optional<std::int32_t> sessionPid;
};

/// What the safety gate decides by. A port stands for its topmost listener, one of the current user before others; a
/// session pid that is no live session's root matches nothing. A session's reason is that of its root when it is quit.
[[nodiscard]] SafetyGate::Input safetyInput(const HostSnapshot& snapshot, const SafetyTarget& target);

/// The process that listens on `port`: the topmost of several, one of the current user before others; none when
/// nobody does. Points into the snapshot.
[[nodiscard]] const TrackedProcess* listenerOn(const HostSnapshot& snapshot, int port);

/// The process of `pid`, the first of several; none when there is none. Points into the snapshot.
[[nodiscard]] const TrackedProcess* processOf(const HostSnapshot& snapshot, std::int32_t pid);

}  // namespace brindle
