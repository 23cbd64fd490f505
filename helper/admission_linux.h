// Who may use the helper: root, the daemon's own user, and whoever polkit authorises for the helper's action.
//
// Used by the bus service, once for each client; a unique bus name belongs to one connection of one user for as long
// as the bus runs, so the answer holds until the name is gone. Only what the bus itself vouches for is looked at,
// never a process id or a program's path, which can be someone else's by the time they are read. One thread, the
// loop's. The connection outlives the object.
#pragma once

#include <functional>

#include "system/bus_connection_linux.h"

namespace brindle {

class Admission {
 public:
  explicit Admission(const BusConnection& bus) : bus_(bus) {}

  /// Whether the sender's user decides alone, so that ask() would say yes at once.
  [[nodiscard]] static bool trusts(sd_bus_message* call);

  using Answer = std::function<void(bool admitted)>;
  /// Calls `answer` once: before returning where the sender's user decides, later where polkit does, never when the
  /// returned watch goes first. Without polkit, or when it fails or stays silent, the answer is no. polkit may ask
  /// the user when the call says that it may.
  [[nodiscard]] BusWatch ask(sd_bus_message* call, Answer answer) const;

 private:
  const BusConnection& bus_;
};

}  // namespace brindle
