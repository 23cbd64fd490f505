#include "base/uuid.h"

#include <sys/random.h>
#include <unistd.h>

#include <cstdlib>

namespace brindle {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::string_view kForm = "00000000-0000-0000-0000-000000000000";

}  // namespace

std::string uuidText(const std::array<std::uint8_t, 16>& bytes) {
  std::string text;
  text.reserve(36);
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    if (index == 4 || index == 6 || index == 8 || index == 10) text += '-';
    text += kDigits[bytes[index] >> 4];
    text += kDigits[bytes[index] & 15];
  }
  return text;
}

bool isUuidText(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t index = 0; index < text.size(); ++index) {
    const bool right = kForm[index] == '-' ? text[index] == '-' : kDigits.find(text[index]) != std::string_view::npos;
    if (!right) return false;
  }
  return true;
}

std::string randomUuidText() {
  std::array<std::uint8_t, 16> bytes{};
  // It fails for more than 256 bytes or on a kernel without the call; identifiers that repeat would mix requests up.
  if (::getentropy(bytes.data(), bytes.size()) != 0) std::abort();
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
  return uuidText(bytes);
}

}  // namespace brindle
