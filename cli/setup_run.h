// `brindle setup`, with what it does to the machine behind seams.
//
// Called by the command; tests hand in a home folder and stand-ins for the agents' programs. One thread.
#pragma once

#include <span>

#include "cli/command_context.h"
#include "cli/setup_clients.h"

namespace brindle {

enum class SetupAction {
  /// Prints what a person may paste or run.
  show,
  /// Prints what `apply` would change.
  dryRun,
  apply,
  undo,
};

struct SetupRequest {
  SetupAction action = SetupAction::show;
  /// None is every agent that is used here; for `show` every agent there is.
  std::optional<MCPClient> client;
};

/// Answers the exit code: 0 when all of it is done, or nothing was to be done; 1 when something was left alone because
/// it belongs to somebody else, or no agent is used here; 2 when a file or a command failed. What can be done is done
/// whatever else fails.
[[nodiscard]] int runSetup(const SetupRequest& request, const SetupMachine& machine, CommandContext& context);

}  // namespace brindle
