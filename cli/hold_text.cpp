#include "cli/hold_text.h"

#include "base/number_text.h"
#include "cli/duration_text.h"
#include "cli/usage_text.h"
#include "logic/helper/lid_sleep_limits.h"

namespace brindle {
namespace {

constexpr std::int64_t kLowestBatteryFloor = 5;
constexpr std::int64_t kHighestBatteryFloor = 90;

}  // namespace

HoldDuration holdDuration(const std::optional<std::string>& text) {
  if (!text) return {.duration = LidSleepLimits::defaultDuration};
  const auto parsed = parseDuration(*text);
  const auto refused = [&](std::string_view expected) {
    return HoldDuration{.problem = expectedText({.subject = "--for", .expected = expected, .got = *text})};
  };
  if (!parsed) return refused(kExpectedDuration);
  if (parsed->count() <= 0) return refused("more than nothing");
  if (*parsed > LidSleepLimits::maxDuration) return refused(durationText(LidSleepLimits::maxDuration) + " at most");
  return {.duration = *parsed};
}

BatteryFloor batteryFloorOf(const std::optional<std::string>& text) {
  if (!text) return {};
  std::string_view digits = *text;
  if (digits.ends_with('%')) digits.remove_suffix(1);
  const auto percent = integerFromText(digits);
  if (!percent || *percent < kLowestBatteryFloor || *percent > kHighestBatteryFloor) {
    return {.problem =
                expectedText({.subject = "--battery-floor", .expected = "a percentage from 5 to 90", .got = *text})};
  }
  return {.percent = *percent};
}

std::string problemText(const HelperProblem& problem) {
  switch (problem.kind) {
    case HelperProblemKind::notInstalled:
    case HelperProblemKind::unreachable:
      return "no helper to talk to: " + problem.text;
    case HelperProblemKind::refused:
      return "the helper refuses: " + problem.text;
  }
  return problem.text;
}

std::string endText(const HoldNews& news) {
  if (news.problem) return problemText({*news.problem, news.text});
  if (news.end == HoldEnd::maxDurationReached) return "sleep stays on: " + news.text + " 'brindle sleep on' does that";
  return "sleep stays on: " + news.text;
}

std::string interruptionText(const HoldNews& news) {
  const std::string why = news.text.empty() ? "" : ": " + news.text;
  if (news.phase == HoldPhase::paused) return "sleep is on for now" + why;
  return "sleep is on, asking again soon" + why;
}

}  // namespace brindle
