// The loop on which a program of ours waits: timers, signals, descriptors, children and work for later.
//
// Used by the helper's queue on Linux, by the holder of a sleep request and by the command. Everything runs on the
// one thread that calls run(); only post() may be called from any thread. A source lives exactly as long as its
// EventSource: destroying it, also from inside its own handler, ends its calls. Handlers must not throw. The loop
// outlives all of its sources.
#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>

#include "base/date.h"
#include "base/result.h"

namespace brindle {

/// Owns one timer, signal, descriptor or child watch of a loop; empty after being moved from.
class EventSource {
 public:
  struct Body {
    virtual ~Body() = default;
  };

  EventSource() = default;
  explicit EventSource(std::unique_ptr<Body> body) : body_(std::move(body)) {}
  [[nodiscard]] explicit operator bool() const { return body_ != nullptr; }
  void cancel() { body_.reset(); }

 private:
  std::unique_ptr<Body> body_;
};

/// One signal as it arrived.
struct SignalNote {
  int number = 0;
  /// Sent by a process with kill(2) or the like; false when the kernel sent it, as a terminal does for Ctrl-C.
  bool fromProcess = false;
};

/// How a child ended: exactly one of the two is not zero, or both are zero after a clean exit.
struct ChildEnd {
  int exitStatus = 0;
  /// The signal that killed it; 0 when it exited by itself.
  int killedBy = 0;

  [[nodiscard]] bool succeeded() const { return exitStatus == 0 && killedBy == 0; }
  bool operator==(const ChildEnd&) const = default;
};

class EventLoop {
 public:
  using Handler = std::function<void()>;
  struct Native;

  /// Fails with errno when the system has no descriptors or memory left.
  [[nodiscard]] static Result<EventLoop> create();
  EventLoop(EventLoop&&) noexcept;
  EventLoop& operator=(EventLoop&&) noexcept;
  ~EventLoop();

  /// Serves the sources until exit() is called, and answers its code; a negative errno when waiting itself fails.
  [[nodiscard]] int run();
  /// Ends run() after the handler that is running. The first code given stands.
  void exit(int code);

  /// Calls `handler` once from the loop, after everything posted before it. From any thread. Work that is still
  /// waiting when the loop ends is dropped.
  void post(Handler handler);

  /// Calls `handler` once, no earlier than `delay` from now. The time during which the machine sleeps counts.
  [[nodiscard]] Result<EventSource> after(Seconds delay, Handler handler);
  /// Calls `handler` every `interval`, the first time one interval from now. Calls that were missed, for instance
  /// while the machine slept, are made up by a single one.
  [[nodiscard]] Result<EventSource> every(Seconds interval, Handler handler);
  /// Calls `handler` for each `signal` from now on instead of its default action, which stays away after the source
  /// is gone. One source a signal. Where the system needs it the signal is blocked in the calling thread, so whoever
  /// starts a program says what is blocked in it.
  [[nodiscard]] Result<EventSource> onSignal(int signal, std::function<void(SignalNote)> handler);
  /// Calls `handler` whenever `descriptor` can be read or has reached its end. The descriptor stays the caller's and
  /// must outlive the source.
  [[nodiscard]] Result<EventSource> onReadable(int descriptor, Handler handler);
  /// Calls `handler` once when the child ends, and reaps it. SIGCHLD is treated as in onSignal().
  [[nodiscard]] Result<EventSource> onChildEnd(pid_t child, std::function<void(ChildEnd)> handler);

  /// The platform's own loop, for the wrappers in this folder.
  [[nodiscard]] Native& native() const { return *native_; }

 private:
  explicit EventLoop(std::unique_ptr<Native> native);
  std::unique_ptr<Native> native_;
};

}  // namespace brindle
