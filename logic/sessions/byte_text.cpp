#include "logic/sessions/byte_text.h"

#include "base/number_text.h"

namespace brindle::ByteText {
namespace {

constexpr double kGigabyte = 1e9;
constexpr double kMegabyte = 1e6;
constexpr double kKilobyte = 1e3;
constexpr double kFewerDecimalsFrom = 10.0;

}  // namespace

std::string text(std::uint64_t bytes) {
  const double count = static_cast<double>(bytes);
  if (const double gigabytes = count / kGigabyte; gigabytes >= 1) {
    return fixedText(gigabytes, gigabytes < kFewerDecimalsFrom ? 2 : 1) + " GB";
  }
  if (const double megabytes = count / kMegabyte; megabytes >= 1) {
    return fixedText(megabytes, megabytes < kFewerDecimalsFrom ? 1 : 0) + " MB";
  }
  if (const double kilobytes = count / kKilobyte; kilobytes >= 1) return fixedText(kilobytes, 0) + " KB";
  return std::to_string(bytes) + " B";
}

}  // namespace brindle::ByteText
