// Random identifiers.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace brindle {

/// The canonical text of 16 bytes: upper-case hexadecimal, 8-4-4-4-12.
[[nodiscard]] std::string uuidText(const std::array<std::uint8_t, 16>& bytes);

/// Whether `text` is such a text, digits and dashes at their places; of any version.
[[nodiscard]] bool isUuidText(std::string_view text);

/// The text of a fresh random (version 4) UUID from the system's random source.
[[nodiscard]] std::string randomUuidText();

}  // namespace brindle
