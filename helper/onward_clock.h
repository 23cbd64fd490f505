// The wall clock as the daemon's limits go by it: it never goes back.
//
// Made by main, asked by Helper on its queue. Whoever sets the clock back, a person or the network's time after a start
// with a wrong one, must not lengthen a hold by as much, nor hide the silence of its holder.
#pragma once

#include <optional>

#include "base/date.h"

namespace brindle {

class OnwardClock {
 public:
  /// The instant of two readings of one moment: the wall clock's, unless that has been set back; then as much later
  /// than the last one before as the boot clock says. A wall clock that is set forward is followed at once.
  [[nodiscard]] Date at(Date wall, Seconds boot);

 private:
  /// When the boot clock began, by the farthest that the wall clock has ever been ahead of it.
  std::optional<Date> origin_;
};

}  // namespace brindle
