// Byte counts as the platform's formatter writes them in memory style.
#pragma once

#include <cstdint>
#include <string>

namespace brindle {

/// Units of 1024, decimals by unit ("512 KB", "1.5 MB", "1.25 GB"), "Zero KB" for 0, "1 byte" for 1. Negative
/// counts carry "-". Always with a decimal point, whatever the locale.
[[nodiscard]] std::string memoryByteCount(std::int64_t bytes);

}  // namespace brindle
