// What a client asks of the daemon: sleep off for a while, or on.
//
// Made by clients, carried by the service, answered by the daemon with a SleepReply. A plain value.
#pragma once

#include "base/date.h"

namespace brindle {

struct SleepRequest {
  bool disabled = false;
  /// How long sleep stays off at the longest. Any value will do, the daemon clamps it; no meaning when sleep is to come
  /// back on.
  Seconds maxDuration{0};

  bool operator==(const SleepRequest&) const = default;
};

}  // namespace brindle
