#import <CoreFoundation/CoreFoundation.h>

#include <array>
#include <string>

#include "base/locale/localized_time.h"
#include "base/locale/plain_time.h"

namespace brindle {
namespace {

/// Owns one reference to a CoreFoundation object; null is none.
template <typename Ref>
class Owned {
 public:
  explicit Owned(Ref object) : object_(object) {}
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  ~Owned() {
    if (object_ != nullptr) CFRelease(object_);
  }

  [[nodiscard]] Ref get() const { return object_; }
  [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }

 private:
  Ref object_;
};

CFStringRef templateOf(TimeTemplate shows) {
  switch (shows) {
    case TimeTemplate::time:
      return CFSTR("jmm");
    case TimeTemplate::weekdayAndTime:
      return CFSTR("EEE jmm");
  }
  return CFSTR("jmm");
}

std::string utf8(CFStringRef text) {
  std::array<char, 768> bytes{};
  if (!CFStringGetCString(text, bytes.data(), static_cast<CFIndex>(bytes.size()), kCFStringEncodingUTF8)) return {};
  return bytes.data();
}

/// A new reference, or null for a name that is not UTF-8.
CFLocaleRef localeNamed(const std::string& name) {
  const Owned<CFStringRef> text(CFStringCreateWithCString(nullptr, name.c_str(), kCFStringEncodingUTF8));
  return text ? CFLocaleCreate(nullptr, text.get()) : nullptr;
}

/// Empty where the system has no answer.
std::string formatted(Date date, const TimeZone& zone, const TimeStyle& style) {
  const Owned<CFLocaleRef> ownLocale(localeNamed(style.locale));
  const Owned<CFLocaleRef> locale(localeNamed(style.locale + "@calendar=gregorian"));
  if (!ownLocale || !locale) return {};
  const Owned<CFDateFormatterRef> formatter(
      CFDateFormatterCreate(nullptr, locale.get(), kCFDateFormatterNoStyle, kCFDateFormatterNoStyle));
  // The pattern is that of the locale's own calendar: with another, some languages add words.
  const Owned<CFStringRef> pattern(
      CFDateFormatterCreateDateFormatFromTemplate(nullptr, templateOf(style.shows), 0, ownLocale.get()));
  const Owned<CFTimeZoneRef> offset(
      CFTimeZoneCreateWithTimeIntervalFromGMT(nullptr, static_cast<double>(zone.offsetAt(date).count())));
  if (!formatter || !pattern || !offset) return {};
  CFDateFormatterSetFormat(formatter.get(), pattern.get());
  CFDateFormatterSetProperty(formatter.get(), kCFDateFormatterTimeZone, offset.get());
  const CFAbsoluteTime instant = secondsSince1970(date) - kCFAbsoluteTimeIntervalSince1970;
  const Owned<CFStringRef> text(CFDateFormatterCreateStringWithAbsoluteTime(nullptr, formatter.get(), instant));
  return text ? utf8(text.get()) : std::string();
}

}  // namespace

std::string localizedTime(Date date, const TimeZone& zone, const TimeStyle& style) {
  const Date bounded = boundedToFourDigitYears(date);
  const std::string text = formatted(bounded, zone, style);
  return text.empty() ? plainTime(bounded, zone) : text;
}

}  // namespace brindle
