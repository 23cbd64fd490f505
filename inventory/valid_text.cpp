#include "inventory/valid_text.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace brindle {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};
/// Soft hyphen, Arabic letter mark, Mongolian vowel separator, zero-width and directional marks, embeddings and
/// overrides, word joiner, invisible operators and isolates, variation selectors, byte-order mark, interlinear
/// annotation, tags and their supplement.
constexpr auto kInvisible = std::to_array<Range>({{0xAD, 0xAD},
                                                  {0x61C, 0x61C},
                                                  {0x180E, 0x180E},
                                                  {0x200B, 0x200F},
                                                  {0x202A, 0x202E},
                                                  {0x2060, 0x206F},
                                                  {0xFE00, 0xFE0F},
                                                  {0xFEFF, 0xFEFF},
                                                  {0xFFF9, 0xFFFB},
                                                  {0xE0000, 0xE01EF}});

}  // namespace

bool isInvisible(std::uint32_t scalar) {
  return std::ranges::any_of(kInvisible,
                             [&](const Range& range) { return scalar >= range.first && scalar <= range.last; });
}

bool isControl(std::uint32_t scalar) {
  return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0) || scalar == 0x2028 || scalar == 0x2029;
}

std::string validText(std::string_view text) {
  if (isValidUtf8(text)) return std::string(text);
  std::string valid;
  while (!text.empty()) {
    const std::size_t length = scalarLength(text);
    valid += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(1, length));
  }
  return valid;
}

std::string terminalText(std::string_view text) {
  const auto plain = [](char each) { return each >= 0x20 && each < 0x7F; };
  if (std::ranges::all_of(text, plain)) return std::string(text);
  std::string clean;
  while (!text.empty()) {
    const std::uint32_t scalar = scalarValue(text);
    const std::size_t length = scalarLength(text);
    if (length == 0) {
      clean += kReplacement;
    } else if (isControl(scalar)) {
      clean += ' ';
    } else if (!isInvisible(scalar)) {
      clean += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(1, length));
  }
  return clean;
}

}  // namespace brindle
