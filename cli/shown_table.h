// A table as a command shows it: as wide as the terminal, its heading in bold.
//
// Used by the reports and the stopping commands. Pure.
#pragma once

#include <string>

#include "cli/output.h"
#include "cli/text_table.h"

namespace brindle {

/// The lines of `table`, which has a row, as `output` can show them.
[[nodiscard]] std::string shownTable(const TextTable& table, const Output& output);

}  // namespace brindle
