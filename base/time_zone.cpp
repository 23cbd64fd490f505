#include "base/time_zone.h"

#include <algorithm>
#include <cmath>

namespace brindle {
namespace {

constexpr std::chrono::seconds kLargestOffset = std::chrono::hours{18};
constexpr double kSecondsADay = 86400;
constexpr double kFarthestSecond = 9e15;

}  // namespace

TimeZone TimeZone::fixed(std::chrono::seconds eastOfUtc) {
  TimeZone zone;
  zone.fixed_ = std::clamp(eastOfUtc, -kLargestOffset, kLargestOffset);
  return zone;
}

TimeZone TimeZone::fromLookup(Lookup lookup) {
  TimeZone zone;
  zone.lookup_ = std::move(lookup);
  return zone;
}

std::chrono::seconds TimeZone::offsetAt(Date date) const {
  if (std::isnan(secondsSince1970(date))) return std::chrono::seconds{0};
  return lookup_ ? lookup_(date) : fixed_;
}

std::int64_t TimeZone::localDay(Date date) const {
  const double seconds = secondsSince1970(date);
  if (std::isnan(seconds)) return 0;
  const double bounded = std::clamp(seconds, -kFarthestSecond, kFarthestSecond);
  const auto offset = static_cast<double>(offsetAt(dateFromSeconds(bounded)).count());
  return static_cast<std::int64_t>(std::floor((bounded + offset) / kSecondsADay));
}

}  // namespace brindle
