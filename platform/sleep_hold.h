// A hold on sleep, as its holder keeps it: what to ask the helper next, for each thing that happens.
//
// Owned by SleepHolder, which carries the actions out and feeds the answers back. A plain value without clock, input
// or output. `now` is always the boot clock, which goes on while the machine sleeps, so that a hold of four hours is
// over four hours later however the time was spent. The fields are the truth: a late or doubled tick changes nothing.
//
// A hold is asked for once and kept alive with heartbeats. Whenever the helper turns out not to hold any more it is
// asked again, for the time that is left: at once when a heartbeat says so or a new helper appears, at the next beat
// when nothing answers. So two holders share one hold, and a restarted helper is found again. Only a refusal ends it.
#pragma once

#include <optional>
#include <string>

#include "platform/helper_client.h"
#include "platform/hold_phase.h"

namespace brindle {

/// How long letting go waits for the helper's answer. The end of the connection does it too, only later.
inline constexpr Seconds kLetGoPatience{2};

class SleepHold {
 public:
  /// Begins a hold that is over at `now` + `duration`. Only while idle; `paused` begins it without asking.
  [[nodiscard]] HoldAction begin(Seconds now, Seconds duration, bool paused);

  /// The answer to AskToDisable or AskToEnable.
  [[nodiscard]] HoldAction sleepAnswered(HoldTicket ticket, const HelperAnswer<SleepReply>& answer, Seconds now);
  /// The answer to SendHeartbeat.
  [[nodiscard]] HoldAction heartbeatAnswered(HoldTicket ticket, const HelperAnswer<bool>& answer, Seconds now);

  /// The helper ended: what it held is over. A call that is under way answers for itself.
  void vanished(Seconds now);
  /// A new helper came; it holds nothing yet.
  [[nodiscard]] HoldAction appeared(Seconds now);

  /// Lets go until resume(); the time goes on. Nothing while letting go or ended.
  [[nodiscard]] HoldAction pause();
  /// Asks again after pause(); nothing otherwise.
  [[nodiscard]] HoldAction resume(Seconds now);

  /// Lets go for good. Ended at once when nothing is held; otherwise after the helper's answer or kLetGoPatience.
  [[nodiscard]] HoldAction release(Seconds now);

  /// Does what is due. The end of the time and the beats are inclusive: due at exactly that moment.
  [[nodiscard]] HoldAction tick(Seconds now);
  /// When tick() is next wanted; none when it never is.
  [[nodiscard]] std::optional<Seconds> nextAlarm() const;

  [[nodiscard]] HoldPhase phase() const { return phase_; }
  /// Set exactly in phase ended, and already while letting go.
  [[nodiscard]] std::optional<HoldEnd> end() const { return end_; }
  /// Why the last answer was none or negative; empty after a good one.
  [[nodiscard]] const std::string& problem() const { return problem_; }
  /// What kind of trouble that was; none when the helper itself said no.
  [[nodiscard]] std::optional<HelperProblemKind> problemKind() const { return problemKind_; }
  /// Whether sleep was off at some time.
  [[nodiscard]] bool everHeld() const { return everHeld_; }
  /// Until the time is over; never negative.
  [[nodiscard]] Seconds timeLeft(Seconds now) const;

  bool operator==(const SleepHold&) const = default;

 private:
  [[nodiscard]] HoldAction ask(Seconds now);
  [[nodiscard]] HoldAction letGo(Seconds now, HoldEnd end);
  void finish(HoldEnd end);
  void noAnswer(const HelperProblem& problem, Seconds now);
  void waitForBeat(Seconds now);

  HoldPhase phase_ = HoldPhase::idle;
  HoldTicket ticket_ = 0;
  Seconds over_{0};
  Seconds nextBeat_{0};
  Seconds patience_{0};
  bool everHeld_ = false;
  std::optional<HoldEnd> end_;
  std::string problem_;
  std::optional<HelperProblemKind> problemKind_;
};

}  // namespace brindle
