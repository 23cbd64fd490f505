// Time zones by their names in the system's zone files.
//
// Used by the shell, which passes the zone on as a value. The files are read at the first question and kept for the
// life of the process. Safe on any thread.
#pragma once

#include <optional>
#include <string_view>

#include "base/time_zone.h"

namespace brindle {

/// The zone called `name` ("Europe/Berlin", "UTC"), with its changes of offset; none when the system has no such zone
/// or no zone files. Names compare exactly. Offsets between changes hold from the instant of a change on, inclusive.
[[nodiscard]] std::optional<TimeZone> namedTimeZone(std::string_view name);

}  // namespace brindle
