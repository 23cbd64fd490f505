// What a hold on sleep can be in the middle of, how it can end, and what it asks its driver to do.
//
// Used by SleepHold, which decides, SleepHolder, which carries out, and the commands, which tell. Plain values.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>

#include "base/date.h"
#include "base/enum_text.h"

namespace brindle {

enum class HoldPhase {
  /// Nothing has been asked yet.
  idle,
  /// The helper has been asked to switch sleep off and has not answered.
  asking,
  /// Sleep is off.
  held,
  /// Sleep is on, against our will; asked again at the next beat.
  waiting,
  /// Sleep is on because the battery or the heat wants it so.
  paused,
  /// The helper has been asked to switch sleep on and has not answered.
  lettingGo,
  /// Over; see end().
  ended,
};

template <>
inline constexpr auto kEnumTexts<HoldPhase> = std::to_array<EnumText<HoldPhase>>({
    {HoldPhase::idle, "idle"},
    {HoldPhase::asking, "asking"},
    {HoldPhase::held, "held"},
    {HoldPhase::waiting, "waiting"},
    {HoldPhase::paused, "paused"},
    {HoldPhase::lettingGo, "lettingGo"},
    {HoldPhase::ended, "ended"},
});

enum class HoldEnd {
  /// The holder let go.
  released,
  /// The duration that was asked for is over.
  timeOver,
  /// The helper refuses because an earlier hold ran into its limit and nobody has switched sleep on since.
  maxDurationReached,
  /// The helper does not admit this user or program.
  refused,
  /// The first request failed; see problem().
  failed,
};

template <>
inline constexpr auto kEnumTexts<HoldEnd> = std::to_array<EnumText<HoldEnd>>({
    {HoldEnd::released, "released"},
    {HoldEnd::timeOver, "timeOver"},
    {HoldEnd::maxDurationReached, "maxDurationReached"},
    {HoldEnd::refused, "refused"},
    {HoldEnd::failed, "failed"},
});

/// Names one call; only the answer to the latest call counts.
using HoldTicket = std::uint64_t;

struct AskToDisable {
  HoldTicket ticket = 0;
  Seconds maxDuration{0};
  bool operator==(const AskToDisable&) const = default;
};
struct SendHeartbeat {
  HoldTicket ticket = 0;
  bool operator==(const SendHeartbeat&) const = default;
};
struct AskToEnable {
  HoldTicket ticket = 0;
  bool operator==(const AskToEnable&) const = default;
};
/// What the driver does next; none for nothing.
using HoldAction = std::optional<std::variant<AskToDisable, SendHeartbeat, AskToEnable>>;

}  // namespace brindle
