// A helper, a clock and a battery that do what the test says; for the holder and for the commands that hold.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "platform/sleep_holder.h"

namespace brindle {

/// Remembers calls, and answers the oldest one when told to.
class FakeHelperClient : public HelperClient {
 public:
  void setSleepDisabled(const SleepRequest& request, SleepAnswered answered) override {
    calls.push_back(request.disabled ? "disable " + std::to_string(static_cast<int>(request.maxDuration.count()))
                                     : "enable");
    sleepPending.push_back(std::move(answered));
    if (onCall) onCall();
  }
  void heartbeat(HeartbeatAnswered answered) override {
    calls.emplace_back("heartbeat");
    beatPending.push_back(std::move(answered));
  }
  void status(StatusAnswered) override { calls.emplace_back("status"); }
  void onPresence(std::function<void(HelperPresence)> function) override { changed = std::move(function); }

  void answer(const SleepReply& reply) { next(sleepPending)(reply); }
  void noAnswer(const HelperProblem& problem) { next(sleepPending)(tl::make_unexpected(problem)); }
  void beat(bool disabled) { next(beatPending)(disabled); }
  void noBeat(const HelperProblem& problem) { next(beatPending)(tl::make_unexpected(problem)); }
  void presence(HelperPresence presence) {
    if (changed) changed(presence);
  }

  std::vector<std::string> calls;
  std::deque<SleepAnswered> sleepPending;
  std::deque<HeartbeatAnswered> beatPending;
  std::function<void(HelperPresence)> changed;
  /// Called at the end of each setSleepDisabled(), for tests that run a loop.
  std::function<void()> onCall;

 private:
  template <typename T>
  static T next(std::deque<T>& pending) {
    T first = pending.at(0);
    pending.pop_front();
    return first;
  }
};

/// A clock that is turned by hand.
class HandTimer : public HoldTimer {
 public:
  [[nodiscard]] Seconds now() const override { return now_; }
  void setAlarm(std::optional<Seconds> moment, std::function<void()> function) override {
    alarm = moment;
    function_ = std::move(function);
  }
  /// Turns the clock, ringing once at the end if the alarm is due.
  void pass(Seconds span) {
    now_ += span;
    if (!alarm || *alarm > now_) return;
    const auto function = function_;
    alarm.reset();
    function();
  }

  std::optional<Seconds> alarm;

 private:
  Seconds now_{5000};
  std::function<void()> function_;
};

class FakePowerGate : public PowerGate {
 public:
  void watch(std::function<void(const PowerVerdict&)> function) override {
    changed = std::move(function);
    changed(verdict);
  }
  void change(const PowerVerdict& next) {
    verdict = next;
    if (changed) changed(verdict);
  }

  PowerVerdict verdict;
  std::function<void(const PowerVerdict&)> changed;
};

inline void PrintTo(const HoldNews& news, std::ostream* stream) {
  *stream << textOf(news.phase) << ' ' << (news.end ? textOf(*news.end) : "") << " \"" << news.text << '"';
}

}  // namespace brindle
