// Reads the usage document of an agent plan: how much of each window is used, and when it resets.
//
// Used by whoever fetched or was given a document. It comes from outside: any bytes yield windows or none, never an
// exception. No state; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"

namespace brindle::PlanUsageParser {

struct Window {
  /// Percent of the window used, 0 to 100.
  double used = 0;
  /// When the window resets; absent when the document gives no date, or one that cannot be read.
  std::optional<Date> resets;

  bool operator==(const Window&) const = default;
};

/// What a document holds; a window that is missing or malformed is absent.
struct Windows {
  std::optional<Window> session;
  std::optional<Window> week;

  bool operator==(const Windows&) const = default;
};

/// Looks at the keys "five_hour" and "seven_day" alone. A window needs a number under "utilization", which is limited
/// to 0 to 100; its reset date may carry a fraction of a second or not, but must carry a time zone.
[[nodiscard]] Windows parse(std::string_view data);

/// "Resets in 2d 5h", "Resets in 3h 05m" or "Resets in 12m" by the whole seconds left; "Resets now" below one second;
/// none without a date.
[[nodiscard]] std::optional<std::string> resetText(std::optional<Date> resets, Date now);

}  // namespace brindle::PlanUsageParser
