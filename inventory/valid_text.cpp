#include "inventory/valid_text.h"

#include <algorithm>
#include <cstdint>

#include "base/text.h"

namespace brindle {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// The well-formed sequence at the beginning of `text`; empty when there is none.
std::string_view firstSequence(std::string_view text) {
  for (std::size_t length = 1; length <= std::min<std::size_t>(4, text.size()); ++length) {
    if (isValidUtf8(text.substr(0, length))) return text.substr(0, length);
  }
  return {};
}

std::uint32_t scalarOf(std::string_view sequence) {
  const auto byte = [&](std::size_t at) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(sequence[at]));
  };
  switch (sequence.size()) {
    case 2:
      return (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
    case 3:
      return (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    case 4:
      return (byte(0) & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
    default:
      return byte(0);
  }
}

bool isHidden(std::uint32_t scalar) {
  return scalar == 0x061C || (scalar >= 0x200B && scalar <= 0x200F) || (scalar >= 0x2028 && scalar <= 0x202E) ||
         (scalar >= 0x2060 && scalar <= 0x2069) || scalar == 0xFEFF;
}

bool isControl(std::uint32_t scalar) { return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0); }

}  // namespace

std::string validText(std::string_view text) {
  if (isValidUtf8(text)) return std::string(text);
  std::string valid;
  while (!text.empty()) {
    const std::string_view sequence = firstSequence(text);
    valid += sequence.empty() ? kReplacement : sequence;
    text.remove_prefix(std::max<std::size_t>(1, sequence.size()));
  }
  return valid;
}

std::string terminalText(std::string_view text) {
  const auto plain = [](char each) { return each >= 0x20 && each < 0x7F; };
  if (std::ranges::all_of(text, plain)) return std::string(text);
  std::string clean;
  while (!text.empty()) {
    const std::string_view sequence = firstSequence(text);
    text.remove_prefix(std::max<std::size_t>(1, sequence.size()));
    if (sequence.empty()) {
      clean += kReplacement;
      continue;
    }
    const std::uint32_t scalar = scalarOf(sequence);
    if (isHidden(scalar)) continue;
    if (isControl(scalar)) {
      clean += ' ';
    } else {
      clean += sequence;
    }
  }
  return clean;
}

}  // namespace brindle
