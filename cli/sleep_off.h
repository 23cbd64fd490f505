// `brindle sleep off`: holds sleep off until it is interrupted or the time is over.
//
// Called by the sleep command with everything it needs, so that tests can stand in for helper, clock and battery.
#pragma once

#include "cli/command_context.h"
#include "platform/helper_client.h"
#include "platform/hold_timer.h"
#include "platform/power_gate.h"
#include "platform/sleep_holder.h"
#include "system/event_loop.h"

namespace brindle {

/// Runs `loop` until the hold has ended, and answers the exit code: 0 when the time is over, 128 plus the signal's
/// number after an interruption, 1 when the helper refuses because an earlier hold ran into its limit, 2 otherwise.
/// A second signal does not wait for the helper's answer.
[[nodiscard]] int sleepOff(EventLoop& loop, SleepHolder::Parts parts, Seconds duration, CommandContext& context);

}  // namespace brindle
