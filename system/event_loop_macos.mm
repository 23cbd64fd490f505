// The loop over kqueue: one queue, one event at a time, every source a filter of it.
#include <sys/event.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <deque>
#include <mutex>

#include "base/descriptor.h"
#include "system/event_loop.h"

namespace brindle {
namespace {

constexpr double kLongestDelaySeconds = 1e9;
// The one user event of a queue: work was posted.
constexpr std::uintptr_t kWakeIdent = 0;

struct Filter {
  std::uintptr_t ident = 0;
  std::int16_t kind = 0;
  unsigned int notes = 0;
  std::int64_t data = 0;
  unsigned short flags = 0;
};

int change(int queue, const Filter& filter, unsigned short action, void* source) {
  struct kevent64_s event = {};
  event.ident = filter.ident;
  event.filter = filter.kind;
  event.flags = static_cast<unsigned short>(action | filter.flags);
  event.fflags = filter.notes;
  event.data = filter.data;
  event.udata = reinterpret_cast<std::uintptr_t>(source);
  return kevent64(queue, &event, 1, nullptr, 0, 0, nullptr) < 0 ? errno : 0;
}

// What the loop calls for an event. A handler is shared, so that it may destroy its own source and still run to its
// end. Events are taken from the queue one at a time, so that none can name a source that is gone.
struct QueueSource : EventSource::Body {
  QueueSource(int queueNumber, Filter sourceFilter) : queue(queueNumber), filter(sourceFilter) {}
  // Fails when the event was the filter's last; then there is nothing left to delete.
  ~QueueSource() override { static_cast<void>(change(queue, filter, EV_DELETE, nullptr)); }
  QueueSource(const QueueSource&) = delete;
  QueueSource& operator=(const QueueSource&) = delete;

  virtual void happened() = 0;

  int queue = -1;
  Filter filter;
};

struct PlainSource : QueueSource {
  PlainSource(int queueNumber, Filter sourceFilter, EventLoop::Handler function)
      : QueueSource(queueNumber, sourceFilter), handler(std::make_shared<EventLoop::Handler>(std::move(function))) {}
  void happened() override {
    const auto kept = handler;
    (*kept)();
  }
  std::shared_ptr<EventLoop::Handler> handler;
};

// The keys of a terminal signal its whole foreground group. The kernel does not say who sent a signal, so the three
// that keys send count as the terminal's while this process is in that group: taken for a process's they would reach
// a child twice.
bool comesFromTerminal(int signal) {
  if (signal != SIGINT && signal != SIGQUIT && signal != SIGTSTP) return false;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (isatty(stream) == 1) return tcgetpgrp(stream) == getpgrp();
  }
  return false;
}

struct SignalSource : QueueSource {
  using Function = std::function<void(SignalNote)>;
  SignalSource(int queueNumber, Filter sourceFilter, Function function)
      : QueueSource(queueNumber, sourceFilter), handler(std::make_shared<Function>(std::move(function))) {}
  void happened() override {
    const auto kept = handler;
    const int number = static_cast<int>(filter.ident);
    (*kept)({.number = number, .fromProcess = !comesFromTerminal(number)});
  }
  std::shared_ptr<Function> handler;
};

struct ChildSource : QueueSource {
  using Function = std::function<void(ChildEnd)>;
  ChildSource(int queueNumber, Filter sourceFilter, Function function)
      : QueueSource(queueNumber, sourceFilter),
        child(static_cast<pid_t>(sourceFilter.ident)),
        handler(std::make_shared<Function>(std::move(function))) {}
  void happened() override {
    const auto kept = handler;
    // The note comes when the child begins to end; its status is there a moment later.
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
      if (errno != EINTR) return;
    }
    ChildEnd end;
    (WIFSIGNALED(status) ? end.killedBy : end.exitStatus) =
        WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    (*kept)(end);
  }
  pid_t child = -1;
  std::shared_ptr<Function> handler;
};

// Only has to be there: a signal with a handler does not end the process, and starts at its default in a child's
// program, which an ignored one would not.
void doNothing(int) {}

Outcome disarmSignal(int signal) {
  struct sigaction action = {};
  action.sa_handler = doNothing;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  if (sigaction(signal, &action, nullptr) != 0) return fail(errno, "watch signal");
  return {};
}

// Never 0, which is no timer; NaN counts as no time at all.
std::int64_t nanoseconds(Seconds span) {
  if (!(span.count() > 0)) return 1;
  return std::max<std::int64_t>(1, std::llround(std::min(span.count(), kLongestDelaySeconds) * 1e9));
}

// Whether the process is a child of ours that has ended and waits to be reaped.
bool waitsForReaping(pid_t child) {
  siginfo_t info = {};
  return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

template <typename Source, typename Function>
Result<EventSource> add(int queue, const Filter& filter, Function handler, const char* doing) {
  auto source = std::make_unique<Source>(queue, filter, std::move(handler));
  if (const int code = change(queue, filter, EV_ADD, static_cast<QueueSource*>(source.get())); code != 0) {
    return fail(code, doing);
  }
  return EventSource(std::move(source));
}

}  // namespace

