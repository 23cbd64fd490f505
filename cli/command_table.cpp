#include "cli/command_table.h"

#include <algorithm>
#include <vector>

#include "cli/commands.h"

namespace brindle {

namespace {

#define BRINDLE_COMMAND(constant) &constant,
constexpr const Command* kCommands[] = {
#include "cli/commands.inc"
};
#undef BRINDLE_COMMAND

/// The longest name that is compared; nobody mistypes a command in more letters.
constexpr std::size_t kLongestCompared = 32;

struct Words {
  std::string_view typed;
  std::string_view known;
};

/// Letters added, dropped, changed or swapped with their neighbour between the two.
std::size_t distance(const Words& words) {
  const auto& [typed, known] = words;
  const std::size_t width = known.size() + 1;
  std::vector<std::size_t> table((typed.size() + 1) * width);
  const auto at = [&](std::size_t row, std::size_t column) -> std::size_t& { return table[row * width + column]; };
  for (std::size_t row = 0; row <= typed.size(); ++row) at(row, 0) = row;
  for (std::size_t column = 0; column <= known.size(); ++column) at(0, column) = column;
  for (std::size_t row = 1; row <= typed.size(); ++row) {
    for (std::size_t column = 1; column <= known.size(); ++column) {
      const std::size_t change = typed[row - 1] == known[column - 1] ? 0 : 1;
      std::size_t best = std::min({at(row - 1, column) + 1, at(row, column - 1) + 1, at(row - 1, column - 1) + change});
      const bool swapped =
          row > 1 && column > 1 && typed[row - 1] == known[column - 2] && typed[row - 2] == known[column - 1];
      if (swapped) best = std::min(best, at(row - 2, column - 2) + 1);
      at(row, column) = best;
    }
  }
  return at(typed.size(), known.size());
}

}  // namespace

std::span<const Command* const> allCommands() { return kCommands; }

const Command* findCommand(std::span<const Command* const> commands, std::string_view name) {
  const auto found = std::ranges::find(commands, name, [](const Command* command) { return command->name; });
  return found == commands.end() ? nullptr : *found;
}

std::string_view suggestedCommand(std::span<const Command* const> commands, std::string_view name) {
  constexpr std::size_t kMostChanges = 2;
  if (name.size() > kLongestCompared) return {};
  std::string_view best;
  std::size_t fewest = kMostChanges + 1;
  for (const Command* command : commands) {
    const std::size_t changes = distance({.typed = name, .known = command->name});
    if (changes < fewest && 2 * changes < command->name.size()) {
      fewest = changes;
      best = command->name;
    }
  }
  return best;
}

}  // namespace brindle
