// Usage documents: any bytes give windows or none, and what is used stays within its bounds.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "logic/plan/plan_forecast.h"
#include "logic/plan/plan_usage_parser.h"

namespace {

void check(const std::optional<brindle::PlanUsageParser::Window>& window, brindle::PlanWindowKind kind) {
  if (!window) return;
  constexpr brindle::Date kNow = brindle::dateFromSeconds(1'772'352'000);
  if (!(window->used >= 0 && window->used <= 100)) std::abort();
  if (brindle::PlanUsageParser::resetText(window->resets, kNow).has_value() != window->resets.has_value()) std::abort();
  const auto burn = brindle::PlanForecast::burn({}, window->resets, kind, kNow, window->used);
  if (burn.has_value() != window->resets.has_value()) std::abort();
  if (burn && burn->points.empty()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto windows = brindle::PlanUsageParser::parse({reinterpret_cast<const char*>(data), size});
  check(windows.session, brindle::PlanWindowKind::session);
  check(windows.week, brindle::PlanWindowKind::week);
  return 0;
}
