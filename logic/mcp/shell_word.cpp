#include "logic/mcp/shell_word.h"

#include <algorithm>

namespace brindle {
namespace {

bool needsNoQuoting(char byte) {
  constexpr std::string_view kMarks = "/._-+:%@";
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
         kMarks.find(byte) != std::string_view::npos;
}

}  // namespace

std::string shellWord(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), needsNoQuoting)) return std::string(text);
  std::string word = "'";
  for (const char byte : text) {
    if (byte == '\'') {
      word += R"('\'')";
    } else {
      word.push_back(byte);
    }
  }
  return word + "'";
}

}  // namespace brindle
