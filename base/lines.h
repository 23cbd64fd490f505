// The lines of a JSON-Lines file.
#pragma once

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

}  // namespace brindle
