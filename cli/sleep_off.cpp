#include "cli/sleep_off.h"

#include <array>
#include <csignal>

#include "cli/duration_text.h"
#include "cli/exit_code.h"
#include "cli/hold_text.h"
#include "cli/signal_watch.h"

namespace brindle {

namespace {

constexpr auto kSignals = std::to_array<int>({SIGINT, SIGTERM, SIGHUP, SIGQUIT});

class SleepOff {
 public:
  SleepOff(EventLoop& loop, SleepHolder::Parts parts, CommandContext& context)
      : loop_(loop),
        output_(context.output),
        terminal_(context.terminals.output),
        holder_(parts, [this](const HoldNews& news) { told(news); }) {}

  int run(Seconds duration) {
    const auto signals = watchSignals(loop_, kSignals, [this](SignalNote note) { interrupted(note.number); });
    if (!signals) {
      output_.remark(signals.error().message());
      return ExitCode::kFailure;
    }
    holder_.hold(duration);
    const int code = loop_.run();
    return code < 0 ? ExitCode::kFailure : code;
  }

 private:
  void interrupted(int signal) {
    if (signal_ != 0) return loop_.exit(ExitCode::kSignalBase + signal);
    signal_ = signal;
    if (terminal_ && signal == SIGINT) output_.print("\n");  // below the "^C" that the terminal has shown
    holder_.letGo();
  }

  void told(const HoldNews& news) {
    switch (news.phase) {
      case HoldPhase::held:
        return held(news);
      case HoldPhase::waiting:
      case HoldPhase::paused:
        return output_.remark(interruptionText(news));
      case HoldPhase::ended:
        return ended(news);
      case HoldPhase::idle:
      case HoldPhase::asking:
      case HoldPhase::lettingGo:
        return;
    }
  }

  void held(const HoldNews& news) {
    const std::string left = durationText(holder_.timeLeft() + Seconds{0.5});
    std::string line = "Sleep is off for " + left;
    if (!holding_) line += "; Ctrl-C switches it back on";
    if (!holding_ && news.text == HelperReplyText::kSleepAlreadyDisabled) line += ". Somebody else holds it off too";
    holding_ = true;
    output_.print(line + ".\n");
  }

  void ended(const HoldNews& news) {
    if (!news.text.empty()) output_.remark(unwilling(news) ? endText(news) : "let go without an answer: " + news.text);
    if (holding_ && news.text.empty()) output_.print("Sleep is on.\n");
    loop_.exit(exitCode(news));
  }

  static bool unwilling(const HoldNews& news) { return news.end != HoldEnd::released && news.end != HoldEnd::timeOver; }

  int exitCode(const HoldNews& news) const {
    if (signal_ != 0) return ExitCode::kSignalBase + signal_;
    if (news.end == HoldEnd::timeOver) return ExitCode::kDone;
    if (news.end == HoldEnd::maxDurationReached) return ExitCode::kNegative;
    return ExitCode::kFailure;
  }

  EventLoop& loop_;
  Output& output_;
  bool terminal_;
  SleepHolder holder_;
  bool holding_ = false;
  int signal_ = 0;
};

}  // namespace

int sleepOff(EventLoop& loop, SleepHolder::Parts parts, Seconds duration, CommandContext& context) {
  return SleepOff(loop, parts, context).run(duration);
}

}  // namespace brindle
