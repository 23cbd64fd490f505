#include "cli/setup_clients.h"

#include <filesystem>

#include "base/json_reader.h"
#include "cli/named_file.h"
#include "cli/setup_claude_hooks.h"
#include "cli/setup_codex_config.h"
#include "cli/setup_mcp_json.h"

namespace brindle {
namespace {

using Words = std::vector<std::string>;

bool isFolder(const std::string& path) {
  std::error_code unknown;
  return std::filesystem::is_directory(path, unknown);
}

/// The folder that the variable names, or the usual one.
std::string folderOf(const std::optional<std::string>& variable, const std::string& usual) {
  return variable && !variable->empty() ? *variable : usual;
}

SettingsEdit jsonServerEdit(const std::string& path, const std::string& program) {
  return {.path = path,
          .fresh = "{}\n",
          .add = [program](std::string_view text) { return withJsonServer(text, program); },
          .remove =
              [program](const SettingsEdit::Texts& texts) {
                return withoutJsonServer({texts.text, texts.before}, program);
              }};
}

ClientSetup claudeSetup(const std::string& home, const Environment& environment, const SetupMachine& machine) {
  const auto variable = environment("CLAUDE_CONFIG_DIR");
  const std::string folder = folderOf(variable, home + "/.claude");
  const std::string servers = (variable && !variable->empty() ? folder : home) + "/.claude.json";
  const std::string& program = machine.program;
  const bool hasCommand = machine.findProgram("claude").has_value();
  ClientSetup setup{.client = MCPClient::claudeCode, .present = hasCommand || isFolder(folder)};
  setup.edits.push_back({.path = folder + "/settings.json",
                         .fresh = "{}\n",
                         .add = [program](std::string_view text) { return withClaudeHooks(text, program); },
                         .remove =
                             [program](const SettingsEdit::Texts& texts) {
                               return withoutClaudeHooks({texts.text, texts.before}, program);
                             }});
  if (!hasCommand) {
    setup.edits.push_back(jsonServerEdit(servers, program));
    return setup;
  }
  setup.registration =
      SetupRegistration{.add = {"claude", "mcp", "add", "--scope", "user", "brindle", "--", program, "mcp"},
                        .remove = {"claude", "mcp", "remove", "--scope", "user", "brindle"},
                        .file = servers,
                        .stateIn = [program](std::string_view text) { return jsonServerState(text, program); }};
  return setup;
}

ClientSetup cursorSetup(const std::string& home, const SetupMachine& machine) {
  ClientSetup setup{.client = MCPClient::cursor, .present = isFolder(home + "/.cursor")};
  setup.edits.push_back(jsonServerEdit(home + "/.cursor/mcp.json", machine.program));
  return setup;
}

ClientSetup codexSetup(const std::string& home, const Environment& environment, const SetupMachine& machine) {
  const std::string folder = folderOf(environment("CODEX_HOME"), home + "/.codex");
  const std::string file = folder + "/config.toml";
  const std::string& program = machine.program;
  const bool hasCommand = machine.findProgram("codex").has_value();
  ClientSetup setup{.client = MCPClient::codex, .present = hasCommand || isFolder(folder)};
  setup.edits.push_back(
      {.path = file,
       .fresh = "",
       .add = [program, hasCommand](
                  std::string_view text) { return withCodexParts(text, {.program = program, .server = !hasCommand}); },
       .remove =
           [program, hasCommand](const SettingsEdit::Texts& texts) {
             return withoutCodexParts(texts.text, {.program = program, .server = !hasCommand});
           }});
  if (hasCommand) {
    setup.registration =
        SetupRegistration{.add = {"codex", "mcp", "add", "brindle", "--", program, "mcp"},
                          .remove = {"codex", "mcp", "remove", "brindle"},
                          .file = file,
                          .stateIn = [program](std::string_view text) { return tomlServerState(text, program); }};
  }
  return setup;
}

}  // namespace

std::string_view clientName(MCPClient client) {
  switch (client) {
    case MCPClient::claudeCode:
      return "Claude Code";
    case MCPClient::cursor:
      return "Cursor";
    case MCPClient::codex:
      return "Codex";
  }
  return {};
}

std::string_view clientWord(MCPClient client) {
  switch (client) {
    case MCPClient::claudeCode:
      return "claude";
    case MCPClient::cursor:
      return "cursor";
    case MCPClient::codex:
      return "codex";
  }
  return {};
}

ClientSetup clientSetup(MCPClient client, const std::string& home, const Environment& environment,
                        const SetupMachine& machine) {
  switch (client) {
    case MCPClient::claudeCode:
      return claudeSetup(home, environment, machine);
    case MCPClient::cursor:
      return cursorSetup(home, machine);
    case MCPClient::codex:
      return codexSetup(home, environment, machine);
  }
  return {};
}

ServerState registeredState(const SetupRegistration& registration) {
  const Result<std::string> text = readNamedFile(registration.file, kJsonByteLimit);
  return text ? registration.stateIn(*text) : ServerState::absent;
}

std::vector<Words> commandsToAdd(const SetupRegistration& registration) {
  switch (registeredState(registration)) {
    case ServerState::absent:
      return {registration.add};
    case ServerState::stale:
      return {registration.remove, registration.add};
    case ServerState::same:
    case ServerState::foreign:
      return {};
  }
  return {};
}

std::vector<Words> commandsToRemove(const SetupRegistration& registration) {
  const ServerState state = registeredState(registration);
  if (state == ServerState::same || state == ServerState::stale) return {registration.remove};
  return {};
}

}  // namespace brindle
