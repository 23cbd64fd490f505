#include "cli/run_session.h"

#include <array>
#include <cerrno>
#include <csignal>

#include "cli/exit_code.h"
#include "cli/hold_text.h"
#include "cli/signal_watch.h"

namespace brindle {

namespace {

/// The signals with which people and programs steer a command, and SIGTSTP: this program must not stop on its own
/// account, but only together with its command.
constexpr auto kSignals =
    std::to_array<int>({SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2, SIGWINCH, SIGALRM, SIGTSTP});

class RunSession {
 public:
  RunSession(EventLoop& loop, SleepHolder::Parts parts, const RunRequest& request, CommandContext& context)
      : loop_(loop),
        request_(request),
        output_(context.output),
        signals_(context.signals),
        holder_(parts, [this](const HoldNews& news) { told(news); }) {}

  RunResult run() {
    const auto watched = watchSignals(loop_, kSignals, [this](SignalNote note) { signalled(note); });
    if (!watched) {
      output_.remark(watched.error().message());
      return {.code = ExitCode::kFailure};
    }
    holder_.hold(request_.duration);
    if (loop_.run() < 0) result_.code = ExitCode::kFailure;
    return result_;
  }

 private:
  void signalled(SignalNote note) {
    if (child_) {
      if (note.fromProcess) child_->forward(note.number);
      return;
    }
    const bool ends =
        note.number == SIGINT || note.number == SIGTERM || note.number == SIGHUP || note.number == SIGQUIT;
    if (!ends) return;
    finish({.code = ExitCode::kSignalBase + note.number});
  }

  void told(const HoldNews& news) {
    switch (news.phase) {
      case HoldPhase::held:
        if (interrupted_) output_.remark("sleep is off again");
        interrupted_ = false;
        return startOnce();
      case HoldPhase::waiting:
      case HoldPhase::paused:
        interrupted_ = true;
        output_.remark(interruptionText(news));
        return startOnce();
      case HoldPhase::ended:
        return holdEnded(news);
      case HoldPhase::idle:
      case HoldPhase::asking:
      case HoldPhase::lettingGo:
        return;
    }
  }

  void holdEnded(const HoldNews& news) {
    if (finishing_) return loop_.exit(0);
    if (news.end == HoldEnd::timeOver) {
      output_.remark("the time is over, sleep is on; the command goes on");
      return startOnce();
    }
    if (started_ || request_.bestEffort) {
      output_.remark(endText(news) + "; the command " + (started_ ? "goes on" : "runs") + " without a hold");
      return startOnce();
    }
    output_.remark(endText(news));
    finish({.code = ExitCode::kFailure});
  }

  void startOnce() {
    if (started_ || finishing_) return;
    started_ = true;
    auto child = ForegroundChild::start(loop_, {.words = request_.words, .signals = signals_},
                                        [this](ChildEnd end) { finish({.child = end}); });
    if (child) {
      child_ = *std::move(child);
      return;
    }
    output_.remark("run: " + request_.words.front() + ": " + errorText(child.error().code));
    finish({.code = child.error().code == ENOENT ? ExitCode::kNotFound : ExitCode::kNotExecutable});
  }

  /// Lets go, and then ends the loop; the first result stands.
  void finish(const RunResult& result) {
    if (finishing_) return;
    finishing_ = true;
    result_ = result;
    if (holder_.state().phase() == HoldPhase::ended) return loop_.exit(0);
    holder_.letGo();
  }

  EventLoop& loop_;
  const RunRequest& request_;
  Output& output_;
  InheritedSignals signals_;
  std::optional<ForegroundChild> child_;
  bool started_ = false;
  bool finishing_ = false;
  bool interrupted_ = false;
  RunResult result_;
  SleepHolder holder_;
};

}  // namespace

RunResult runHeld(EventLoop& loop, SleepHolder::Parts parts, const RunRequest& request, CommandContext& context) {
  return RunSession(loop, parts, request, context).run();
}

}  // namespace brindle
