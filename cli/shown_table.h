// A table as a command shows it: as wide as the terminal, its heading in bold.
//
// Used by the reports and the stopping commands. Pure.
#pragma once

#include <cstddef>
#include <string>

#include "cli/output.h"
#include "cli/text_table.h"

namespace brindle {

/// The most columns of cells that others fill; longer ones are cut.
inline constexpr std::size_t kNameWidth = 24;
inline constexpr std::size_t kOriginWidth = 48;
inline constexpr std::size_t kPortsWidth = 40;
inline constexpr std::size_t kReasonWidth = 40;
inline constexpr std::size_t kCommandWidth = 60;

/// The lines of `table`, which has a row, as `output` can show them.
[[nodiscard]] std::string shownTable(const TextTable& table, const Output& output);

}  // namespace brindle
