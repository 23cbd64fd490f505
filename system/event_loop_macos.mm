// The loop over the kernel's event queue: every source is a filter of it, and work for later is its user event.
#include <sys/event.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <deque>
#include <mutex>
#include <optional>

#include "system/event_loop.h"
#include "system/kernel_queue_macos.h"

namespace brindle {
namespace {

// Handlers are shared, so that one may destroy its own source and still run to its end.

struct PlainSource final : QueueSource {
  PlainSource(KernelQueue& queue, EventLoop::Handler function)
      : QueueSource(queue), handler(std::make_shared<EventLoop::Handler>(std::move(function))) {}
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

struct SignalSource final : QueueSource {
  using Function = std::function<void(SignalNote)>;
  SignalSource(KernelQueue& queue, int signal, Function function)
      : QueueSource(queue), number(signal), handler(std::make_shared<Function>(std::move(function))) {}
  void happened() override {
    const auto kept = handler;
    (*kept)({.number = number, .fromProcess = !comesFromTerminal(number)});
  }
  int number = 0;
  std::shared_ptr<Function> handler;
};

struct ChildSource final : QueueSource {
  using Function = std::function<void(ChildEnd)>;
  ChildSource(KernelQueue& queue, pid_t process, Function function)
      : QueueSource(queue), child(process), handler(std::make_shared<Function>(std::move(function))) {}
  void happened() override {
    const auto kept = handler;
    // The note comes when the child begins to end; its status is there a moment later.
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
      if (errno != EINTR) return;
    }
    const bool killed = WIFSIGNALED(status);
    (*kept)({.exitStatus = killed ? 0 : WEXITSTATUS(status), .killedBy = killed ? WTERMSIG(status) : 0});
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

// Whether the process is a child of ours that has ended and waits to be reaped.
bool waitsForReaping(pid_t child) {
  siginfo_t info = {};
  return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

Result<EventSource> entered(std::unique_ptr<QueueSource> source, const QueueFilter& filter, const char* doing) {
  if (auto outcome = source->enter(filter, doing); !outcome) return tl::make_unexpected(outcome.error());
  return EventSource(std::move(source));
}

}  // namespace

// The mutex guards `posted`; all else belongs to the loop's thread.
struct EventLoop::Native {
  KernelQueue queue;
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
};

EventLoop::EventLoop(std::unique_ptr<Native> native) : native_(std::move(native)) {}
EventLoop::EventLoop(EventLoop&&) noexcept = default;
EventLoop& EventLoop::operator=(EventLoop&&) noexcept = default;
EventLoop::~EventLoop() = default;

Result<EventLoop> EventLoop::create() {
  auto native = std::make_unique<Native>();
  if (auto opened = native->queue.open(); !opened) return tl::make_unexpected(opened.error());
  return EventLoop(std::move(native));
}

int EventLoop::run() {
  while (!native_->exitCode) {
    const auto served = native_->queue.serveOne();
    if (!served) return -served.error().code;
    if (!*served) native_->runPosted();
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
  native_->queue.wake();
}

Result<EventSource> EventLoop::after(Seconds delay, Handler handler) {
  auto source = std::make_unique<PlainSource>(native_->queue, std::move(handler));
  return entered(std::move(source), native_->queue.timer(delay, true), "start timer");
}

// The queue's repeating timers count the times that were missed in one event.
Result<EventSource> EventLoop::every(Seconds interval, Handler handler) {
  if (!(interval.count() > 0)) return fail(EINVAL, "start timer");
  auto source = std::make_unique<PlainSource>(native_->queue, std::move(handler));
  return entered(std::move(source), native_->queue.timer(interval, false), "start timer");
}

Result<EventSource> EventLoop::onSignal(int signal, std::function<void(SignalNote)> handler) {
  if (auto disarmed = disarmSignal(signal); !disarmed) return tl::make_unexpected(disarmed.error());
  auto source = std::make_unique<SignalSource>(native_->queue, signal, std::move(handler));
  return entered(std::move(source), {.ident = static_cast<std::uintptr_t>(signal), .kind = EVFILT_SIGNAL},
                 "watch signal");
}

Result<EventSource> EventLoop::onReadable(int descriptor, Handler handler) {
  auto source = std::make_unique<PlainSource>(native_->queue, std::move(handler));
  return entered(std::move(source), {.ident = static_cast<std::uintptr_t>(descriptor), .kind = EVFILT_READ},
                 "watch descriptor");
}

Result<EventSource> EventLoop::onChildEnd(pid_t child, std::function<void(ChildEnd)> handler) {
  auto source = std::make_unique<ChildSource>(native_->queue, child, std::move(handler));
  const QueueFilter end{
      .ident = static_cast<std::uintptr_t>(child), .kind = EVFILT_PROC, .notes = NOTE_EXIT, .flags = EV_ONESHOT};
  auto outcome = source->enter(end, "watch child");
  // A child that has ended already sends no note any more: a timer that is due at once stands in for it.
  if (!outcome && outcome.error().code == ESRCH && waitsForReaping(child)) {
    outcome = source->enter(native_->queue.timer(Seconds{0}, true), "watch child");
  }
  if (!outcome) return tl::make_unexpected(outcome.error());
  return EventSource(std::move(source));
}

}  // namespace brindle
