#include <ctime>

#include "system/boot_clock.h"

namespace brindle {

// The continuous Mach clock: unlike CLOCK_UPTIME_RAW it goes on during sleep, unlike CLOCK_MONOTONIC nobody sets it.
Seconds bootClockNow() { return std::chrono::nanoseconds(clock_gettime_nsec_np(CLOCK_MONOTONIC_RAW)); }

}  // namespace brindle
