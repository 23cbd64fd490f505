// Which development server a process is.
//
// Used by the inventory. Pure; any facts give an answer.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "inventory/process_facts.h"
#include "inventory/program_identity.h"

namespace brindle {

/// The framework's name by the process's own command; none for other programs, and for the same programs building,
/// testing or printing their version. The view is static.
[[nodiscard]] std::optional<std::string_view> recogniseFramework(const ProgramIdentity& program);

/// The framework of a process that listens: its own, or that of the nearest ancestor below the first agent, IDE,
/// terminal, daemon or user's shell of a terminal, since the listening process is often a worker without useful
/// arguments. `chain` holds the process, its parent, its parent's parent and so on. A "webpack" whose arguments are
/// lost to its title counts as a server, because it listens.
[[nodiscard]] std::optional<std::string_view> frameworkOfListener(std::span<const ProcessFacts* const> chain);

}  // namespace brindle
