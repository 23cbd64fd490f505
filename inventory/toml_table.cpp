#include "inventory/toml_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/text.h"

namespace brindle {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Release 3.3 of the library asks of characters whether they are blanks by a search that has no answer for many between
// U+00A1 and U+FEFE, é among them: undefined behaviour, reached by a document of a stranger. For all above it has one.
// So the others are moved there, into a plane for private use, before the document is parsed, and back in what is read.
// Blanks other than those of TOML are no blanks then, as TOML has it.
constexpr std::uint32_t kFirstMoved = 0x80;
constexpr std::uint32_t kLastMoved = 0xFFFF;
constexpr std::uint32_t kDistance = 0xF0000;

std::string moved(std::string_view text) {
  std::string result;
  if (text.starts_with(kByteOrderMark)) {
    result = kByteOrderMark;
    text.remove_prefix(kByteOrderMark.size());
  }
  while (!text.empty()) {
    const std::size_t length = scalarLength(text);
    const std::uint32_t scalar = scalarValue(text);
    if (length > 0 && scalar >= kFirstMoved && scalar <= kLastMoved) {
      appendScalar(result, scalar + kDistance);
    } else {
      result += text.substr(0, std::max<std::size_t>(1, length));
    }
    text.remove_prefix(std::max<std::size_t>(1, length));
  }
  return result;
}

std::string movedBack(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::uint32_t scalar = scalarValue(text);
    const bool isMoved = scalar >= kFirstMoved + kDistance && scalar <= kLastMoved + kDistance;
    appendScalar(result, isMoved ? scalar - kDistance : scalar);
    text.remove_prefix(std::max<std::size_t>(1, scalarLength(text)));
  }
  return result;
}

bool nestsTooDeep(std::string_view text) {
  int depth = 0;
  for (const char each : text) {
    if (each == '[' || each == '{') ++depth;
    if ((each == ']' || each == '}') && depth > 0) --depth;
    if (depth > kTomlDepthLimit) return true;
  }
  return false;
}

}  // namespace

std::optional<toml::table> parseToml(std::string_view text) {
  if (nestsTooDeep(text)) return std::nullopt;
  toml::parse_result document = toml::parse(moved(text));
  if (!document) return std::nullopt;
  return std::move(document).table();
}

std::optional<std::string> tomlText(const toml::node* node) {
  const auto text = node == nullptr ? std::nullopt : node->value<std::string>();
  if (!text) return std::nullopt;
  return movedBack(*text);
}

}  // namespace brindle
