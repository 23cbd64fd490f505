// Random identifiers.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace brindle {

/// The canonical text of 16 bytes: upper-case hexadecimal, 8-4-4-4-12.
[[nodiscard]] std::string uuidText(const std::array<std::uint8_t, 16>& bytes);

/// The text of a fresh random (version 4) UUID from the system's random source.
[[nodiscard]] std::string randomUuidText();

}  // namespace brindle
