#include "cli/shown_table.h"

namespace brindle {

std::string shownTable(const TextTable& table, const Output& output) {
  const std::string text = table.text(output.columns());
  const std::size_t end = text.find('\n');
  return output.painted(Paint::bold, text.substr(0, end)) + text.substr(end);
}

}  // namespace brindle
