#include "cli/duration_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

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

constexpr std::span<const Unit> kHours = std::span(kUnits).subspan(1);

/// With at most `most` of `units`, from the first that is filled.
std::string written(Seconds duration, std::span<const Unit> units, std::size_t most) {
  const double seconds = duration.count();
  if (!(seconds >= 1)) return "0s";
  auto left = static_cast<std::int64_t>(std::min(seconds, kLongestShown));
  while (left < units.front().seconds) units = units.subspan(1);
  std::string text;
  for (const Unit& unit : units.first(std::min(most, units.size()))) {
    const std::int64_t count = left / unit.seconds;
    left %= unit.seconds;
    if (count == 0) continue;
    text += std::to_string(count);
    text += unit.letter;
  }
  return text;
}

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

std::string durationText(Seconds duration) { return written(duration, kHours, kUnits.size()); }

std::string ageText(Seconds age) { return written(age, kUnits, 2); }

}  // namespace brindle
