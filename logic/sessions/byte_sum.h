// Sums of memory footprints that cannot wrap around unseen.
//
// Used wherever the footprints of several processes become one number.
#pragma once

#include <cstdint>

namespace brindle {

/// `total` + `bytes`. Ends the program when the sum does not fit: no machine has that much memory, and a wrapped sum
/// would show a huge session as a small one. Snapshots from outside are refused before they can do it.
[[nodiscard]] std::uint64_t addedBytes(std::uint64_t total, std::uint64_t bytes);

/// Whether addedBytes would end the program.
[[nodiscard]] bool byteSumOverflows(std::uint64_t total, std::uint64_t bytes);

}  // namespace brindle
