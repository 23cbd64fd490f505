#include "system/event_loop.h"

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>

#include "system/event_loop_native_linux.h"

namespace brindle {
namespace {

// Timers run on the clock that goes on while the machine sleeps, so that a limit on a hold is met right after waking.
constexpr clockid_t kTimerClock = CLOCK_BOOTTIME;
// sd-event takes 0 for its default of 250 ms; 1 is the finest it offers.
constexpr std::uint64_t kTimerAccuracyMicroseconds = 1;
constexpr double kLongestDelaySeconds = 1e9;

std::uint64_t microseconds(Seconds span) {
  if (!(span.count() > 0)) return 0;  // NaN as well
  return static_cast<std::uint64_t>(std::llround(std::min(span.count(), kLongestDelaySeconds) * 1e6));
}

// A source's handler is shared, so that a handler may destroy its own source and still run to its end.
template <typename Function>
struct Source : EventSource::Body {
  explicit Source(Function function) : handler(std::make_shared<Function>(std::move(function))) {}
  ~Source() override { sd_event_source_disable_unref(source); }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  sd_event_source* source = nullptr;
  std::shared_ptr<Function> handler;
};

struct TimerSource : Source<EventLoop::Handler> {
  TimerSource(EventLoop::Handler function, std::uint64_t period)
      : Source(std::move(function)), intervalMicroseconds(period) {}
  std::uint64_t intervalMicroseconds = 0;  // 0 for a single call
};

int timerFired(sd_event_source* source, std::uint64_t due, void* data) {
  auto* timer = static_cast<TimerSource*>(data);
  const auto handler = timer->handler;
  if (timer->intervalMicroseconds > 0) {
    std::uint64_t now = 0;
    sd_event_now(sd_event_source_get_event(source), kTimerClock, &now);
    const std::uint64_t next = due + timer->intervalMicroseconds;
    sd_event_source_set_time(source, next > now ? next : now + timer->intervalMicroseconds);
    sd_event_source_set_enabled(source, SD_EVENT_ONESHOT);
  }
  (*handler)();
  return 0;
}

int signalCame(sd_event_source*, const signalfd_siginfo* info, void* data) {
  const auto handler = static_cast<Source<std::function<void(SignalNote)>>*>(data)->handler;
  (*handler)({.number = static_cast<int>(info->ssi_signo), .fromProcess = info->ssi_code <= 0});
  return 0;
}

int descriptorReady(sd_event_source*, int, std::uint32_t, void* data) {
  const auto handler = static_cast<Source<EventLoop::Handler>*>(data)->handler;
  (*handler)();
  return 0;
}

int childEnded(sd_event_source*, const siginfo_t* info, void* data) {
  const auto handler = static_cast<Source<std::function<void(ChildEnd)>>*>(data)->handler;
  ChildEnd end;
  (info->si_code == CLD_EXITED ? end.exitStatus : end.killedBy) = info->si_status;
  (*handler)(end);
  return 0;
}

int wokenUp(sd_event_source*, int descriptor, std::uint32_t, void* data) {
  auto* native = static_cast<EventLoop::Native*>(data);
  std::uint64_t count = 0;
  if (read(descriptor, &count, sizeof count) < 0) return 0;  // another wake-up has taken it
  std::deque<EventLoop::Handler> work;
  {
    const std::lock_guard lock(native->mutex);
    work.swap(native->posted);
  }
  for (auto& handler : work) {
    if (native->exiting) break;
    handler();
  }
  return 0;
}

Outcome blockSignal(int signal) {
  sigset_t set;
  sigemptyset(&set);
  if (sigaddset(&set, signal) != 0) return fail(errno, "watch signal");
  if (const int code = pthread_sigmask(SIG_BLOCK, &set, nullptr); code != 0) return fail(code, "block signal");
  return {};
}

Result<EventSource> finished(int code, std::unique_ptr<EventSource::Body> body, const char* doing) {
  if (code < 0) return fail(-code, doing);
  return EventSource(std::move(body));
}

Result<EventSource> addTimer(sd_event* event, Seconds delay, std::unique_ptr<TimerSource> timer) {
  auto* data = timer.get();
  const int code = sd_event_add_time_relative(event, &data->source, kTimerClock, microseconds(delay),
                                              kTimerAccuracyMicroseconds, timerFired, data);
  return finished(code, std::move(timer), "start timer");
}

}  // namespace

EventLoop::EventLoop(std::unique_ptr<Native> native) : native_(std::move(native)) {}
EventLoop::EventLoop(EventLoop&&) noexcept = default;
EventLoop& EventLoop::operator=(EventLoop&&) noexcept = default;
EventLoop::~EventLoop() = default;

Result<EventLoop> EventLoop::create() {
  auto native = std::make_unique<Native>();
  if (const int code = sd_event_new(&native->event); code < 0) return fail(-code, "create event loop");
  native->wake = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!native->wake) return fail(errno, "create event loop");
  const int code =
      sd_event_add_io(native->event, &native->wakeSource, native->wake.get(), EPOLLIN, wokenUp, native.get());
  if (code < 0) return fail(-code, "create event loop");
  return EventLoop(std::move(native));
}

int EventLoop::run() { return sd_event_loop(native_->event); }

void EventLoop::exit(int code) {
  if (native_->exiting) return;
  native_->exiting = true;
  sd_event_exit(native_->event, code);
}

void EventLoop::post(Handler handler) {
  {
    const std::lock_guard lock(native_->mutex);
    native_->posted.push_back(std::move(handler));
  }
  const std::uint64_t one = 1;
  // Fails only when the counter is full, and then the loop is awake anyway.
  [[maybe_unused]] const auto written = write(native_->wake.get(), &one, sizeof one);
}

Result<EventSource> EventLoop::after(Seconds delay, Handler handler) {
  return addTimer(native_->event, delay, std::make_unique<TimerSource>(std::move(handler), 0));
}

Result<EventSource> EventLoop::every(Seconds interval, Handler handler) {
  const auto period = microseconds(interval);
  if (period == 0) return fail(EINVAL, "start timer");
  return addTimer(native_->event, interval, std::make_unique<TimerSource>(std::move(handler), period));
}

Result<EventSource> EventLoop::onSignal(int signal, std::function<void(SignalNote)> handler) {
  if (auto blocked = blockSignal(signal); !blocked) return tl::make_unexpected(blocked.error());
  auto body = std::make_unique<Source<std::function<void(SignalNote)>>>(std::move(handler));
  const int code = sd_event_add_signal(native_->event, &body->source, signal, signalCame, body.get());
  return finished(code, std::move(body), "watch signal");
}

Result<EventSource> EventLoop::onReadable(int descriptor, Handler handler) {
  auto body = std::make_unique<Source<Handler>>(std::move(handler));
  const int code = sd_event_add_io(native_->event, &body->source, descriptor, EPOLLIN, descriptorReady, body.get());
  return finished(code, std::move(body), "watch descriptor");
}

Result<EventSource> EventLoop::onChildEnd(pid_t child, std::function<void(ChildEnd)> handler) {
  if (auto blocked = blockSignal(SIGCHLD); !blocked) return tl::make_unexpected(blocked.error());
  auto body = std::make_unique<Source<std::function<void(ChildEnd)>>>(std::move(handler));
  const int code = sd_event_add_child(native_->event, &body->source, child, WEXITED, childEnded, body.get());
  return finished(code, std::move(body), "watch child");
}

}  // namespace brindle
