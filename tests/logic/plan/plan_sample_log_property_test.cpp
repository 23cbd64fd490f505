#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "logic/plan/plan_forecast.h"
#include "logic/plan/plan_sample.h"

namespace brindle {
namespace {

RC_GTEST_PROP(PlanSampleLogProperty, StaysShortSortedAndOfTheCurrentWindow, ()) {
  const auto kind = *rc::gen::element(PlanWindowKind::session, PlanWindowKind::week);
  std::vector<PlanSample> samples;
  double now = 1e6;
  double resets = now + 1000;
  const int steps = *rc::gen::inRange(0, 300);
  for (int i = 0; i < steps; ++i) {
    now += *rc::gen::element(0.0, 1.0, 60.0, 600.0, 20000.0);
    while (resets <= now) resets += length(kind).count();
    const PlanSample reading{dateFromSeconds(now), static_cast<double>(*rc::gen::inRange(0, 1000)) / 10};
    const double before = samples.empty() ? 0 : samples.back().used;
    samples = PlanSampleLog::appending(reading, std::move(samples), dateFromSeconds(resets), kind);
    RC_ASSERT(!samples.empty());
    RC_ASSERT(samples.size() <= 120U);
    RC_ASSERT(samples.back() == reading);
    RC_ASSERT(reading.used + 0.5 >= before || samples.size() == 1U);
    RC_ASSERT(std::is_sorted(samples.begin(), samples.end(), [](const auto& a, const auto& b) { return a.at < b.at; }));
    for (const PlanSample& sample : samples) RC_ASSERT(sample.at >= dateFromSeconds(resets) - length(kind));
  }
}

RC_GTEST_PROP(PlanForecastProperty, DrawsSortedPointsInsideTheWindow, ()) {
  const auto kind = *rc::gen::element(PlanWindowKind::session, PlanWindowKind::week);
  const Date resets = dateFromSeconds(1e7);
  const Date start = resets - length(kind);
  const Date now = start + Seconds{*rc::gen::element(0.0, 0.5, 1.0, 599.0, 600.0, 9000.0, 17999.0, 18000.0)};
  const double used = static_cast<double>(*rc::gen::inRange(0, 1100)) / 10;
  std::vector<PlanSample> samples;
  for (const int offset : *rc::gen::container<std::vector<int>>(rc::gen::inRange(-1000, 20000))) {
    samples.push_back({start + Seconds{static_cast<double>(offset)}, used});
  }
  const auto burn = PlanForecast::burn(samples, resets, kind, now, used);
  RC_ASSERT(burn.has_value());
  RC_ASSERT(!burn->points.empty());
  RC_ASSERT(burn->points.front().at == start);
  RC_ASSERT(now - burn->points.back().at <= Seconds{1});
  RC_ASSERT(std::is_sorted(burn->points.begin(), burn->points.end(),
                           [](const auto& a, const auto& b) { return a.at < b.at; }));
  for (const PlanSample& point : burn->points) RC_ASSERT(point.at <= now);
  if (burn->projection) {
    RC_ASSERT(burn->projection->used <= 100);
    RC_ASSERT(burn->projection->at <= resets);
    RC_ASSERT(burn->projection->used >= used - 1e-9);
  }
}

}  // namespace
}  // namespace brindle
