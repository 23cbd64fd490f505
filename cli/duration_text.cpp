#include "cli/duration_text.h"

#include <array>
#include <cstdint>

namespace brindle {

namespace {

struct Unit {
  char letter;
  std::int64_t seconds;
};

constexpr auto kUnits = std::to_array<Unit>({{'d', 86400}, {'h', 3600}, {'m', 60}, {'s', 1}});

constexpr bool isDigit(char character) { return character >= '0' && character <= '9'; }

/// More than any duration that is read or shown, and exact as a double.
constexpr double kLongestShown = 1e15;

}  // namespace

std::optional<Seconds> parseDuration(std::string_view text) {
  if (text.empty()) return std::nullopt;
  std::int64_t total = 0;
  auto nextUnit = kUnits.begin();
  while (!text.empty()) {
    std::size_t digits = 0;
    std::int64_t number = 0;
    while (digits < text.size() && isDigit(text[digits])) {
      if (digits == kDurationDigitLimit) return std::nullopt;
      number = number * 10 + (text[digits] - '0');
      ++digits;
    }
    if (digits == 0 || digits == text.size()) return std::nullopt;
    while (nextUnit != kUnits.end() && nextUnit->letter != text[digits]) ++nextUnit;
    if (nextUnit == kUnits.end()) return std::nullopt;
    total += number * nextUnit->seconds;
    ++nextUnit;
    text.remove_prefix(digits + 1);
  }
  return Seconds{static_cast<double>(total)};
}

std::string durationText(Seconds duration) {
  const double seconds = duration.count();
  if (!(seconds >= 1)) return "0s";
  std::int64_t left = static_cast<std::int64_t>(seconds < kLongestShown ? seconds : kLongestShown);
  std::string text;
  for (const Unit& unit : kUnits) {
    if (unit.letter == 'd') continue;
    const std::int64_t count = left / unit.seconds;
    left %= unit.seconds;
    if (count == 0) continue;
    text += std::to_string(count);
    text += unit.letter;
  }
  return text;
}

}  // namespace brindle