// The mutex guards `posted`; all else belongs to the loop's thread.
struct EventLoop::Native {
  Descriptor queue;
  std::uintptr_t timers = 0;
  std::mutex mutex;
  std::deque<Handler> posted;
  std::optional<int> exitCode;

  void runPosted() {
    std::deque<Handler> work;
    {
      const std::lock_guard lock(mutex);
      work.swap(posted);
    }
    for (auto& handler : work) {
      if (exitCode) break;
      handler();
    }
  }

  // The clock that goes on while the machine sleeps, so that a limit on a hold is met right after waking.
  Filter timer(Seconds span, unsigned short flags) {
    return {.ident = ++timers,
            .kind = EVFILT_TIMER,
            .notes = NOTE_NSECONDS | NOTE_MACH_CONTINUOUS_TIME | NOTE_CRITICAL,
            .data = nanoseconds(span),
            .flags = flags};
  }
};

EventLoop::EventLoop(std::unique_ptr<Native> native) : native_(std::move(native)) {}
EventLoop::EventLoop(EventLoop&&) noexcept = default;
EventLoop& EventLoop::operator=(EventLoop&&) noexcept = default;
EventLoop::~EventLoop() = default;

Result<EventLoop> EventLoop::create() {
  auto native = std::make_unique<Native>();
  // Neither a forked child nor its program inherits a kqueue, so there is no flag to set.
  native->queue = Descriptor(kqueue());
  if (!native->queue) return fail(errno, "create event loop");
  const Filter wake{.ident = kWakeIdent, .kind = EVFILT_USER, .flags = EV_CLEAR};
  if (const int code = change(native->queue.get(), wake, EV_ADD, nullptr); code != 0) {
    return fail(code, "create event loop");
  }
  return EventLoop(std::move(native));
}

int EventLoop::run() {
  while (!native_->exitCode) {
    struct kevent64_s event = {};
    const int count = kevent64(native_->queue.get(), nullptr, 0, &event, 1, 0, nullptr);
    if (count < 0 && errno != EINTR) return -errno;
    if (count <= 0) continue;
    if (event.filter == EVFILT_USER) {
      native_->runPosted();
    } else {
      reinterpret_cast<QueueSource*>(static_cast<std::uintptr_t>(event.udata))->happened();
    }
  }
  return *native_->exitCode;
}

void EventLoop::exit(int code) {
  if (!native_->exitCode) native_->exitCode = code;
}

void EventLoop::post(Handler handler) {
  {
    const std::lock_guard lock(native_->mutex);
    native_->posted.push_back(std::move(handler));
  }
  const Filter wake{.ident = kWakeIdent, .kind = EVFILT_USER, .notes = NOTE_TRIGGER};
  static_cast<void>(change(native_->queue.get(), wake, 0, nullptr));
}

Result<EventSource> EventLoop::after(Seconds delay, Handler handler) {
  const auto filter = native_->timer(delay, EV_ONESHOT);
  return add<PlainSource>(native_->queue.get(), filter, std::move(handler), "start timer");
}

// A kqueue timer counts the calls that were missed in its one event.
Result<EventSource> EventLoop::every(Seconds interval, Handler handler) {
  if (!(interval.count() > 0)) return fail(EINVAL, "start timer");
  const auto filter = native_->timer(interval, 0);
  return add<PlainSource>(native_->queue.get(), filter, std::move(handler), "start timer");
}

Result<EventSource> EventLoop::onSignal(int signal, std::function<void(SignalNote)> handler) {
  if (auto disarmed = disarmSignal(signal); !disarmed) return tl::make_unexpected(disarmed.error());
  const Filter filter{.ident = static_cast<std::uintptr_t>(signal), .kind = EVFILT_SIGNAL};
  return add<SignalSource>(native_->queue.get(), filter, std::move(handler), "watch signal");
}

Result<EventSource> EventLoop::onReadable(int descriptor, Handler handler) {
  const Filter filter{.ident = static_cast<std::uintptr_t>(descriptor), .kind = EVFILT_READ};
  return add<PlainSource>(native_->queue.get(), filter, std::move(handler), "watch descriptor");
}

Result<EventSource> EventLoop::onChildEnd(pid_t child, std::function<void(ChildEnd)> handler) {
  const Filter filter{
      .ident = static_cast<std::uintptr_t>(child), .kind = EVFILT_PROC, .notes = NOTE_EXIT, .flags = EV_ONESHOT};
  auto source = std::make_unique<ChildSource>(native_->queue.get(), filter, std::move(handler));
  int code = change(native_->queue.get(), source->filter, EV_ADD, static_cast<QueueSource*>(source.get()));
  // A child that has ended already sends no note any more: a timer that is due at once stands in for it.
  if (code == ESRCH && waitsForReaping(child)) {
    source->filter = native_->timer(Seconds{0}, EV_ONESHOT);
    code = change(native_->queue.get(), source->filter, EV_ADD, static_cast<QueueSource*>(source.get()));
  }
  if (code != 0) return fail(code, "watch child");
  return EventSource(std::move(source));
}

}  // namespace brindle
