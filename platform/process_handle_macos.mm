#include <poll.h>
#include <sys/event.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string>

#include "platform/clock.h"
#include "platform/process_handle.h"
#include "platform/process_source.h"

namespace brindle {
namespace {

// The note that the process has ended stays in the queue, so the queue stays readable.
bool endsWithin(int queue, int milliseconds) {
  pollfd end{.fd = queue, .events = POLLIN, .revents = 0};
  return poll(&end, 1, milliseconds) == 1;
}

}  // namespace

Result<ProcessHandle> ProcessHandle::open(Identity identity) {
  const std::string doing = "open process " + std::to_string(identity.pid);
  Descriptor queue(kqueue());
  if (!queue) return fail(errno, doing);
  struct kevent64_s end = {};
  end.ident = static_cast<std::uint64_t>(identity.pid);
  end.filter = EVFILT_PROC;
  end.flags = EV_ADD;
  end.fflags = NOTE_EXIT;
  if (kevent64(queue.get(), &end, 1, nullptr, 0, 0, nullptr) != 0) return fail(errno, doing);
  // The stamp is read after the queue watches the pid: so the process that it watches is the one that has it.
  if (startStampOf(identity.pid) != identity.startTime) return fail(ESRCH, doing);
  return ProcessHandle(std::move(queue), identity.pid);
}

// The system has no signal by handle. Between the look and the signal the process would have to end, be reaped and its
// pid be given out again, which goes round all other pids first.
Outcome ProcessHandle::signal(int number) const {
  const std::string doing = "signal process " + std::to_string(pid_);
  if (hasEnded()) return fail(ESRCH, doing);
  if (kill(pid_, number) != 0) return fail(errno, doing);
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
