#include "logic/helper/lid_sleep_limits.h"

namespace brindle::LidSleepLimits {

Seconds maxDurationValue() { return maxDuration; }

Seconds heartbeatTimeoutValue() { return heartbeatTimeout; }

Seconds clamp(Seconds duration) {
  // Written so that every comparison with NaN fails into the lower bound.
  if (!(duration > minDuration)) return minDuration;
  return duration < maxDuration ? duration : maxDuration;
}

}  // namespace brindle::LidSleepLimits
