#include "system/bus_connection_linux.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "system/event_loop_native_linux.h"

namespace brindle {

struct BusWatch::Body {
  explicit Body(BusHandler function) : handler(std::make_shared<BusHandler>(std::move(function))) {}

  // Shared, so that a handler may destroy its own watch and still run to its end.
  std::shared_ptr<BusHandler> handler;
  BusSlot slot;
};

BusWatch::BusWatch() = default;
BusWatch::BusWatch(std::unique_ptr<Body> body) : body_(std::move(body)) {}
BusWatch::BusWatch(BusWatch&&) noexcept = default;
BusWatch& BusWatch::operator=(BusWatch&&) noexcept = default;
BusWatch::~BusWatch() = default;

namespace {

int messageCame(sd_bus_message* message, void* data, sd_bus_error*) {
  const auto handler = static_cast<BusWatch::Body*>(data)->handler;
  (*handler)(message);
  return 0;
}

std::uint64_t microseconds(Seconds span) {
  // sd-bus takes 0 for its own default, so the shortest wait is one microsecond.
  return static_cast<std::uint64_t>(std::clamp(span.count(), 1e-6, 1e6) * 1e6);
}

}  // namespace

Result<BusConnection> BusConnection::openSystem() {
  sd_bus* bus = nullptr;
  if (const int code = sd_bus_open_system(&bus); code < 0) return fail(-code, "connect to the system bus");
  return BusConnection(bus);
}

Result<BusConnection> BusConnection::openUser() {
  sd_bus* bus = nullptr;
  if (const int code = sd_bus_open_user(&bus); code < 0) return fail(-code, "connect to the session bus");
  return BusConnection(bus);
}

Outcome BusConnection::attach(EventLoop& loop) {
  const int code = sd_bus_attach_event(bus_.get(), loop.native().event, SD_EVENT_PRIORITY_NORMAL);
  if (code < 0) return fail(-code, "attach bus to event loop");
  return {};
}

Result<BusMessage> BusConnection::newCall(const BusMember& member) const {
  sd_bus_message* message = nullptr;
  const int code = sd_bus_message_new_method_call(bus_.get(), &message, member.service.c_str(), member.path.c_str(),
                                                  member.interface.c_str(), member.member.c_str());
  if (code < 0) return fail(-code, "build call of " + member.member);
  return BusMessage(message);
}

Result<BusWatch> BusConnection::callAsync(sd_bus_message* message, Seconds timeout, BusHandler handler) const {
  auto body = std::make_unique<BusWatch::Body>(std::move(handler));
  sd_bus_slot* slot = nullptr;
  const int code = sd_bus_call_async(bus_.get(), &slot, message, messageCame, body.get(), microseconds(timeout));
  if (code < 0) return fail(-code, "send call");
  body->slot.reset(slot);
  return BusWatch(std::move(body));
}

Result<BusWatch> BusConnection::subscribe(const BusSignalMatch& match, BusHandler handler) const {
  std::string rule = "type='signal'";
  const auto add = [&rule](const char* key, const std::string& value) {
    if (!value.empty()) rule += std::string(",") + key + "='" + value + "'";
  };
  add("sender", match.signal.service);
  add("path", match.signal.path);
  add("interface", match.signal.interface);
  add("member", match.signal.member);
  add("arg0", match.firstArgument);

  auto body = std::make_unique<BusWatch::Body>(std::move(handler));
  sd_bus_slot* slot = nullptr;
  const int code = sd_bus_add_match(bus_.get(), &slot, rule.c_str(), messageCame, body.get());
  if (code < 0) return fail(-code, "subscribe to " + match.signal.member);
  body->slot.reset(slot);
  return BusWatch(std::move(body));
}

Outcome BusConnection::requestName(const std::string& name) const {
  const int code = sd_bus_request_name(bus_.get(), name.c_str(), 0);
  if (code < 0) return fail(-code, "own the bus name " + name);
  return {};
}

}  // namespace brindle
