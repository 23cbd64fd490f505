// The choices for viewing and keeping the history of use.
//
// Used by the settings screen and by whoever prunes the history. Constants and pure functions.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace brindle::HistoryPolicy {

/// The spans of history that can be viewed, in hours, in the order in which they are offered.
inline constexpr std::array<double, 7> ranges{1, 6, 12, 24, 168, 720, 8760};
/// How many days the history may be kept.
inline constexpr std::array<std::int64_t, 4> retentionChoices{30, 90, 180, 365};
/// What holds when nothing valid is chosen.
inline constexpr std::int64_t kDefaultRetentionDays = 365;

/// "1 Hour", "7 Days", "30 Days" and "1 Year" for 1, 168, 720 and 8760; else the whole part of `hours` and " Hours".
[[nodiscard]] std::string label(double hours);

/// `chosen` when it is one of the choices, else kDefaultRetentionDays.
[[nodiscard]] std::int64_t retentionDays(std::optional<std::int64_t> chosen);

}  // namespace brindle::HistoryPolicy
