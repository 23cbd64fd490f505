#include "inventory/program_recognition.h"

#include <algorithm>
#include <array>

#include "inventory/agent_recognition.h"

namespace brindle {
namespace {

constexpr auto kShells = std::to_array<std::string_view>({"bash", "zsh", "fish", "sh", "dash", "tcsh", "ksh"});

bool isBelow(std::string_view path, std::string_view folder) {
  for (std::size_t at = path.find(folder); at != std::string_view::npos; at = path.find(folder, at + 1)) {
    const std::size_t end = at + folder.size();
    if (at > 0 && path[at - 1] == '/' && end < path.size() && path[end] == '/') return true;
  }
  return false;
}

bool belongsTo(const ProgramIdentity& program, ProgramClass programClass) {
  if (program.isCalledAnyOf(programsOf(programClass))) return true;
  return std::ranges::any_of(foldersOf(programClass),
                             [&](std::string_view folder) { return isBelow(program.path, folder); });
}

bool runsDaemon(const ProgramIdentity& program) {
  return std::ranges::any_of(daemonScripts(),
                             [&](std::string_view script) { return pathEndsWith(program.scriptPath, script); }) ||
         std::ranges::any_of(daemonCommands(), [&](const DaemonCommand& command) {
           return program.isCalled(command.program) && program.hasArgument(command.argument);
         });
}

}  // namespace

std::optional<ProgramClass> classOf(const ProgramIdentity& program) {
  for (const auto& row : allCases<ProgramClass>()) {
    if (belongsTo(program, row.value)) return row.value;
  }
  if (runsDaemon(program)) return ProgramClass::daemon;
  // "tmux: server", the title of the server of a multiplexer.
  if (program.invoked == "tmux:") return ProgramClass::terminal;
  return std::nullopt;
}

bool livesOnByDesign(const ProgramIdentity& program) { return classOf(program).has_value() || isAgentDaemon(program); }

bool isShell(const ProgramIdentity& program) {
  const std::string_view name = program.executable.empty() ? program.invoked : program.executable;
  return std::ranges::find(kShells, name.empty() ? program.kernelName : name) != kShells.end();
}

}  // namespace brindle
