// Which class a program other than an agent belongs to.
//
// Used for roles, protections and the evidence for processes left behind. Pure; any facts give an answer.
#pragma once

#include <optional>

#include "inventory/program_identity.h"
#include "inventory/program_table.h"

namespace brindle {

/// The first class, in declaration order, whose names or folders match; none for everything else. An agent's program
/// may share a name with an IDE's, so agents are recognised first by the callers.
[[nodiscard]] std::optional<ProgramClass> classOf(const ProgramIdentity& program);

/// Whether it lives on by design when what started it ends: daemons of tools and agents, multiplexers, containers,
/// databases and the system's managers.
[[nodiscard]] bool livesOnByDesign(const ProgramIdentity& program);

/// Whether it is a command shell: "bash", "zsh", "fish", "sh", "dash", "tcsh", "ksh".
[[nodiscard]] bool isShell(const ProgramIdentity& program);

}  // namespace brindle
