#include "logic/power/energy_math.h"

#include <array>

#include "base/text.h"

namespace brindle::EnergyMath {
namespace {

struct Unit {
  std::string_view text;
  /// How many of it make a joule. Dividing by it rounds once; multiplying by its reciprocal would round twice.
  double perJoule;
};

constexpr std::array kUnits{
    Unit{"J", 1},         Unit{"mJ", 1e3}, Unit{"uJ", 1e6}, Unit{"\u00B5J", 1e6},  // MICRO SIGN
    Unit{"\u03BCJ", 1e6},                                                          // GREEK SMALL LETTER MU
    Unit{"nJ", 1e9},
};

}  // namespace

std::optional<double> joules(std::int64_t value, std::string_view unit) {
  const std::string_view trimmed = trimWhiteSpace(unit);
  for (const Unit& known : kUnits) {
    if (known.text == trimmed) return static_cast<double>(value) / known.perJoule;
  }
  return std::nullopt;
}

double watts(std::int64_t value, std::string_view unit, Seconds interval) {
  if (!(interval.count() > 0) || value < 1) return 0;
  const auto energy = joules(value, unit);
  return energy ? *energy / interval.count() : 0;
}

double totalWatts(std::string_view name, std::span<const EnergyReading> readings, Seconds interval) {
  double total = 0;
  for (const EnergyReading& reading : readings) {
    if (reading.name == name) total += watts(reading.value, reading.unit, interval);
  }
  return total;
}

double percent(Share share) {
  const double larger = share.reference > share.floor ? share.reference : share.floor;
  const double divisor = larger == 0 ? 0.0 : larger;  // a negative zero would turn the sign of the quotient
  const double result = share.value / divisor * 100;
  if (result > 100) return 100;
  return result > 0 ? result : 0;
}

std::string_view level(double watts) {
  if (watts < 0.01) return "Idle";
  if (watts < 0.5) return "Light use";
  return "Busy";
}

}  // namespace brindle::EnergyMath
