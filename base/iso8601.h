// Dates as ISO 8601 text in UTC. Strict on reading: four-digit year, two-digit fields in range, "T", a zone of
// "Z" or ±hh:mm (the colon may be missing); no leap second, no 24:00, no rolling over of days.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"

namespace brindle {

/// "2026-03-01T08:00:00Z"; a fraction is dropped towards the past.
[[nodiscard]] std::string writeIso8601(Date date);

/// A text without fraction; none for anything else.
[[nodiscard]] std::optional<Date> readIso8601(std::string_view text);

/// A text with a fraction of one or more digits; none for anything else, a text without fraction included.
[[nodiscard]] std::optional<Date> readIso8601WithFraction(std::string_view text);

}  // namespace brindle
