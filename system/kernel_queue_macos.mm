#include "system/kernel_queue_macos.h"

#include <sys/event.h>

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace brindle {
namespace {

constexpr double kLongestDelaySeconds = 1e9;
// The one user event of a queue.
constexpr QueueFilter kWake{.ident = 0, .kind = EVFILT_USER, .flags = EV_CLEAR};

std::int64_t nanoseconds(Seconds span) {
  if (!(span.count() > 0)) return 1;
  return std::max<std::int64_t>(1, std::llround(std::min(span.count(), kLongestDelaySeconds) * 1e9));
}

}  // namespace

QueueSource::~QueueSource() {
  if (!entered_) return;
  // Fails when the event was the filter's last; then there is nothing left to take out.
  static_cast<void>(queue_.change(filter_, EV_DELETE, nullptr));
  queue_.taken_.erase({filter_.kind, filter_.ident});
}

Outcome QueueSource::enter(const QueueFilter& filter, const char* doing) {
  const auto [place, isFree] = queue_.taken_.emplace(filter.kind, filter.ident);
  if (!isFree) return fail(EBUSY, doing);
  if (const int code = queue_.change(filter, EV_ADD, this); code != 0) {
    queue_.taken_.erase(place);
    return fail(code, doing);
  }
  filter_ = filter;
  entered_ = true;
  return {};
}

Outcome KernelQueue::open() {
  // No child inherits a kernel queue, so there is no flag to set.
  queue_ = Descriptor(kqueue());
  if (!queue_) return fail(errno, "create event loop");
  if (const int code = change(kWake, EV_ADD, nullptr); code != 0) return fail(code, "create event loop");
  return {};
}

Result<bool> KernelQueue::serveOne() {
  struct kevent64_s event = {};
  const int count = kevent64(queue_.get(), nullptr, 0, &event, 1, 0, nullptr);
  if (count < 0 && errno != EINTR) return fail(errno, "wait for events");
  if (count <= 0 || event.filter == EVFILT_USER) return false;
  reinterpret_cast<QueueSource*>(static_cast<std::uintptr_t>(event.udata))->happened();
  return true;
}

void KernelQueue::wake() const {
  QueueFilter trigger = kWake;
  trigger.notes = NOTE_TRIGGER;
  static_cast<void>(change(trigger, 0, nullptr));
}

QueueFilter KernelQueue::timer(Seconds span, bool once) {
  return {.ident = ++timers_,
          .kind = EVFILT_TIMER,
          .notes = NOTE_NSECONDS | NOTE_MACH_CONTINUOUS_TIME | NOTE_CRITICAL,
          .data = nanoseconds(span),
          .flags = static_cast<unsigned short>(once ? EV_ONESHOT : 0)};
}

int KernelQueue::change(const QueueFilter& filter, unsigned short action, QueueSource* source) const {
  struct kevent64_s event = {};
  event.ident = filter.ident;
  event.filter = filter.kind;
  event.flags = static_cast<unsigned short>(action | filter.flags);
  event.fflags = filter.notes;
  event.data = filter.data;
  event.udata = reinterpret_cast<std::uintptr_t>(source);
  return kevent64(queue_.get(), &event, 1, nullptr, 0, 0, nullptr) < 0 ? errno : 0;
}

}  // namespace brindle
