#include "base/byte_count.h"

#include <array>
#include <string_view>

#include "base/number_text.h"

namespace brindle {
namespace {

struct Unit {
  std::string_view name;
  int decimals;
};

constexpr auto kUnits = std::to_array<Unit>({{"KB", 0}, {"MB", 1}, {"GB", 2}, {"TB", 2}, {"PB", 2}, {"EB", 2}});

/// Commas between groups of three digits of the whole part; no zeros at the end of the decimals.
std::string polished(std::string text) {
  std::size_t point = text.find('.');
  if (point != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  } else {
    point = text.size();
  }
  for (std::size_t at = point; at > 3;) {
    at -= 3;
    text.insert(at, 1, ',');
  }
  return text;
}

}  // namespace

std::string memoryByteCount(std::int64_t bytes) {
  if (bytes == 0) return "Zero KB";
  const std::string sign = bytes < 0 ? "-" : "";
  const auto magnitude = bytes < 0 ? 0 - static_cast<std::uint64_t>(bytes) : static_cast<std::uint64_t>(bytes);
  if (magnitude < 1024) return sign + polished(std::to_string(magnitude)) + (magnitude == 1 ? " byte" : " bytes");
  std::size_t unit = 0;
  while (unit + 1 < kUnits.size() && (magnitude >> (10 * (unit + 2))) != 0) ++unit;
  const double scale = static_cast<double>(std::uint64_t{1} << (10 * (unit + 1)));
  const double scaled = static_cast<double>(magnitude) / scale;
  return sign + polished(fixedText(scaled, kUnits[unit].decimals)) + " " + std::string(kUnits[unit].name);
}

}  // namespace brindle
