// What `brindle setup` does for each agent: the settings it edits and the commands of the agent that it runs.
//
// Used by the command, with seams for what tests must not touch. The agents' own documentation is the source of the
// paths; CLAUDE_CONFIG_DIR and CODEX_HOME move them. One thread.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/setup_file.h"
#include "logic/mcp/mcp_config_snippet.h"
#include "platform/environment.h"

namespace brindle {

/// What setup uses of the machine.
struct SetupMachine {
  /// The path of this program as it is written into settings.
  std::string program;
  /// The path of a program that is found in PATH; none when there is none.
  std::function<std::optional<std::string>(std::string_view name)> findProgram;
  /// Runs a command, silently, to its end: empty, or one line that says how it failed.
  std::function<std::string(const std::vector<std::string>& words)> run;
};

/// Registration by a command of the agent itself, which knows its own files best.
struct SetupRegistration {
  std::vector<std::string> add;
  std::vector<std::string> remove;
  /// The file in which the agent keeps it.
  std::string file;
  std::function<ServerState(std::string_view text)> stateIn;
};

struct ClientSetup {
  MCPClient client;
  /// Whether the agent seems to be used here: it has a settings folder or a program.
  bool present = false;
  std::vector<SettingsEdit> edits;
  std::optional<SetupRegistration> registration;
};

/// The display name of a client, and the word for it on the command line.
[[nodiscard]] std::string_view clientName(MCPClient client);
[[nodiscard]] std::string_view clientWord(MCPClient client);

/// What there is to do for a client whose user's home folder is `home`.
[[nodiscard]] ClientSetup clientSetup(MCPClient client, const std::string& home, const Environment& environment,
                                      const SetupMachine& machine);

/// What the registered server is now; absent when the file cannot be read.
[[nodiscard]] ServerState registeredState(const SetupRegistration& registration);

/// The commands that add, or take away, the server in its present state; none when there is nothing to do.
[[nodiscard]] std::vector<std::vector<std::string>> commandsToAdd(const SetupRegistration& registration);
[[nodiscard]] std::vector<std::vector<std::string>> commandsToRemove(const SetupRegistration& registration);

}  // namespace brindle
