// Who may use the helper: root, the daemon's own user, and whoever polkit authorises for the helper's action.
//
// Used by the bus service, once for each client; a unique bus name belongs to one connection of one user for as long
// as the bus runs, so the answer holds until the name is gone. Only what the bus itself vouches for is looked at,
// never a process id or a program's path, which can be someone else's by the time they are read. One thread, the
// loop's. The connection outlives the object.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>

#include "system/bus_connection_linux.h"

namespace brindle {

class Admission {
 public:
  explicit Admission(const BusConnection& bus) : bus_(bus) {}

  /// The user whose connection sent the call; none when the bus does not vouch for one, as for a sender that has gone.
  [[nodiscard]] static std::optional<uid_t> userOf(sd_bus_message* call);
  /// Whether that user is admitted without a question.
  [[nodiscard]] static bool trusts(std::optional<uid_t> user);

  using Answer = std::function<void(bool admitted)>;
  /// Asks polkit about the sender of the call and calls `answer` once with what it says: later, but before returning
  /// when it cannot be asked, and never when the returned watch goes first. Without polkit, or when it fails or stays
  /// silent, the answer is no. polkit may ask the user when the call says that it may.
  [[nodiscard]] BusWatch ask(sd_bus_message* call, const Answer& answer) const;

 private:
  const BusConnection& bus_;
};

}  // namespace brindle
