#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "platform/process_handle.h"
#include "platform/process_source.h"
#include "system/boot_clock.h"

namespace brindle {
namespace {

bool endsWithin(int handle, int milliseconds) {
  pollfd end{.fd = handle, .events = POLLIN, .revents = 0};
  return ::poll(&end, 1, milliseconds) == 1;
}

}  // namespace

Result<ProcessHandle> ProcessHandle::open(Identity identity) {
  const std::string doing = "open process " + std::to_string(identity.pid);
  Descriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, identity.pid, 0)));
  if (!handle) return fail(errno, doing);
  // The stamp is read after the handle is open: from here on the handle's process is the one that has it.
  if (startStampOf(identity.pid) != identity.startTime) return fail(ESRCH, doing);
  return ProcessHandle(std::move(handle), identity.pid);
}

Outcome ProcessHandle::signal(int number) const {
  if (::syscall(SYS_pidfd_send_signal, handle_.get(), number, nullptr, 0) != 0) {
    return fail(errno, "signal process " + std::to_string(pid_));
  }
  return {};
}

bool ProcessHandle::hasEnded() const { return endsWithin(handle_.get(), 0); }

bool ProcessHandle::waitForAll(std::span<const ProcessHandle* const> handles, Seconds patience) {
  const Seconds deadline = bootClockNow() + patience;
  return std::ranges::all_of(handles, [&](const ProcessHandle* each) {
    const Seconds left = std::max(deadline - bootClockNow(), Seconds{0});
    return endsWithin(each->handle_.get(), static_cast<int>(left.count() * 1000));
  });
}

}  // namespace brindle
