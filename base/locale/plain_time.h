// What both editions of localizedTime share: the range of dates, and the text where there are no language data.
// Used by them alone. Pure.
#pragma once

#include <string>

#include "base/time_zone.h"

namespace brindle {

/// The whole second at or before `date`, within years 1 to 9999; 1970-01-01 for what is not a number.
[[nodiscard]] Date boundedToFourDigitYears(Date date);

/// "15:05", the local hour and minute. Precondition: within years 1 to 9999.
[[nodiscard]] std::string plainTime(Date date, const TimeZone& zone);

}  // namespace brindle
