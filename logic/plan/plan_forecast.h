// Whether a plan window runs out before it resets, and the points of its burn chart.
//
// Used by the plan report, the widget feed and the application. Pure functions; the forecast is a straight line from
// nothing at the start of the window through the current reading.
#pragma once

#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "base/date.h"
#include "logic/plan/plan_sample.h"
#include "logic/plan/plan_window_kind.h"

namespace brindle::PlanForecast {

/// At the current rate the window reaches 100 % at that date, before it resets.
struct RunsOut {
  Date emptyAt{};
  bool operator==(const RunsOut&) const = default;
};

/// Too early or too little use to tell, or no reset date in the future.
struct Unknown {
  bool operator==(const Unknown&) const = default;
};

/// At the current rate the window lasts until it resets.
struct OnPace {
  bool operator==(const OnPace&) const = default;
};

/// Already at 100 % or more.
struct Full {
  bool operator==(const Full&) const = default;
};

using Outcome = std::variant<RunsOut, Unknown, OnPace, Full>;

/// Nothing is forecast before this much of the window has passed …
inline constexpr Seconds kEarliest{600};
/// … or below this percentage of use.
inline constexpr double kLeastUse = 1;

/// The forecast from `used` percent at `now`. Exactly kEarliest into the window and exactly kLeastUse are enough.
[[nodiscard]] Outcome outcome(std::optional<Date> resets, PlanWindowKind kind, Date now, double used);

struct Burn {
  /// The window: its reset date minus its length, and its reset date.
  Date start{};
  Date end{};
  /// The readings inside the window up to now, earliest first; from (start, 0) where the readings begin later, and to
  /// (now, used) where the last one is more than a second old.
  std::vector<PlanSample> points;
  /// Where the current rate leads; absent when there is no forecast or nothing left.
  std::optional<PlanSample> projection;

  bool operator==(const Burn&) const = default;
};

/// The chart of the window that ends at `resets`; none without a reset date. `samples` may come in any order.
[[nodiscard]] std::optional<Burn> burn(std::span<const PlanSample> samples, std::optional<Date> resets,
                                       PlanWindowKind kind, Date now, double used);

}  // namespace brindle::PlanForecast
