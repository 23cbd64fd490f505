// What `brindle hook` and `brindle notify` have in common: a payload that an agent hands over becomes an event in the
// inbox, and what the agent has started is remembered as its own.
//
// Used by the two hook commands. An agent waits for them, so nothing here blocks for long, prints, or fails: problems
// are lines of text for whoever asks with `--verbose`. Owns nothing; the truth is in the files of the state folder.
// One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "cli/command_context.h"
#include "inventory/process_facts.h"

namespace brindle {

/// A payload of more bytes is refused; one of exactly this many is taken.
inline constexpr std::size_t kHookPayloadLimit = std::size_t{1} << 20;

/// Whose payload it is: the JSON on the standard input of a Claude Code hook, or the last argument of a Codex notify
/// command.
enum class HookOrigin { claudeHook, codexNotify };

/// What the hook commands ask about processes.
struct HookProcesses {
  /// A live process, its parent and so on, as processChain answers it; empty when there is none.
  std::function<std::vector<ProcessFacts>(std::int32_t pid)> chainOf;
  /// The process that started this one.
  std::int32_t parent = 0;
  /// The user whose processes count.
  std::uint32_t user = 0;
};

/// The processes of this machine, seen from this process.
[[nodiscard]] HookProcesses hookProcesses();

/// The agent that a hook command reports for.
struct ReportingAgent {
  ProcessFacts process;
  /// Its display name.
  std::string name;

  bool operator==(const ReportingAgent&) const = default;
};

/// For a Claude Code hook the process that CLAUDE_PID names, when that is an ancestor, or a live agent of this user: a
/// pid that came down from an agent long gone must not tie strangers together. Otherwise the outermost process of the
/// nearest agent among the ancestors. None when there is neither.
[[nodiscard]] std::optional<ReportingAgent> reportingAgent(HookOrigin origin, const Environment& environment,
                                                           const HookProcesses& processes);

struct HookPayload {
  HookOrigin origin;
  std::string_view text;
  /// When it came.
  Date time{};
};

/// Adds the payload's event to the inbox, if it is one, and records what hangs below the agent. Answers what went
/// wrong, one line each; both are tried whatever becomes of the other. A payload over kHookPayloadLimit, or an empty
/// one, is refused and nothing is recorded.
[[nodiscard]] std::vector<std::string> recordHook(const HookPayload& payload, const Environment& environment,
                                                  const HookProcesses& processes);

/// The frame of a hook command: runs `work`, which answers problems, shows them as remarks when `verbose`, and answers
/// 0 whatever happens. When `work` takes longer than kHookPatienceSeconds (somebody holds the lock, or never closes
/// the input), the process ends with 0 on the spot.
inline constexpr unsigned kHookPatienceSeconds = 5;
int runHookQuietly(CommandContext& context, bool verbose, const std::function<std::vector<std::string>()>& work);

}  // namespace brindle
