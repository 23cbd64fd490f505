#include "platform/sleep_hold.h"

#include <algorithm>

#include "logic/helper/lid_sleep_limits.h"

namespace brindle {

HoldAction SleepHold::begin(Seconds now, Seconds duration, bool paused) {
  if (phase_ != HoldPhase::idle) return std::nullopt;
  over_ = now + duration;
  if (!paused) return ask(now);
  phase_ = HoldPhase::paused;
  return std::nullopt;
}

HoldAction SleepHold::sleepAnswered(HoldTicket ticket, const HelperAnswer<SleepReply>& answer, Seconds now) {
  if (ticket != ticket_) return std::nullopt;
  if (phase_ == HoldPhase::lettingGo) {
    if (!answer) problem_ = answer.error().text;
    if (answer && !answer->ok) problem_ = answer->message;
    phase_ = HoldPhase::ended;
    return std::nullopt;
  }
  if (phase_ != HoldPhase::asking) return std::nullopt;
  if (!answer) {
    noAnswer(answer.error(), now);
    return std::nullopt;
  }
  problemKind_.reset();
  if (answer->ok) {
    problem_.clear();
    phase_ = HoldPhase::held;
    everHeld_ = true;
    nextBeat_ = now + LidSleepLimits::heartbeatInterval;
    return std::nullopt;
  }
  problem_ = answer->message;
  // The service tells this refusal, which stands until somebody switches sleep on, from a switch that failed and may
  // work later, by its text alone.
  if (answer->message == HelperReplyText::kMaxDurationReached) {
    finish(HoldEnd::maxDurationReached);
  } else if (!everHeld_) {
    finish(HoldEnd::failed);
  } else {
    waitForBeat(now);
  }
  return std::nullopt;
}

HoldAction SleepHold::heartbeatAnswered(HoldTicket ticket, const HelperAnswer<bool>& answer, Seconds now) {
  if (ticket != ticket_ || phase_ != HoldPhase::held) return std::nullopt;
  if (!answer) {
    noAnswer(answer.error(), now);
    return std::nullopt;
  }
  if (*answer) return std::nullopt;
  return ask(now);
}

void SleepHold::vanished(Seconds now) {
  if (phase_ != HoldPhase::held) return;
  ++ticket_;
  problem_ = "the helper has ended";
  problemKind_ = HelperProblemKind::unreachable;
  waitForBeat(now);
}

HoldAction SleepHold::appeared(Seconds now) {
  if (phase_ != HoldPhase::held && phase_ != HoldPhase::waiting) return std::nullopt;
  return ask(now);
}

HoldAction SleepHold::pause() {
  const bool asked = phase_ == HoldPhase::asking || phase_ == HoldPhase::held;
  if (!asked && phase_ != HoldPhase::waiting) return std::nullopt;
  phase_ = HoldPhase::paused;
  ++ticket_;
  if (!asked) return std::nullopt;
  return AskToEnable{ticket_};
}

HoldAction SleepHold::resume(Seconds now) {
  if (phase_ != HoldPhase::paused || now >= over_) return std::nullopt;
  return ask(now);
}

HoldAction SleepHold::release(Seconds now) { return letGo(now, HoldEnd::released); }

HoldAction SleepHold::tick(Seconds now) {
  switch (phase_) {
    case HoldPhase::idle:
    case HoldPhase::ended:
      return std::nullopt;
    case HoldPhase::lettingGo:
      if (now < patience_) return std::nullopt;
      problem_ = "the helper has not answered";
      phase_ = HoldPhase::ended;
      return std::nullopt;
    case HoldPhase::asking:
    case HoldPhase::paused:
      if (now >= over_) return letGo(now, HoldEnd::timeOver);
      return std::nullopt;
    case HoldPhase::held:
      if (now >= over_) return letGo(now, HoldEnd::timeOver);
      if (now < nextBeat_) return std::nullopt;
      nextBeat_ = now + LidSleepLimits::heartbeatInterval;
      return SendHeartbeat{++ticket_};
    case HoldPhase::waiting:
      if (now >= over_) return letGo(now, HoldEnd::timeOver);
      if (now < nextBeat_) return std::nullopt;
      return ask(now);
  }
  return std::nullopt;
}

std::optional<Seconds> SleepHold::nextAlarm() const {
  switch (phase_) {
    case HoldPhase::idle:
    case HoldPhase::ended:
      return std::nullopt;
    case HoldPhase::lettingGo:
      return patience_;
    case HoldPhase::asking:
    case HoldPhase::paused:
      return over_;
    case HoldPhase::held:
    case HoldPhase::waiting:
      return std::min(over_, nextBeat_);
  }
  return std::nullopt;
}

Seconds SleepHold::timeLeft(Seconds now) const { return std::max(over_ - now, Seconds{0}); }

HoldAction SleepHold::ask(Seconds now) {
  phase_ = HoldPhase::asking;
  return AskToDisable{++ticket_, timeLeft(now)};
}

HoldAction SleepHold::letGo(Seconds now, HoldEnd end) {
  switch (phase_) {
    case HoldPhase::lettingGo:
    case HoldPhase::ended:
      return std::nullopt;
    case HoldPhase::idle:
    case HoldPhase::waiting:
    case HoldPhase::paused:
      // Nothing is held; should the helper hold in spite of that, the end of the connection tells it.
      finish(end);
      return std::nullopt;
    case HoldPhase::asking:
    case HoldPhase::held:
      break;
  }
  phase_ = HoldPhase::lettingGo;
  end_ = end;
  problem_.clear();
  problemKind_.reset();
  patience_ = now + kLetGoPatience;
  return AskToEnable{++ticket_};
}

void SleepHold::finish(HoldEnd end) {
  phase_ = HoldPhase::ended;
  end_ = end;
  ++ticket_;
}

void SleepHold::noAnswer(const HelperProblem& problem, Seconds now) {
  problem_ = problem.text;
  problemKind_ = problem.kind;
  switch (problem.kind) {
    case HelperProblemKind::refused:
      return finish(HoldEnd::refused);
    case HelperProblemKind::notInstalled:
    case HelperProblemKind::unreachable:
      if (!everHeld_) return finish(HoldEnd::failed);
      return waitForBeat(now);
  }
}

void SleepHold::waitForBeat(Seconds now) {
  phase_ = HoldPhase::waiting;
  nextBeat_ = now + LidSleepLimits::heartbeatInterval;
}

}  // namespace brindle
