// The daemon's start: what is made, in which order. launchd starts it on demand; it reads no argument, no environment
// variable and no file, and ends only through exit().
#import <Foundation/Foundation.h>

#include <dispatch/dispatch.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>

#include "helper/dispatch_queue_macos.h"
#include "helper/helper.h"
#include "helper/helper_service_macos.h"
#include "helper/onward_clock.h"
#include "helper/pmset_runner.h"
#include "helper/unified_log_macos.h"
#include "logic/helper/helper_identity.h"
#include "system/boot_clock.h"

namespace {

// The system starts the daemon again for a message that comes too late, so none is waited for.
class PlainExit final : public brindle::ProcessExit {
 public:
  [[nodiscard]] bool callsPending() const override { return false; }
  void exitWhenIdle() override { std::exit(0); }
  void exitAfterTermination() override { std::exit(0); }
};

brindle::Date wallClock() { return std::chrono::time_point_cast<brindle::Seconds>(std::chrono::system_clock::now()); }

std::function<brindle::Date()> daemonClock() {
  return [clock = brindle::OnwardClock()]() mutable { return clock.at(wallClock(), brindle::bootClockNow()); };
}

}  // namespace

int main() {
  // Everything lives as long as the process: dispatch_main() ends the main thread, and its stack with it, while the
  // queues go on.
  auto& log = *new brindle::UnifiedLog();
  auto& queue = *new brindle::DispatchQueue();
  auto& sleepSwitch = *new brindle::PmsetRunner(log);
  auto& processExit = *new PlainExit();
  auto& helper = *new std::shared_ptr<brindle::Helper>(brindle::Helper::create(
      {.queue = queue, .sleepSwitch = sleepSwitch, .log = log, .exit = processExit, .now = daemonClock()}));
  if (!helper->start()) {
    log.error("start timer: the system gives none");
    return 1;
  }

  // Ignored, so that the signal's default action does not end the process before the source's handler has run.
  signal(SIGTERM, SIG_IGN);
  static dispatch_source_t termination;
  termination = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL, SIGTERM, 0, dispatch_get_main_queue());
  brindle::Helper* const daemon = helper.get();
  dispatch_source_set_event_handler(termination, ^{
    daemon->terminate();
  });
  dispatch_resume(termination);

  static BrindleHelperService* service;
  static NSXPCListener* listener;
  @autoreleasepool {
    service = [[BrindleHelperService alloc] initWithHelper:helper log:log];
    listener = [[NSXPCListener alloc]
        initWithMachServiceName:[NSString stringWithUTF8String:brindle::HelperIdentity::machServiceName.data()]];
    listener.delegate = service;
    [listener resume];
  }
  dispatch_main();
}
