#include "base/locale/named_time_zone.h"

#include <date/tz.h>

#include <exception>

#include "base/locale/plain_time.h"

namespace brindle {
namespace {

std::chrono::seconds offsetIn(const date::time_zone& zone, Date when) {
  // Within these years no conversion of the library can overflow.
  const double seconds = secondsSince1970(boundedToFourDigitYears(when));
  const date::sys_seconds instant{std::chrono::seconds{static_cast<std::int64_t>(seconds)}};
  try {
    return zone.get_info(instant).offset;
  } catch (const std::exception&) {
    return std::chrono::seconds{0};
  }
}

}  // namespace

std::optional<TimeZone> namedTimeZone(std::string_view name) {
  try {
    const date::time_zone* zone = date::locate_zone(std::string(name));
    // A zone's own file is read at its first use: one that cannot be read must fail here, not later.
    (void)zone->get_info(date::sys_seconds{});
    return TimeZone::fromLookup([zone](Date when) { return offsetIn(*zone, when); });
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace brindle
