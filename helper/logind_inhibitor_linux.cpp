#include "helper/logind_inhibitor_linux.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace brindle {
namespace {

constexpr const char* kService = "org.freedesktop.login1";
constexpr const char* kPath = "/org/freedesktop/login1";
constexpr const char* kInterface = "org.freedesktop.login1.Manager";
// The daemon's queue waits for the answer, and behind it every other client.
constexpr Seconds kCallTimeout{5};
constexpr Seconds kRecheckDelay{5};
constexpr std::size_t kMaxListedLocks = 4096;

BusMember member(const char* name) {
  return {.service = kService, .path = kPath, .interface = kInterface, .member = name};
}

tl::unexpected<Failure> failed(const BusError& error) { return fail(error.code, error.name + ": " + error.text); }

}  // namespace

Result<Descriptor> LogindInhibitor::inhibit(const InhibitorRequest& request) {
  auto message = bus_.newCall(member("Inhibit"));
  if (!message) return tl::make_unexpected(message.error());
  const int appended = sd_bus_message_append(message->get(), "ssss", request.what.c_str(), request.who.c_str(),
                                             request.why.c_str(), request.mode.c_str());
  if (appended < 0) return fail(-appended, "build Inhibit");
  const auto reply = bus_.call(message->get(), kCallTimeout);
  if (!reply) return failed(reply.error());
  int received = -1;  // belongs to the message
  if (const int code = sd_bus_message_read(reply->get(), "h", &received); code < 0) return fail(-code, "read Inhibit");
  Descriptor lock(fcntl(received, F_DUPFD_CLOEXEC, 3));
  if (!lock) return fail(errno, "keep the lock");
  return lock;
}

Result<bool> LogindInhibitor::isListed(const InhibitorRequest& request) {
  auto message = bus_.newCall(member("ListInhibitors"));
  if (!message) return tl::make_unexpected(message.error());
  const auto reply = bus_.call(message->get(), kCallTimeout);
  if (!reply) return failed(reply.error());
  sd_bus_message* list = reply->get();
  if (const int code = sd_bus_message_enter_container(list, 'a', "(ssssuu)"); code < 0) {
    return fail(-code, "read ListInhibitors");
  }
  for (std::size_t count = 0; count < kMaxListedLocks; ++count) {
    const char *what = nullptr, *who = nullptr, *why = nullptr, *mode = nullptr;
    std::uint32_t user = 0, process = 0;
    const int code = sd_bus_message_read(list, "(ssssuu)", &what, &who, &why, &mode, &user, &process);
    if (code < 0) return fail(-code, "read ListInhibitors");
    if (code == 0) break;
    const InhibitorRequest listed{.what = what, .who = who, .why = why, .mode = mode};
    if (listed == request && process == static_cast<std::uint32_t>(getpid())) return true;
  }
  return false;
}

LogindWatch::LogindWatch(const BusConnection& bus, EventLoop& loop, LogindSwitch& sleepSwitch)
    : bus_(bus), loop_(loop), switch_(sleepSwitch) {}

Outcome LogindWatch::start() {
  const BusMember ownerChanged{.service = "org.freedesktop.DBus",
                               .path = "/org/freedesktop/DBus",
                               .interface = "org.freedesktop.DBus",
                               .member = "NameOwnerChanged"};
  auto owners = bus_.subscribe({.signal = ownerChanged, .firstArgument = kService}, [this](sd_bus_message* signal) {
    const char *name = nullptr, *before = nullptr, *after = nullptr;
    if (sd_bus_message_read(signal, "sss", &name, &before, &after) >= 0 && *after != '\0') recheckSoon();
  });
  if (!owners) return tl::make_unexpected(owners.error());
  auto sleeps = bus_.subscribe({.signal = member("PrepareForSleep")}, [this](sd_bus_message* signal) {
    int falling = 1;
    if (sd_bus_message_read(signal, "b", &falling) >= 0 && falling == 0) recheckSoon();
  });
  if (!sleeps) return tl::make_unexpected(sleeps.error());
  ownerChanges_ = std::move(*owners);
  wakeUps_ = std::move(*sleeps);
  return {};
}

// From the loop, because the signal may arrive while a call to the login manager waits for its reply.
void LogindWatch::recheckSoon() { recheckAfter(Seconds{0}); }

void LogindWatch::recheckAfter(Seconds delay) {
  if (auto timer = loop_.after(delay, [this] { recheck(); })) again_ = std::move(*timer);
}

void LogindWatch::recheck() {
  again_.cancel();
  switch_.recheck();
  // Unless a signal that came meanwhile has asked for one at once.
  if (switch_.needsRecheck() && !again_) recheckAfter(kRecheckDelay);
}

}  // namespace brindle
