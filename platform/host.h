// Looks at this machine once and works out everything that reports, plans and MCP tools ask for.
//
// Used by the commands and the MCP server. Reads the process table, the state folder and the settings; writes the CPU
// sample of this run into the state folder, and nothing else. Blocks for milliseconds, longer only with a wait.
#pragma once

#include <optional>
#include <string>

#include "base/result.h"
#include "inventory/cpu_sample.h"
#include "inventory/host_snapshot.h"
#include "platform/environment.h"
#include "platform/process_source.h"

namespace brindle {

struct HostQuestion {
  ListingDetail detail = ListingDetail::everything;
  /// Wait this long between two looks, for CPU figures of this moment; without it they are averages since the last
  /// run, and absent when that is too long ago.
  std::optional<Seconds> sampleFor;
};

/// Fails with errno when the process table cannot be read. Whatever else is missing (state folder, settings, records)
/// counts as empty.
[[nodiscard]] Result<HostSnapshot> lookAtHost(const Environment& environment, const HostQuestion& question);

/// The user's protection rules in the settings; empty when there are none or the file is damaged.
[[nodiscard]] ProtectionRules protectionRulesOf(const Environment& environment);

/// The platform's own rules for system processes.
[[nodiscard]] const SystemProcessRules& hostRules();

/// Remembers which processes hang below which agents now, so that they are known when the agent is gone; forgets what
/// has ended. Called at each look at the machine.
Outcome rememberOwners(const Environment& environment, const HostSnapshot& snapshot);

/// The same for one agent, from a hook command that it has started: quick, without a look at the whole machine.
Outcome rememberChildren(const Environment& environment, const ProcessFacts& agent, const std::string& agentName);

}  // namespace brindle
