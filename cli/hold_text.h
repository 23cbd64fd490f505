// What the commands that hold sleep off say about it.
//
// Used by `brindle sleep` and `brindle run`. Pure; every text is one line without line end.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sleep_holder.h"

namespace brindle {

/// The duration of `--for`: LidSleepLimits::defaultDuration when it was not given. `problem` says what is wrong:
/// no duration, zero, or more than LidSleepLimits::maxDuration (that much is allowed).
struct HoldDuration {
  Seconds duration{0};
  std::string problem;

  bool operator==(const HoldDuration&) const = default;
};
[[nodiscard]] HoldDuration holdDuration(const std::optional<std::string>& text);

/// The percentage of `--battery-floor`: kUsualBatteryFloor when it was not given. `problem` says what is wrong: no
/// whole number, or one outside 5 to 90 (both are allowed).
inline constexpr std::int64_t kUsualBatteryFloor = 20;
struct BatteryFloor {
  std::int64_t percent = kUsualBatteryFloor;
  std::string problem;

  bool operator==(const BatteryFloor&) const = default;
};
[[nodiscard]] BatteryFloor batteryFloorOf(const std::optional<std::string>& text);

/// Why a call to the helper failed: "no helper to talk to: …" or "the helper refuses: …".
[[nodiscard]] std::string problemText(const HelperProblem& problem);

/// Why a hold could not begin or had to end, for the ends that are against the holder's will.
[[nodiscard]] std::string endText(const HoldNews& news);

/// A hold that stands still for now: waiting or paused.
[[nodiscard]] std::string interruptionText(const HoldNews& news);

}  // namespace brindle
