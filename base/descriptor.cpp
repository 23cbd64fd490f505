#include "base/descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace brindle {

void Descriptor::reset() {
  if (number_ < 0) return;
  // A failure is often reported after a descriptor went out of scope: closing must not change its code.
  const int saved = errno;
  ::close(number_);
  errno = saved;
  number_ = -1;
}

}  // namespace brindle
