#include "base/locale/plain_time.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace brindle {
namespace {

constexpr double kFirstSecond = -62135596800.0;
constexpr double kLastSecond = 253402300799.0;
constexpr double kSecondsADay = 86400;

}  // namespace

Date boundedToFourDigitYears(Date date) {
  const double seconds = secondsSince1970(date);
  if (std::isnan(seconds)) return Date{};
  return dateFromSeconds(std::clamp(std::floor(seconds), kFirstSecond, kLastSecond));
}

std::string plainTime(Date date, const TimeZone& zone) {
  const double local = secondsSince1970(date) + static_cast<double>(zone.offsetAt(date).count());
  const auto minutes = static_cast<int>((local - kSecondsADay * std::floor(local / kSecondsADay)) / 60);
  return fmt::format("{:02}:{:02}", minutes / 60, minutes % 60);
}

}  // namespace brindle
