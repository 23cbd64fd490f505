// Numbers as text and back, whatever the locale says.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace brindle {

/// The shortest text that reads back as `value`, whole values without ".0", as the platform's encoder writes it.
/// Precondition: finite.
[[nodiscard]] std::string doubleText(double value);

/// Exactly `decimals` digits after the point (0 to 17), halves of the exact binary value to even.
[[nodiscard]] std::string fixedText(double value, int decimals);

/// The whole text as an integer of the type in the base, with "-" where the type has a sign; none for anything else or
/// when it does not fit.
template <std::integral Number>
[[nodiscard]] std::optional<Number> wholeFromText(std::string_view text, int base = 10) {
  Number value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

/// The whole text as a decimal integer with optional "-"; none for anything else or when it does not fit.
[[nodiscard]] std::optional<std::int64_t> integerFromText(std::string_view text);

/// The whole text as a decimal number of the JSON grammar; none for anything else, or beyond a double's range.
[[nodiscard]] std::optional<double> doubleFromText(std::string_view text);

}  // namespace brindle
