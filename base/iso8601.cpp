#include "base/iso8601.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>

namespace brindle {
namespace {

constexpr std::int64_t kSecondsADay = 86400;
// The years that four digits can name, in the calendar below.
constexpr double kFirstSecond = -62135769600.0;       // 0001-01-01T00:00:00Z
constexpr double kLastSecond = 253402300799.0;        // 9999-12-31T23:59:59Z
constexpr std::int64_t kFirstGregorianDay = -141427;  // 1582-10-15, the day after 1582-10-04

struct CalendarDay {
  std::int64_t year = 0;
  unsigned month = 0;
  unsigned day = 0;

  bool operator==(const CalendarDay&) const = default;
};

// The platform counts by the Gregorian calendar since its adoption and by the Julian one before, as its date types
// have always done. Both conversions use years that begin in March, so that the leap day comes last.
struct MarchDate {
  std::int64_t year = 0;
  std::int64_t dayOfYear = 0;
};

CalendarDay calendarDay(MarchDate date) {
  const std::int64_t march = (5 * date.dayOfYear + 2) / 153;
  const auto day = static_cast<unsigned>(date.dayOfYear - (153 * march + 2) / 5 + 1);
  const auto month = static_cast<unsigned>(march < 10 ? march + 3 : march - 9);
  return {date.year + (month <= 2 ? 1 : 0), month, day};
}

MarchDate marchDate(CalendarDay date) {
  const std::int64_t march = date.month > 2 ? date.month - 3 : date.month + 9;
  return {date.year - (date.month <= 2 ? 1 : 0), (153 * march + 2) / 5 + date.day - 1};
}

std::int64_t floorDivide(std::int64_t value, std::int64_t by) { return (value >= 0 ? value : value - by + 1) / by; }

CalendarDay dayFromNumber(std::int64_t number) {
  if (number < kFirstGregorianDay) {
    const std::int64_t shifted = number + 719470;  // days since 0000-03-01, Julian
    const std::int64_t cycle = floorDivide(shifted, 1461);
    const std::int64_t inCycle = shifted - cycle * 1461;
    const std::int64_t year = (inCycle - inCycle / 1460) / 365;
    return calendarDay({cycle * 4 + year, inCycle - 365 * year});
  }
  const std::int64_t shifted = number + 719468;  // days since 0000-03-01, Gregorian
  const std::int64_t era = floorDivide(shifted, 146097);
  const std::int64_t inEra = shifted - era * 146097;
  const std::int64_t year = (inEra - inEra / 1460 + inEra / 36524 - inEra / 146096) / 365;
  return calendarDay({era * 400 + year, inEra - (365 * year + year / 4 - year / 100)});
}

/// None for a day that the calendar does not have.
std::optional<std::int64_t> numberFromDay(CalendarDay date) {
  if (date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31) return std::nullopt;
  const MarchDate march = marchDate(date);
  const std::int64_t years = march.year * 365 + floorDivide(march.year, 4) + march.dayOfYear;
  const std::int64_t gregorian = years - floorDivide(march.year, 100) + floorDivide(march.year, 400) - 719468;
  const std::int64_t number = gregorian >= kFirstGregorianDay ? gregorian : years - 719470;
  if (dayFromNumber(number) != date) return std::nullopt;
  return number;
}

/// Takes a text apart from its front; once a step has failed, all further ones fail.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  unsigned digits(std::size_t count) {
    unsigned value = 0;
    for (std::size_t index = 0; index < count; ++index) value = value * 10 + digit();
    return value;
  }
  void expect(char c) {
    if (!accept(c)) good_ = false;
  }
  bool accept(char c) {
    if (!good_ || !rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  [[nodiscard]] bool atDigit() const { return good_ && !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; }
  [[nodiscard]] bool finished() const { return good_ && rest_.empty(); }
  void refuse() { good_ = false; }

 private:
  unsigned digit() {
    if (!atDigit()) {
      good_ = false;
      return 0;
    }
    const auto value = static_cast<unsigned>(rest_.front() - '0');
    rest_.remove_prefix(1);
    return value;
  }

  std::string_view rest_;
  bool good_ = true;
};

/// Milliseconds: the platform drops what is finer.
unsigned scanFraction(Scanner& scanner) {
  scanner.expect('.');
  if (!scanner.atDigit()) scanner.refuse();
  unsigned milliseconds = 0;
  for (unsigned weight = 100; scanner.atDigit(); weight /= 10) milliseconds += weight * scanner.digits(1);
  return milliseconds;
}

std::int64_t scanZone(Scanner& scanner) {
  if (scanner.accept('Z')) return 0;
  const bool west = scanner.accept('-');
  if (!west) scanner.expect('+');
  const unsigned hours = scanner.digits(2);
  (void)scanner.accept(':');
  const unsigned minutes = scanner.digits(2);
  if (hours > 23 || minutes > 59) scanner.refuse();
  const auto seconds = std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60;
  return west ? -seconds : seconds;
}

enum class Fraction { none, needed };

std::optional<Date> read(std::string_view text, Fraction fraction) {
  Scanner scanner(text);
  CalendarDay day;
  day.year = scanner.digits(4);
  scanner.expect('-');
  day.month = scanner.digits(2);
  scanner.expect('-');
  day.day = scanner.digits(2);
  scanner.expect('T');
  const unsigned hours = scanner.digits(2);
  scanner.expect(':');
  const unsigned minutes = scanner.digits(2);
  scanner.expect(':');
  const unsigned seconds = scanner.digits(2);
  const unsigned milliseconds = fraction == Fraction::needed ? scanFraction(scanner) : 0;
  const std::int64_t zone = scanZone(scanner);
  const auto number = numberFromDay(day);
  if (!scanner.finished() || !number || day.year < 1) return std::nullopt;
  if (hours > 23 || minutes > 59 || seconds > 59) return std::nullopt;
  const std::int64_t inDay = std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60 + seconds;
  const std::int64_t whole = *number * kSecondsADay + inDay - zone;
  return dateFromSeconds(static_cast<double>(whole) + milliseconds / 1000.0);
}

}  // namespace

std::string writeIso8601(Date date) {
  double seconds = std::floor(secondsSince1970(date));
  if (std::isnan(seconds)) seconds = 0;
  seconds = std::fmin(std::fmax(seconds, kFirstSecond), kLastSecond);
  const auto whole = static_cast<std::int64_t>(seconds);
  const std::int64_t number = floorDivide(whole, kSecondsADay);
  const std::int64_t inDay = whole - number * kSecondsADay;
  const CalendarDay day = dayFromNumber(number);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", day.year, day.month, day.day, inDay / 3600,
                     inDay / 60 % 60, inDay % 60);
}

std::optional<Date> readIso8601(std::string_view text) { return read(text, Fraction::none); }

std::optional<Date> readIso8601WithFraction(std::string_view text) { return read(text, Fraction::needed); }

}  // namespace brindle
