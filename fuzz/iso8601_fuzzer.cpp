// Any bytes give a date or none; one within the years of four digits is written and read back to the same second.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/iso8601.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brindle;
  constexpr double kFirstSecond = -62135769600.0;
  constexpr double kLastSecond = 253402300799.0;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto plain = readIso8601(text);
  const auto fractional = readIso8601WithFraction(text);
  if (plain && fractional) std::abort();
  if (plain && *plain >= dateFromSeconds(kFirstSecond) && *plain <= dateFromSeconds(kLastSecond) &&
      readIso8601(writeIso8601(*plain)) != plain) {
    std::abort();
  }
  if (fractional) {
    // An offset can carry a date a day beyond the years of four digits.
    const double seconds = secondsSince1970(*fractional);
    if (seconds < kFirstSecond - 86400 || seconds > kLastSecond + 86400) std::abort();
  }
  return 0;
}
