// The helper on Linux: what is made, in which order, and nothing else. It reads no arguments and no settings.
#include <systemd/sd-daemon.h>

#include <chrono>
#include <csignal>
#include <cstdio>

#include "helper/bus_service_linux.h"
#include "helper/helper.h"
#include "helper/journal_log.h"
#include "helper/logind_inhibitor_linux.h"
#include "helper/logind_switch.h"
#include "helper/loop_queue.h"
#include "helper/onward_clock.h"
#include "system/boot_clock.h"
#include "system/bus_connection_linux.h"
#include "system/event_loop.h"

namespace brindle {
namespace {

// A third of the WatchdogSec of the unit, after which the service manager kills a helper that hangs.
constexpr Seconds kSignOfLifeInterval{20};

int failed(const std::string& message) {
  std::fprintf(stderr, "BrindleHelper: %s\n", message.c_str());
  return 1;
}

Outcome guard(BusConnection& bus, EventLoop& loop) {
  if (auto filtered = bus.dropForgedSignals(); !filtered) return filtered;
  // Without the bus there are no clients and no way to hear of any: end, and the lock goes with the process.
  sd_bus_set_exit_on_disconnect(bus.get(), true);
  return bus.attach(loop);
}

int run() {
  auto loop = EventLoop::create();
  if (!loop) return failed(loop.error().message());
  // Two connections, because a lock is a descriptor, and strangers must not be able to send any.
  auto loginBus = BusConnection::openSystem();
  if (!loginBus) return failed(loginBus.error().message());
  auto bus = BusConnection::openWithoutDescriptors(*loginBus);
  if (!bus) return failed(bus.error().message());
  if (const auto guarded = guard(*loginBus, *loop); !guarded) return failed(guarded.error().message());
  if (const auto guarded = guard(*bus, *loop); !guarded) return failed(guarded.error().message());

  JournalLog log;
  LoopQueue queue(*loop);
  LogindInhibitor inhibitor(*loginBus);
  LogindSwitch sleepSwitch(inhibitor, log);
  LogindWatch watch(*loginBus, *loop, sleepSwitch);
  BusService service(*bus, *loop);
  const auto helper = Helper::create({.queue = queue,
                                      .sleepSwitch = sleepSwitch,
                                      .log = log,
                                      .exit = service,
                                      .now = [clock = OnwardClock()]() mutable {
                                        return clock.at(Date{std::chrono::system_clock::now()}, bootClockNow());
                                      }});
  if (!helper->start()) return failed("start timer: the system gives none");

  const auto terminated = loop->onSignal(SIGTERM, [&helper](SignalNote) { helper->terminate(); });
  if (!terminated) return failed(terminated.error().message());
  if (const auto watching = watch.start(); !watching) return failed(watching.error().message());
  if (const auto published = service.publish(helper); !published) return failed(published.error().message());
  const auto signOfLife = loop->every(kSignOfLifeInterval, [] { sd_notify(0, "WATCHDOG=1"); });
  if (!signOfLife) return failed(signOfLife.error().message());
  sd_notify(0, "READY=1");
  const int code = loop->run();
  return code == 0 ? 0 : failed(code > 0 ? "the system bus is gone" : "the event loop failed");
}

}  // namespace
}  // namespace brindle

int main() { return brindle::run(); }
