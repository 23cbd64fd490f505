// Inhibitor locks over the system bus, and the moments at which a lock may have been lost.
//
// Used by main; one thread, the loop's. The connection, the loop and the switch outlive both objects.
#pragma once

#include "helper/inhibitor.h"
#include "helper/logind_switch.h"
#include "system/bus_connection_linux.h"
#include "system/event_loop.h"

namespace brindle {

class LogindInhibitor final : public Inhibitor {
 public:
  explicit LogindInhibitor(const BusConnection& bus) : bus_(bus) {}

  /// The descriptor is close-on-exec, or a child would keep the lock.
  [[nodiscard]] Result<Descriptor> inhibit(const InhibitorRequest& request) override;
  [[nodiscard]] Result<bool> isListed(const InhibitorRequest& request) override;

 private:
  const BusConnection& bus_;
};

/// Lets the switch look after its lock whenever the login manager comes up and whenever the machine has woken (no lock
/// is given while it falls asleep), and every few seconds as long as that does not succeed.
class LogindWatch {
 public:
  LogindWatch(const BusConnection& bus, EventLoop& loop, LogindSwitch& sleepSwitch);
  /// Fails when the bus refuses the subscriptions.
  Outcome start();

 private:
  void recheckSoon();
  void recheckAfter(Seconds delay);
  void recheck();

  const BusConnection& bus_;
  EventLoop& loop_;
  LogindSwitch& switch_;
  BusWatch ownerChanges_;
  BusWatch wakeUps_;
  EventSource again_;
};

}  // namespace brindle
