// Numbers as text and back, whatever the locale says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// The shortest text that reads back as `value`, whole values without ".0", as the platform's encoder writes it.
/// Precondition: finite.
[[nodiscard]] std::string doubleText(double value);

/// Exactly `decimals` digits after the point (0 to 17), halves of the exact binary value to even.
[[nodiscard]] std::string fixedText(double value, int decimals);

/// The whole text as a decimal integer with optional "-"; none for anything else or when it does not fit.
[[nodiscard]] std::optional<std::int64_t> integerFromText(std::string_view text);

/// The whole text as a decimal number of the JSON grammar; none for anything else, or beyond a double's range.
[[nodiscard]] std::optional<double> doubleFromText(std::string_view text);

}  // namespace brindle
