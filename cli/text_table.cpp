#include "cli/text_table.h"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "inventory/valid_text.h"

namespace brindle {
namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
/// Blanks between two columns.
constexpr std::size_t kGap = 2;

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
  for (std::string& cell : cells) cell = terminalText(cell);
  rows_.push_back(std::move(cells));
}

std::vector<std::size_t> TextTable::widthsIn(std::size_t room) const {
  std::vector<std::size_t> wanted(columns_.size(), 0);
  for (const auto& row : rows_) {
    for (std::size_t at = 0; at < row.size(); ++at) wanted[at] = std::max(wanted[at], shownWidth(row[at]));
  }
  std::vector<std::size_t> widths = wanted;
  std::size_t line = 0;
  std::size_t last = 0;
  for (std::size_t at = 0; at < widths.size(); ++at) {
    if (widths[at] == 0) continue;
    if (columns_[at].widest > 0) widths[at] = std::min(widths[at], columns_[at].widest);
    widths[at] = std::max(widths[at], shownWidth(columns_[at].heading));
    line += widths[at] + (line == 0 ? 0 : kGap);
    last = at;
  }
  if (room == 0) return widths;
  if (line < room && widths[last] < wanted[last]) widths[last] = std::min(wanted[last], widths[last] + room - line);
  for (; line > room; --line) {
    std::size_t widest = widths.size();
    for (std::size_t at = 0; at < widths.size(); ++at) {
      const bool shrinks =
          columns_[at].widest > 0 && widths[at] > std::max(kNarrowest, shownWidth(columns_[at].heading));
      if (shrinks && (widest == widths.size() || widths[at] > widths[widest])) widest = at;
    }
    if (widest == widths.size()) break;
    --widths[widest];
  }
  return widths;
}

std::string TextTable::text(std::size_t room) const {
  const std::vector<std::size_t> widths = widthsIn(room);
  std::string text;
  const auto addLine = [&](const auto& cellAt) {
    std::string line;
    for (std::size_t at = 0; at < columns_.size(); ++at) {
      if (widths[at] == 0) continue;
      const std::string cell = fitted(cellAt(at), widths[at]);
      const std::string padding(widths[at] - shownWidth(cell), ' ');
      if (!line.empty()) line += std::string(kGap, ' ');
      line += columns_[at].align == Align::right ? padding + cell : cell + padding;
    }
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  };
  addLine([&](std::size_t at) -> const std::string& { return columns_[at].heading; });
  for (const auto& row : rows_) addLine([&](std::size_t at) -> const std::string& { return row[at]; });
  return text;
}

}  // namespace brindle
