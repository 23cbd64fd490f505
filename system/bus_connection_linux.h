// Ownership of D-Bus handles, and the few steps every user of a bus repeats.
//
// Used by the helper's service and its switch, and by everything in platform/ that talks to a bus. The handles are
// libsystemd's own; messages are read and filled with its functions through get(). One thread a connection, the one
// that runs the loop it is attached to. Calls and subscriptions end when their object is destroyed, also from inside
// their own handler; the connection outlives them.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <string>

#include "base/date.h"
#include "base/result.h"
#include "system/event_loop.h"

namespace brindle {

struct BusHandleDeleter {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
  void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
  void operator()(sd_bus_track* track) const { sd_bus_track_unref(track); }
  void operator()(sd_bus_creds* credentials) const { sd_bus_creds_unref(credentials); }
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};
using BusMessage = std::unique_ptr<sd_bus_message, BusHandleDeleter>;
using BusSlot = std::unique_ptr<sd_bus_slot, BusHandleDeleter>;
using BusTrack = std::unique_ptr<sd_bus_track, BusHandleDeleter>;
using BusCredentials = std::unique_ptr<sd_bus_creds, BusHandleDeleter>;

/// Where a call goes, or which signal is meant.
struct BusMember {
  std::string service;
  std::string path;
  std::string interface;
  std::string member;
};

/// The signals that somebody wants to hear. Empty texts match anything; none may hold an apostrophe.
struct BusSignalMatch {
  BusMember signal;
  /// The first argument, a string: it spares a subscriber of NameOwnerChanged every other name's wake-ups.
  std::string firstArgument;
};

/// An error reply: the D-Bus error's name ("org.freedesktop.DBus.Error.AccessDenied") and its text.
struct BusError {
  std::string name;
  std::string text;
  /// The errno value that stands for the name.
  int code = 0;
};
template <typename T>
using BusResult = tl::expected<T, BusError>;

/// The handler of a call or a subscription. An error reply is a message too: sd_bus_message_get_error() tells. The
/// message is borrowed for the length of the call.
using BusHandler = std::function<void(sd_bus_message*)>;

/// A pending call or a subscription.
class BusWatch {
 public:
  struct Body;
  BusWatch();
  explicit BusWatch(std::unique_ptr<Body> body);
  BusWatch(BusWatch&&) noexcept;
  BusWatch& operator=(BusWatch&&) noexcept;
  ~BusWatch();
  [[nodiscard]] explicit operator bool() const { return body_ != nullptr; }

 private:
  std::unique_ptr<Body> body_;
};

class BusConnection {
 public:
  /// The system bus, or the one that DBUS_SYSTEM_BUS_ADDRESS names. Fails when there is none or it refuses us.
  [[nodiscard]] static Result<BusConnection> openSystem();
  /// The bus of the user's session.
  [[nodiscard]] static Result<BusConnection> openUser();
  /// A second connection to the bus of `other` that takes no descriptors, for a service that strangers may call: the
  /// bus refuses them every message that carries some, which would otherwise fill the receiver's table of open files.
  [[nodiscard]] static Result<BusConnection> openWithoutDescriptors(const BusConnection& other);

  [[nodiscard]] sd_bus* get() const { return bus_.get(); }
  /// Lets the loop serve this connection until it is closed.
  Outcome attach(EventLoop& loop);
  /// From now on drops signals that are addressed to this connection alone and do not come from the bus itself. The bus
  /// checks the sender of what it spreads, but carries any user's signal to a single receiver, and libsystemd would
  /// take one that says so for the bus's own.
  Outcome dropForgedSignals() const;
  /// A method call that the caller fills with arguments.
  [[nodiscard]] Result<BusMessage> newCall(const BusMember& member) const;
  /// Sends `message` and waits for its reply, at most `timeout`. Everything else that arrives meanwhile is kept for
  /// the loop. A timeout or a lost bus is an error with a name like any other.
  [[nodiscard]] BusResult<BusMessage> call(sd_bus_message* message, Seconds timeout) const;
  /// Sends `message` and gives its reply, also an error or the timeout, to `handler`, once, unless the watch goes
  /// first. Fails only when sending is impossible.
  [[nodiscard]] Result<BusWatch> callAsync(sd_bus_message* message, Seconds timeout, BusHandler handler) const;
  /// Gives every signal of that kind to `handler`. Returns when the bus has confirmed the subscription.
  [[nodiscard]] Result<BusWatch> subscribe(const BusSignalMatch& match, BusHandler handler) const;
  /// Owns `name` without replacing or queueing. EEXIST when somebody owns it, EACCES when the bus's policy refuses.
  Outcome requestName(const std::string& name) const;

 private:
  explicit BusConnection(sd_bus* bus) : bus_(bus) {}
  std::unique_ptr<sd_bus, BusHandleDeleter> bus_;
};

}  // namespace brindle
