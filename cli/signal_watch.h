// The signals that a holding command takes over instead of dying of them.
//
// Used by `brindle sleep off` and `brindle run`. One thread, the loop's.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "base/result.h"
#include "system/event_loop.h"

namespace brindle {

/// Calls `came` for each of `signals` from now on. Signals that the process was started with ignored stay so: a
/// command under nohup survives its terminal.
[[nodiscard]] Result<std::vector<EventSource>> watchSignals(EventLoop& loop, std::span<const int> signals,
                                                            const std::function<void(SignalNote)>& came);

}  // namespace brindle
