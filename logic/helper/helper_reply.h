// What the daemon answers: the values of its replies and the texts in them.
//
// Used by the daemon, which makes them, and by clients, which read the Booleans and show the texts. Two of the texts
// are for programs too, because no Boolean says as much: a holder gives up at kMaxDurationReached, which stands until
// somebody switches sleep on, but asks again after a switch that failed; and it tells by kSleepAlreadyDisabled that it
// shares a hold. So they are part of the protocol and stay as they are.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/date.h"
#include "logic/helper/helper_identity.h"

namespace brindle {

/// The answer to a request to switch sleep off or on.
struct SleepReply {
  bool ok = false;
  std::string message;

  bool operator==(const SleepReply&) const = default;
};

/// The answer to a question for the state.
struct HelperStatus {
  bool sleepDisabled = false;
  /// Until the disable ends by itself; 0 when sleep is not disabled, never negative.
  Seconds remaining{0};
  std::int64_t version = HelperIdentity::helperVersion;

  bool operator==(const HelperStatus&) const = default;
};

namespace HelperReplyText {

inline constexpr std::string_view kSleepDisabled = "Sleep disabled";
inline constexpr std::string_view kSleepOn = "Sleep on";
inline constexpr std::string_view kSleepAlreadyDisabled = "Sleep already disabled";
/// The counterpart of the one above; the policy always has something to do when sleep is to come back on.
inline constexpr std::string_view kSleepAlreadyOn = "Sleep already on";
inline constexpr std::string_view kMaxDurationReached = "Max duration reached. Turn it off first.";

/// `switchName` + " failed": the switch could not do what it was told.
[[nodiscard]] std::string failed(std::string_view switchName);

}  // namespace HelperReplyText

}  // namespace brindle
