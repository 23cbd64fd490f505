#include "system/boot_clock.h"

#include <ctime>

namespace brindle {

Seconds bootClockNow() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);  // cannot fail: the clock is part of every supported kernel
  return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

}  // namespace brindle
