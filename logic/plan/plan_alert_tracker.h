// Which plan alerts were sent, so that each window of each account alerts at most once.
//
// Owned by the application, which keeps it between runs and shows the alerts. A plain value without clock.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "base/json_value.h"
#include "logic/plan/plan_window_kind.h"

namespace brindle {

struct PlanAlertTracker {
  /// Alert key to the date on which that alert was sent. In JSON seconds since 1970, as numbers.
  std::map<std::string, Date> sent;

  /// Percent of use from which on a window alerts, inclusive.
  static constexpr double kThreshold = 90;
  /// An entry this old, inclusive, is dropped; longer than any window.
  static constexpr Seconds kRetention{691200};

  /// Whether to alert now, which is then recorded. Drops old entries first, at every call.
  [[nodiscard]] bool shouldAlert(const std::string& account, PlanWindowKind kind, std::optional<Date> resets,
                                 double used, Date now);

  /// "Claude (Pro and Max) at 92% this week": the whole part of `used`, and the window only for the week.
  [[nodiscard]] static std::string alertText(std::string_view name, double used, PlanWindowKind kind);

  bool operator==(const PlanAlertTracker&) const = default;
};

/// The one member "sent", its entries in the order of their keys. Precondition: finite dates.
[[nodiscard]] JsonObject encode(const PlanAlertTracker& tracker);

/// None when "sent" is missing, no object, or holds anything but numbers.
[[nodiscard]] std::optional<PlanAlertTracker> decodePlanAlertTracker(const JsonObject& object);

}  // namespace brindle
