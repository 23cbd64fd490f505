#include "cli/usage_text.h"

namespace brindle {

std::string expectedText(const WrongValue& wrong) {
  std::string text(wrong.subject);
  if (!text.empty()) text += ": ";
  text += "expected ";
  text += wrong.expected;
  return text + ", got " + inQuotes(wrong.got);
}

std::string inQuotes(std::string_view text) { return '"' + std::string(text) + '"'; }

}  // namespace brindle
