#include "inventory/framework_recognition.h"

#include <algorithm>

#include "inventory/agent_recognition.h"
#include "inventory/framework_table.h"
#include "inventory/program_recognition.h"

namespace brindle {
namespace {

/// Ancestors looked at; the longest observed chain of wrappers has five.
constexpr std::size_t kChainLimit = 12;

bool matches(const FrameworkRow& row, const ProgramIdentity& program) {
  if (!program.isCalledAnyOf(row.programs)) return false;
  const auto given = [&](std::string_view argument) { return program.hasArgument(argument); };
  return (row.needs.empty() || std::ranges::any_of(row.needs, given)) && std::ranges::none_of(row.refuses, given);
}

bool endsTheSubtree(const ProcessFacts& facts, const ProgramIdentity& program) {
  return recogniseAgent(program) || classOf(program) ||
         (isShell(program) && facts.hasTerminal && program.arguments.empty());
}

}  // namespace

std::optional<std::string_view> recogniseFramework(const ProgramIdentity& program) {
  for (const FrameworkRow& row : frameworkTable()) {
    if (matches(row, program)) return row.name;
  }
  return std::nullopt;
}

std::optional<std::string_view> frameworkOfListener(std::span<const ProcessFacts* const> chain) {
  for (std::size_t place = 0; place < std::min(chain.size(), kChainLimit); ++place) {
    const ProgramIdentity program = identityOf(*chain[place]);
    if (place > 0 && endsTheSubtree(*chain[place], program)) return std::nullopt;
    if (const auto name = recogniseFramework(program)) return name;
    if (program.invoked == "webpack" && program.arguments.empty()) return "webpack";
  }
  return std::nullopt;
}

}  // namespace brindle
