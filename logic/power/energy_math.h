// From energy counter readings to power figures for people.
//
// Used by the application, which owns the counters and the sampling interval. Pure functions without state.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/date.h"

namespace brindle {

struct EnergyReading {
  /// What the reading belongs to.
  std::string name;
  /// The unit of `value`: "J", "mJ", "uJ" (or with a micro sign or a Greek mu) or "nJ", white space around it allowed.
  std::string unit;
  /// The energy counted during the interval.
  std::int64_t value = 0;

  bool operator==(const EnergyReading&) const = default;
};

namespace EnergyMath {

/// A value and what it is measured against.
struct Share {
  double value = 0;
  double reference = 0;
  /// The smallest divisor.
  double floor = 0;
};

/// The energy in joules; none for an unknown unit. Units compare by their bytes, so "MJ" is unknown.
[[nodiscard]] std::optional<double> joules(std::int64_t value, std::string_view unit);

/// The average power over `interval`; 0 for an interval that is not positive or not a number, for a value below 1, and
/// for an unknown unit.
[[nodiscard]] double watts(std::int64_t value, std::string_view unit, Seconds interval);

/// The sum of watts() over the readings whose name is exactly `name`; 0 when there are none.
[[nodiscard]] double totalWatts(std::string_view name, std::span<const EnergyReading> readings, Seconds interval);

/// value / max(reference, floor) in percent, limited to 0 to 100. A divisor of 0 gives 100 for a positive value;
/// where there is no answer (0 of 0, not a number) it is 0.
[[nodiscard]] double percent(Share share);

/// "Idle" below 0.01 W, "Light use" below 0.5 W, else "Busy".
[[nodiscard]] std::string_view level(double watts);

}  // namespace EnergyMath

}  // namespace brindle
