#include "logic/plan/plan_forecast.h"

#include <algorithm>

namespace brindle::PlanForecast {
namespace {

/// A point less than this old stands for now.
constexpr Seconds kSameMoment{1};

std::vector<PlanSample> pointsInWindow(std::span<const PlanSample> samples, Date start, const PlanSample& current) {
  std::vector<PlanSample> points;
  for (const PlanSample& sample : samples) {
    if (sample.at >= start && sample.at <= current.at) points.push_back(sample);
  }
  std::stable_sort(points.begin(), points.end(), [](const PlanSample& a, const PlanSample& b) { return a.at < b.at; });
  if (points.empty() || points.front().at > start) points.insert(points.begin(), PlanSample{start, 0});
  if (current.at - points.back().at > kSameMoment) points.push_back(current);
  return points;
}

}  // namespace

Outcome outcome(std::optional<Date> resets, PlanWindowKind kind, Date now, double used) {
  if (used >= 100) return Full{};
  // Each test is written so that a value that is not a number ends in Unknown.
  if (!resets || !(*resets > now)) return Unknown{};
  const Date start = *resets - length(kind);
  const Seconds elapsed = now - start;
  if (!(elapsed >= kEarliest) || !(used >= kLeastUse)) return Unknown{};
  const Date emptyAt = start + elapsed * 100 / used;
  if (emptyAt < *resets) return RunsOut{emptyAt};
  return OnPace{};
}

std::optional<Burn> burn(std::span<const PlanSample> samples, std::optional<Date> resets, PlanWindowKind kind, Date now,
                         double used) {
  if (!resets) return std::nullopt;
  Burn burn{.start = *resets - length(kind), .end = *resets};
  burn.points = pointsInWindow(samples, burn.start, PlanSample{now, used});
  const Outcome forecast = outcome(resets, kind, now, used);
  if (const auto* runsOut = std::get_if<RunsOut>(&forecast)) {
    burn.projection = PlanSample{runsOut->emptyAt, 100};
  } else if (std::holds_alternative<OnPace>(forecast)) {
    const double elapsed = std::max(1.0, (now - burn.start).count());
    burn.projection = PlanSample{*resets, std::min(used * (*resets - burn.start).count() / elapsed, 100.0)};
  }
  return burn;
}

}  // namespace brindle::PlanForecast
