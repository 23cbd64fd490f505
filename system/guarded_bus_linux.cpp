// What a service on the bus needs against strangers, apart from what every user of a bus repeats: the command has no
// use for it and does not link it.
#include <string_view>

#include "system/bus_connection_linux.h"

namespace brindle {
namespace {

int dropForgedSignal(sd_bus_message* message, void*, sd_bus_error*) {
  if (sd_bus_message_is_signal(message, nullptr, nullptr) <= 0) return 0;
  if (sd_bus_message_get_destination(message) == nullptr) return 0;
  const char* sender = sd_bus_message_get_sender(message);
  return sender != nullptr && std::string_view(sender) == "org.freedesktop.DBus" ? 0 : 1;
}

}  // namespace

Result<BusConnection> BusConnection::openWithoutDescriptors(const BusConnection& other) {
  constexpr const char* kDoing = "connect to the bus a second time";
  const char* address = nullptr;
  if (const int code = sd_bus_get_address(other.get(), &address); code < 0) return fail(-code, kDoing);
  sd_bus* bus = nullptr;
  if (const int code = sd_bus_new(&bus); code < 0) return fail(-code, kDoing);
  BusConnection connection(bus);
  for (const int code : {sd_bus_set_address(bus, address), sd_bus_set_bus_client(bus, 1), sd_bus_negotiate_fds(bus, 0),
                         sd_bus_start(bus)}) {
    if (code < 0) return fail(-code, kDoing);
  }
  return connection;
}

Outcome BusConnection::dropForgedSignals() const {
  // Without a slot of its own the filter lives as long as the connection.
  const int code = sd_bus_add_filter(bus_.get(), nullptr, dropForgedSignal, nullptr);
  if (code < 0) return fail(-code, "filter the bus's signals");
  return {};
}

}  // namespace brindle
