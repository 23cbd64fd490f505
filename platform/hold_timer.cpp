#include "platform/hold_timer.h"

#include <algorithm>

#include "system/boot_clock.h"

namespace brindle {

Seconds LoopHoldTimer::now() const { return bootClockNow(); }

void LoopHoldTimer::setAlarm(std::optional<Seconds> moment, std::function<void()> alarm) {
  source_.cancel();
  if (!moment) return;
  auto source = loop_.after(std::max(*moment - now(), Seconds{0}), alarm);
  if (source) {
    source_ = *std::move(source);
  } else {
    // Without a timer the hold would go silent; a turn of the loop at once at least keeps it going.
    loop_.post(std::move(alarm));
  }
}

}  // namespace brindle
