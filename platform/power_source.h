// Reads the machine's power and heat.
//
// Used by the power gate. Blocks for milliseconds at most; any thread.
#pragma once

#include "platform/power_reading.h"

namespace brindle {

/// What the machine tells now; what it does not tell is as on a machine without battery and sensors.
[[nodiscard]] PowerReading readPowerAndHeat();

}  // namespace brindle
