#include "base/number_text.h"

#include <fast_float/fast_float.h>

#include <array>
#include <charconv>
#include <cmath>

namespace brindle {
namespace {

// Above this magnitude neighbouring doubles are further than 1 apart, and the platform's encoder writes an exponent.
constexpr double kLargestPlainDouble = 9007199254740992.0;
constexpr double kSmallestPlainDouble = 1e-4;

// The longest fixed text: sign, 309 digits, point, 17 decimals.
constexpr std::size_t kNumberBuffer = 384;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t skipDigits(std::string_view text, std::size_t position) {
  while (position < text.size() && isDigit(text[position])) ++position;
  return position;
}

bool matchesNumberGrammar(std::string_view text) {
  std::size_t position = text.starts_with('-') ? 1 : 0;
  const std::size_t whole = position;
  position = skipDigits(text, position);
  if (position == whole || (text[whole] == '0' && position - whole > 1)) return false;
  if (position < text.size() && text[position] == '.') {
    const std::size_t fraction = ++position;
    position = skipDigits(text, position);
    if (position == fraction) return false;
  }
  if (position < text.size() && (text[position] == 'e' || text[position] == 'E')) {
    ++position;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) ++position;
    const std::size_t exponent = position;
    position = skipDigits(text, position);
    if (position == exponent) return false;
  }
  return position == text.size();
}

}  // namespace

std::string doubleText(double value) {
  const double magnitude = std::fabs(value);
  const bool plain = magnitude == 0 || (magnitude >= kSmallestPlainDouble && magnitude <= kLargestPlainDouble);
  std::array<char, kNumberBuffer> buffer;
  const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format).ptr;
  return {buffer.data(), end};
}

std::string fixedText(double value, int decimals) {
  std::array<char, kNumberBuffer> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals).ptr;
  return {buffer.data(), end};
}

std::optional<std::int64_t> integerFromText(std::string_view text) { return wholeFromText<std::int64_t>(text); }

std::optional<double> doubleFromText(std::string_view text) {
  if (!matchesNumberGrammar(text)) return std::nullopt;
  double value = 0;
  // Newer releases report an underflow as out of range, with the nearest value; only an overflow has none.
  fast_float::from_chars(text.data(), text.data() + text.size(), value);
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace brindle
