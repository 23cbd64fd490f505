#include "platform/clock.h"

namespace brindle {

Date wallClockNow() { return std::chrono::time_point_cast<Seconds>(std::chrono::system_clock::now()); }

}  // namespace brindle
