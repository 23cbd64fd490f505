#include <fmt/format.h>
#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/ustring.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "base/locale/localized_time.h"
#include "base/locale/plain_time.h"

namespace brindle {
namespace {

// Far above the longest weekday and time of any language.
constexpr std::size_t kTextCapacity = 256;

using Utf16Buffer = std::array<UChar, kTextCapacity>;

using Generator = std::unique_ptr<UDateTimePatternGenerator, void (*)(UDateTimePatternGenerator*)>;
using Format = std::unique_ptr<UDateFormat, void (*)(UDateFormat*)>;

std::u16string_view skeletonOf(TimeTemplate shows) {
  switch (shows) {
    case TimeTemplate::time:
      return u"jmm";
    case TimeTemplate::weekdayAndTime:
      return u"EEEjmm";
  }
  return {};
}

/// The zone as an offset: the library's own zone data can be older than the system's, and it takes GMT for a name
/// that it does not know.
std::u16string zoneText(std::chrono::seconds offset) {
  const auto magnitude = std::abs(offset.count());
  std::string text =
      fmt::format("GMT{}{:02}:{:02}", offset.count() < 0 ? '-' : '+', magnitude / 3600, magnitude / 60 % 60);
  if (magnitude % 60 != 0) text += fmt::format(":{:02}", magnitude % 60);
  return {text.begin(), text.end()};
}

int32_t lengthOf(std::u16string_view text) { return static_cast<int32_t>(text.size()); }

/// Empty where the library has no answer.
std::u16string bestPattern(const std::string& locale, TimeTemplate shows) {
  UErrorCode status = U_ZERO_ERROR;
  const Generator generator(udatpg_open(locale.c_str(), &status), udatpg_close);
  if (U_FAILURE(status)) return {};
  const std::u16string_view skeleton = skeletonOf(shows);
  Utf16Buffer pattern;
  const int32_t length = udatpg_getBestPattern(generator.get(), skeleton.data(), lengthOf(skeleton), pattern.data(),
                                               static_cast<int32_t>(pattern.size()), &status);
  if (U_FAILURE(status)) return {};
  return {pattern.data(), static_cast<std::size_t>(length)};
}

/// Empty where the library has no answer.
std::string formatted(double seconds, std::u16string_view zone, std::u16string_view pattern,
                      const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const Format format(udat_open(UDAT_PATTERN, UDAT_PATTERN, locale.c_str(), zone.data(), lengthOf(zone), pattern.data(),
                                lengthOf(pattern), &status),
                      udat_close);
  if (U_FAILURE(status)) return {};
  Utf16Buffer text;
  const int32_t length =
      udat_format(format.get(), seconds * 1000, text.data(), static_cast<int32_t>(text.size()), nullptr, &status);
  std::array<char, kTextCapacity * 3> bytes;
  int32_t size = 0;
  u_strToUTF8(bytes.data(), static_cast<int32_t>(bytes.size()), &size, text.data(), length, &status);
  if (U_FAILURE(status)) return {};
  return {bytes.data(), static_cast<std::size_t>(size)};
}

}  // namespace

std::string localizedTime(Date date, const TimeZone& zone, const TimeStyle& style) {
  const Date bounded = boundedToFourDigitYears(date);
  const std::string locale = style.locale + "@calendar=gregorian";
  // The pattern is that of the locale's own calendar: with another, some languages add words.
  const std::u16string pattern = bestPattern(style.locale, style.shows);
  const std::string text =
      pattern.empty() ? std::string()
                      : formatted(secondsSince1970(bounded), zoneText(zone.offsetAt(bounded)), pattern, locale);
  return text.empty() ? plainTime(bounded, zone) : text;
}

}  // namespace brindle
