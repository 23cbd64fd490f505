// The helper as an object on the system bus, and its clients as the bus knows them.
//
// Made by main after Helper has started; it forwards calls and decides nothing but who may call. A client is a unique
// bus name. It becomes one of Helper's connections with its first SetSleepDisabled or Heartbeat, never by Status
// alone, because a question asked once must not end somebody's hold when the asker goes; and it ends when the name
// vanishes from the bus. Calls of one client are answered in their order, also while its admission is pending.
//
// One thread, the loop's. The connection and the loop outlive the service. The connection takes no descriptors and
// drops forged signals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "helper/admission_linux.h"
#include "helper/helper.h"
#include "helper/process_exit.h"
#include "system/bus_connection_linux.h"
#include "system/event_loop.h"

namespace brindle {

/// Clients that are known at once. Watching one takes a match rule, of which a system bus gives each connection 512 by
/// default; one too many would cost the helper its own connection, and every client the hold.
inline constexpr std::size_t kMaxBusClients = 384;
/// Clients that are not admitted yet, so that strangers whom polkit has still to judge leave room for others: of all
/// users, and of one user, who may let polkit's question lie. Root and the helper's own user, who are admitted at
/// once, are not held up by it.
inline constexpr std::size_t kMaxUnadmittedClients = 64;
inline constexpr std::size_t kMaxUnadmittedOfUser = 16;
/// Calls of one client that wait for its admission.
inline constexpr std::size_t kMaxWaitingCalls = 16;

class BusService final : public ProcessExit {
 public:
  BusService(BusConnection& bus, EventLoop& loop);
  ~BusService() override;

  /// Puts the object on the bus and takes the name, from which moment clients may call. EEXIST when another instance
  /// has the name, EACCES when the bus's policy refuses it.
  Outcome publish(std::shared_ptr<Helper> helper);

  [[nodiscard]] bool callsPending() const override;
  /// Takes no more calls, gives the name back, and ends the loop when the bus has confirmed it: a call that comes
  /// later starts the next instance, and one that was under way gets an error that says to ask again.
  void exitWhenIdle() override;
  void exitAfterTermination() override { loop_.exit(0); }

  /// A call has arrived; for the method table. Answers a negative errno, or 1 when the reply comes later.
  int receive(sd_bus_message* call, sd_bus_error* error);

 private:
  struct Client;
  [[nodiscard]] bool hasRoomFor(std::optional<uid_t> user) const;
  int receiveFirst(const std::string& name, sd_bus_message* call, sd_bus_error* error);
  [[nodiscard]] Client* addClient(const std::string& name);
  void clientVanished(const std::string& name);
  void admissionAnswered(const std::string& name, bool admitted);
  void serve(Client& client, BusMessage call);
  void setSleepDisabled(BusMessage call);
  void heartbeat(BusMessage call);
  void status(BusMessage call);
  void forgetUnlessConnected(const std::string& name);

  BusConnection& bus_;
  EventLoop& loop_;
  Admission admission_;
  std::shared_ptr<Helper> helper_;
  std::map<std::string, std::unique_ptr<Client>> clients_;
  std::uint64_t lastConnection_ = 0;
  std::size_t unanswered_ = 0;
  bool leaving_ = false;
  BusSlot object_;
  BusSlot release_;
};

}  // namespace brindle
