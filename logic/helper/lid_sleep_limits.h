// The durations and the heartbeat timing on which the daemon and the application must agree.
//
// Used by the revert policy, the lid-sleep policy, the settings, and every holder of a hold. Constants of the program.
#pragma once

#include <array>

#include "base/date.h"

namespace brindle::LidSleepLimits {

/// The standard maximum duration of one disable; one of the choices below.
inline constexpr Seconds defaultDuration{14400};
/// The lower bound to which a requested maximum duration is raised.
inline constexpr Seconds minDuration{60};
/// The upper bound to which a requested maximum duration is lowered.
inline constexpr Seconds maxDuration{43200};
/// The maximum durations that a user may choose from: 1, 2, 4, 8 and 12 hours, in the order in which they are shown.
inline constexpr std::array<Seconds, 5> durationChoices{Seconds{3600}, Seconds{7200}, Seconds{14400}, Seconds{28800},
                                                        Seconds{43200}};
/// How often a client is to send heartbeats while sleep is disabled.
inline constexpr Seconds heartbeatInterval{30};
/// Silence of more than this ends a disable.
inline constexpr Seconds heartbeatTimeout{90};
/// The period of the daemon's timer.
inline constexpr Seconds tickInterval{5};

/// The same value as maxDuration.
[[nodiscard]] Seconds maxDurationValue();

/// The same value as heartbeatTimeout.
[[nodiscard]] Seconds heartbeatTimeoutValue();

/// `duration` raised to minDuration and lowered to maxDuration, both inclusive. A duration that is not a number
/// becomes minDuration: whoever asks for nonsense holds sleep off for the shortest time.
[[nodiscard]] Seconds clamp(Seconds duration);

}  // namespace brindle::LidSleepLimits
