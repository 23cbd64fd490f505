#include "cli/text_table.h"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "inventory/valid_text.h"

namespace brindle {
namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

/// The scalars of a character together take the columns of its widest one.
std::size_t characterWidth(std::string_view character) {
  int widest = 0;
  while (!character.empty()) {
    utf8proc_int32_t scalar = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(character.data()),
                                         static_cast<utf8proc_ssize_t>(character.size()), &scalar);
    if (length <= 0) return 1;
    widest = std::max(widest, utf8proc_charwidth(scalar));
    character.remove_prefix(static_cast<std::size_t>(length));
  }
  return static_cast<std::size_t>(widest);
}

std::string_view firstCharacter(std::string_view text) { return firstCharacters(text, 1); }

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char each) { return each >= 0x20 && each < 0x7F; });
}

}  // namespace

std::size_t shownWidth(std::string_view text) {
  if (isAscii(text)) return text.size();
  std::size_t width = 0;
  while (!text.empty()) {
    const std::string_view character = firstCharacter(text);
    width += characterWidth(character);
    text.remove_prefix(character.size());
  }
  return width;
}

std::string fitted(std::string_view text, std::size_t columns) {
  if (shownWidth(text) <= columns) return std::string(text);
  std::string cut;
  std::size_t width = 0;
  while (!text.empty()) {
    const std::string_view character = firstCharacter(text);
    width += characterWidth(character);
    if (width + 1 > columns) break;
    cut += character;
    text.remove_prefix(character.size());
  }
  return columns == 0 ? std::string() : cut + std::string(kEllipsis);
}

void TextTable::add(std::vector<std::string> cells) {
  for (std::size_t at = 0; at < cells.size(); ++at) {
    cells[at] = terminalText(cells[at]);
    if (columns_[at].widest > 0) cells[at] = fitted(cells[at], columns_[at].widest);
  }
  rows_.push_back(std::move(cells));
}

std::string TextTable::text() const {
  std::vector<std::size_t> widths(columns_.size(), 0);
  for (const auto& row : rows_) {
    for (std::size_t at = 0; at < row.size(); ++at) widths[at] = std::max(widths[at], shownWidth(row[at]));
  }
  std::string text;
  const auto addLine = [&](const auto& cellAt) {
    std::string line;
    for (std::size_t at = 0; at < columns_.size(); ++at) {
      if (widths[at] == 0) continue;
      const std::string& cell = cellAt(at);
      const std::size_t width = std::max(widths[at], shownWidth(columns_[at].heading));
      const std::string padding(width - shownWidth(cell), ' ');
      if (!line.empty()) line += "  ";
      line += columns_[at].align == Align::right ? padding + cell : cell + padding;
    }
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  };
  addLine([&](std::size_t at) -> const std::string& { return columns_[at].heading; });
  for (const auto& row : rows_) addLine([&](std::size_t at) -> const std::string& { return row[at]; });
  return text;
}

}  // namespace brindle
