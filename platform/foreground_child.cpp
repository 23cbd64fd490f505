#include "platform/foreground_child.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "system/child_process.h"

namespace brindle {

namespace {

/// Gives SIGPIPE its inherited action for as long as a child is being started.
class InheritedPipeAction {
 public:
  explicit InheritedPipeAction(bool ignored) {
    struct sigaction action {};
    action.sa_handler = ignored ? SIG_IGN : SIG_DFL;
    ::sigaction(SIGPIPE, &action, &before_);
  }
  ~InheritedPipeAction() { ::sigaction(SIGPIPE, &before_, nullptr); }
  InheritedPipeAction(const InheritedPipeAction&) = delete;
  InheritedPipeAction& operator=(const InheritedPipeAction&) = delete;

 private:
  struct sigaction before_ {};
};

/// Lets the default action of `signal` happen to this process, also when the signal is blocked.
void takeSignal(int signal) {
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  sigset_t before;
  // Raised while it may be blocked: one that waits already and this one become one.
  ::raise(signal);
  ::pthread_sigmask(SIG_UNBLOCK, &only, &before);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

struct ForegroundChild::Watch {
  void look();

  pid_t pid = -1;
  bool running = true;
  EventSource changes;
  std::function<void(ChildEnd)> ended;
};

/// One SIGCHLD may stand for several changes, and for none.
void ForegroundChild::Watch::look() {
  while (running) {
    siginfo_t info{};
    if (::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WSTOPPED | WNOHANG) != 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (info.si_pid == 0) return;
    if (info.si_code == CLD_STOPPED) {
      // Whoever waits for this program must see the whole job stopped. It returns when the shell continues the job;
      // the shell may have told this process alone.
      takeSignal(info.si_status);
      ::kill(pid, SIGCONT);
      continue;
    }
    running = false;
    ChildEnd end;
    (info.si_code == CLD_EXITED ? end.exitStatus : end.killedBy) = info.si_status;
    const auto tell = ended;
    tell(end);
    return;
  }
}

InheritedSignals InheritedSignals::current() {
  InheritedSignals signals;
  ::pthread_sigmask(SIG_BLOCK, nullptr, &signals.blocked);
  signals.closedPipesIgnored = isIgnored(SIGPIPE);
  return signals;
}

bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void dieOf(int signal) {
  const rlimit none{};
  ::setrlimit(RLIMIT_CORE, &none);
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  ::sigaction(signal, &action, nullptr);
  takeSignal(signal);
}

Result<ForegroundChild> ForegroundChild::start(EventLoop& loop, const Spec& spec, std::function<void(ChildEnd)> ended) {
  auto watch = std::make_shared<Watch>();
  // Watched before it is started, so that no end is missed.
  auto changes = loop.onSignal(SIGCHLD, [body = std::weak_ptr(watch)](SignalNote) {
    if (const auto alive = body.lock()) alive->look();
  });
  if (!changes) return tl::make_unexpected(changes.error());
  const InheritedPipeAction inherited(spec.signals.closedPipesIgnored);
  const auto child = ChildProcess::start({.program = spec.words.front(),
                                          .arguments = {spec.words.begin() + 1, spec.words.end()},
                                          .searchesPath = true,
                                          .mask = spec.signals.blocked});
  if (!child) return tl::make_unexpected(child.error());
  watch->pid = child->pid();
  watch->changes = *std::move(changes);
  watch->ended = std::move(ended);
  return ForegroundChild(std::move(watch));
}

void ForegroundChild::forward(int signal) const {
  if (watch_->running) ::kill(watch_->pid, signal);
}

}  // namespace brindle
