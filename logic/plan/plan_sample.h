// Readings of how much of a plan window is used, and the short log that is kept of them.
//
// Taken by whoever fetches usage documents, drawn by the burn chart. Plain values; the member names are the JSON keys.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "base/date.h"
#include "base/json_value.h"
#include "logic/plan/plan_window_kind.h"

namespace brindle {

struct PlanSample {
  /// When the reading was taken. In JSON seconds since 1970, as a number.
  Date at{};
  /// Percent of the window used.
  double used = 0;

  bool operator==(const PlanSample&) const = default;
};

/// Both members, in the order of the record. Precondition: finite numbers, as decoding yields them.
[[nodiscard]] JsonObject encode(const PlanSample& sample);

/// None when a member is missing or no number.
[[nodiscard]] std::optional<PlanSample> decodePlanSample(const JsonObject& object);

namespace PlanSampleLog {

/// The most samples that are kept of one window.
inline constexpr std::size_t kLimit = 120;
/// A reading this much or less below the last one is noise; a greater drop means that the window was reset.
inline constexpr double kNoise = 0.5;

/// `samples`, oldest first, with `sample` taken in: samples before the start of the window that ends at `resets` go,
/// all earlier ones go when the use has dropped by more than kNoise, and beyond kLimit the oldest go.
[[nodiscard]] std::vector<PlanSample> appending(const PlanSample& sample, std::vector<PlanSample> samples,
                                                std::optional<Date> resets, PlanWindowKind kind);

}  // namespace PlanSampleLog

}  // namespace brindle
