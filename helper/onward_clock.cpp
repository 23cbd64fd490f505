#include "helper/onward_clock.h"

#include <algorithm>

namespace brindle {

Date OnwardClock::at(Date wall, Seconds boot) {
  const Date origin = wall - boot;
  origin_ = origin_ ? std::max(*origin_, origin) : origin;
  return *origin_ + boot;
}

}  // namespace brindle
