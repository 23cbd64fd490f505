#include "platform/sleep_holder.h"

namespace brindle {

namespace {

template <typename... Ts>
struct Overloaded : Ts... {
  using Ts::operator()...;
};
template <typename... Ts>
Overloaded(Ts...) -> Overloaded<Ts...>;

/// Phases on the way to another one are nothing to tell.
bool isNews(HoldPhase phase) {
  switch (phase) {
    case HoldPhase::held:
    case HoldPhase::waiting:
    case HoldPhase::paused:
    case HoldPhase::ended:
      return true;
    case HoldPhase::idle:
    case HoldPhase::asking:
    case HoldPhase::lettingGo:
      return false;
  }
  return false;
}

}  // namespace

SleepHolder::SleepHolder(Parts parts, std::function<void(const HoldNews&)> told)
    : parts_(parts), told_(std::move(told)) {}

SleepHolder::~SleepHolder() {
  parts_.timer.setAlarm(std::nullopt, nullptr);
  parts_.client.onPresence(nullptr);
}

void SleepHolder::hold(Seconds duration) {
  parts_.client.onPresence([this](HelperPresence presence) {
    switch (presence) {
      case HelperPresence::vanished:
        hold_.vanished(parts_.timer.now());
        return settle();
      case HelperPresence::appeared:
        return act(hold_.appeared(parts_.timer.now()));
    }
  });
  parts_.gate.watch([this, alive = std::weak_ptr(alive_)](const PowerVerdict& now) {
    if (!alive.expired()) verdict(now);
  });
  act(hold_.begin(parts_.timer.now(), duration, !verdict_.mayHold));
}

void SleepHolder::letGo() { act(hold_.release(parts_.timer.now())); }

void SleepHolder::verdict(const PowerVerdict& verdict) {
  verdict_ = verdict;
  act(verdict.mayHold ? hold_.resume(parts_.timer.now()) : hold_.pause());
}

void SleepHolder::act(const HoldAction& action) {
  const std::weak_ptr alive = alive_;
  const auto sleepAnswered = [this, alive](HoldTicket ticket) {
    return [this, alive, ticket](const HelperAnswer<SleepReply>& answer) {
      if (alive.expired()) return;
      answer_ = answer ? answer->message : "";
      act(hold_.sleepAnswered(ticket, answer, parts_.timer.now()));
    };
  };
  if (action) {
    std::visit(Overloaded{
                   [&](const AskToDisable& ask) {
                     parts_.client.setSleepDisabled({.disabled = true, .maxDuration = ask.maxDuration},
                                                    sleepAnswered(ask.ticket));
                   },
                   [&](const AskToEnable& ask) {
                     parts_.client.setSleepDisabled({.disabled = false}, sleepAnswered(ask.ticket));
                   },
                   [&](const SendHeartbeat& beat) {
                     parts_.client.heartbeat([this, alive, ticket = beat.ticket](const HelperAnswer<bool>& answer) {
                       if (!alive.expired()) act(hold_.heartbeatAnswered(ticket, answer, parts_.timer.now()));
                     });
                   },
               },
               *action);
  }
  settle();
}

void SleepHolder::settle() {
  parts_.timer.setAlarm(hold_.nextAlarm(), [this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) act(hold_.tick(parts_.timer.now()));
  });
  const HoldPhase phase = hold_.phase();
  if (phase == toldPhase_ || !isNews(phase)) return;
  toldPhase_ = phase;
  told_(news());  // last: whoever is told may destroy this holder
}

HoldNews SleepHolder::news() const {
  HoldNews news = {.phase = hold_.phase(), .text = hold_.problem(), .problem = hold_.problemKind()};
  if (news.phase == HoldPhase::held) news.text = answer_;
  if (news.phase == HoldPhase::paused) news.text = verdict_.why;
  if (news.phase == HoldPhase::ended) news.end = hold_.end();
  return news;
}

}  // namespace brindle
