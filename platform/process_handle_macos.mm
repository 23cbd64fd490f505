#include <sys/event.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <string>

#include "platform/process_handle.h"
#include "platform/process_source.h"
#include "system/boot_clock.h"

namespace brindle {
namespace {

/// A kernel queue stands for the process: it tells of this process's end, whoever has the pid by then.
bool endsWithin(int queue, Seconds patience) {
  struct kevent end = {};
  timespec wait = {};
  wait.tv_sec = static_cast<time_t>(patience.count());
  wait.tv_nsec = static_cast<long>((patience.count() - static_cast<double>(wait.tv_sec)) * 1e9);
  return kevent(queue, nullptr, 0, &end, 1, &wait) == 1;
}

}  // namespace

Result<ProcessHandle> ProcessHandle::open(Identity identity) {
  const std::string doing = "open process " + std::to_string(identity.pid);
  Descriptor queue(kqueue());
  if (!queue) return fail(errno, doing);
  struct kevent watch = {};
  EV_SET(&watch, static_cast<uintptr_t>(identity.pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
  if (kevent(queue.get(), &watch, 1, nullptr, 0, nullptr) != 0) return fail(errno, doing);
  if (startStampOf(identity.pid) != identity.startTime) return fail(ESRCH, doing);
  return ProcessHandle(std::move(queue), identity.pid);
}

// The pid can only have been given away after the process has ended, and that is asked right before.
Outcome ProcessHandle::signal(int number) const {
  const std::string doing = "signal process " + std::to_string(pid_);
  if (hasEnded()) return fail(ESRCH, doing);
  if (kill(pid_, number) != 0) return fail(errno, doing);
  return {};
}

bool ProcessHandle::hasEnded() const {
  if (!handle_) return true;
  if (!endsWithin(handle_.get(), Seconds{0})) return false;
  // The end is told once; without the queue it stays known.
  handle_.reset();
  return true;
}

bool ProcessHandle::waitForAll(std::span<const ProcessHandle* const> handles, Seconds patience) {
  const Seconds deadline = bootClockNow() + patience;
  return std::ranges::all_of(handles, [&](const ProcessHandle* each) {
    if (!each->handle_) return true;
    if (!endsWithin(each->handle_.get(), std::max(deadline - bootClockNow(), Seconds{0}))) return false;
    each->handle_.reset();
    return true;
  });
}

}  // namespace brindle
