// Texts in pieces: the lines of a JSON-Lines file, and whatever else a separator divides.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace brindle {

/// The pieces of `text` between line feeds (byte 10 alone), empty ones left out; a last piece without its line feed
/// included. Views into `text`.
[[nodiscard]] inline std::vector<std::string_view> nonEmptyLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end != 0) lines.push_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return lines;
}

/// Takes the next piece up to `separator` from `rest`, and the separator with it; all of it where there is none.
inline std::string_view takePiece(std::string_view& rest, char separator) {
  const std::size_t end = std::min(rest.find(separator), rest.size());
  const std::string_view piece = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return piece;
}

}  // namespace brindle
