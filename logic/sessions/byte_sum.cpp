#include "logic/sessions/byte_sum.h"

#include <cstdlib>
#include <limits>

namespace brindle {

bool byteSumOverflows(std::uint64_t total, std::uint64_t bytes) {
  return bytes > std::numeric_limits<std::uint64_t>::max() - total;
}

std::uint64_t addedBytes(std::uint64_t total, std::uint64_t bytes) {
  if (byteSumOverflows(total, bytes)) std::abort();
  return total + bytes;
}

}  // namespace brindle
