// A hold against the helper's real policy, over random histories: whatever happens, the hold finds back to a helper
// that answers, and sleep never stays off longer than was asked for.
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include "logic/helper/helper_revert_policy.h"
#include "logic/helper/lid_sleep_limits.h"
#include "tests/platform/hold_builders.h"

namespace brindle {
namespace {

/// The helper as a hold meets it: the policy, and whether it answers at all.
struct World {
  HelperRevertPolicy policy;
  bool reachable = true;
  Seconds now{0};
  SleepHold hold;

  [[nodiscard]] Date date() const { return dateFromSeconds(1e9 + now.count()); }

  HelperAnswer<SleepReply> request(bool disable, Seconds duration) {
    if (!reachable) return trouble(HelperProblemKind::unreachable);
    const RequestAnswer answer = policy.request(disable, date(), duration);
    if (std::holds_alternative<RequestRefused>(answer)) return no(std::string(HelperReplyText::kMaxDurationReached));
    return yes();
  }

  /// Carries out an action and everything that follows from its answer.
  void carryOut(HoldAction action) {
    for (int rounds = 0; action; ++rounds) {
      RC_ASSERT(rounds < 4);  // a hold never answers an answer for ever
      if (const auto* ask = std::get_if<AskToDisable>(&*action)) {
        RC_ASSERT(ask->maxDuration >= Seconds{0});
        action = hold.sleepAnswered(ask->ticket, request(true, ask->maxDuration), now);
      } else if (const auto* enable = std::get_if<AskToEnable>(&*action)) {
        action = hold.sleepAnswered(enable->ticket, request(false, Seconds{0}), now);
      } else {
        const auto* beat = std::get_if<SendHeartbeat>(&*action);
        if (!reachable) {
          action = hold.heartbeatAnswered(beat->ticket, trouble(HelperProblemKind::unreachable), now);
          continue;
        }
        policy.heartbeat(date());
        action = hold.heartbeatAnswered(beat->ticket, policy.sleepDisabled, now);
      }
    }
  }

  void pass(Seconds span) {
    now += span;
    static_cast<void>(policy.tick(date()));
    carryOut(hold.tick(now));
  }
};

enum class Event {
  tick,
  longSleep,
  restart,
  vanish,
  appear,
  unreachable,
  reachable,
  otherLetsGo,
  otherLeaves,
  pause,
  resume
};

void happen(World& world, Event event) {
  switch (event) {
    case Event::tick:
      return world.pass(Seconds{5});
    case Event::longSleep:
      return world.pass(Seconds{static_cast<double>(*rc::gen::inRange(60, 400))});
    case Event::restart:
      static_cast<void>(world.policy.helperStarted());
      return;
    case Event::vanish:
      static_cast<void>(world.policy.helperStarted());
      return world.hold.vanished(world.now);
    case Event::appear:
      return world.carryOut(world.hold.appeared(world.now));
    case Event::unreachable:
      world.reachable = false;
      return;
    case Event::reachable:
      world.reachable = true;
      return;
    case Event::otherLetsGo:
      static_cast<void>(world.policy.request(false, world.date(), Seconds{0}));
      return;
    case Event::otherLeaves:
      static_cast<void>(world.policy.connectionLost());
      return;
    case Event::pause:
      return world.carryOut(world.hold.pause());
    case Event::resume:
      return world.carryOut(world.hold.resume(world.now));
  }
}

Event anyEvent() {
  using enum Event;
  return *rc::gen::weightedElement<Event>({{10, tick},
                                           {2, longSleep},
                                           {1, restart},
                                           {1, vanish},
                                           {1, appear},
                                           {1, unreachable},
                                           {2, reachable},
                                           {1, otherLetsGo},
                                           {1, otherLeaves},
                                           {1, pause},
                                           {2, resume}});
}

constexpr Seconds kDuration{1800};

RC_GTEST_PROP(SleepHoldHistory, HoldsAgainWithinOneBeatOnceTheHelperAnswers, ()) {
  World world;
  world.carryOut(world.hold.begin(world.now, kDuration, false));
  const int length = *rc::gen::inRange(0, 60);
  for (int step = 0; step < length; ++step) happen(world, anyEvent());
  RC_PRE(world.hold.phase() != HoldPhase::ended);
  RC_PRE(world.hold.timeLeft(world.now) > Seconds{60});
  world.reachable = true;
  world.carryOut(world.hold.resume(world.now));
  for (int step = 0; step < 7; ++step) world.pass(Seconds{5});
  RC_ASSERT(world.policy.sleepDisabled || world.policy.expired);
  RC_ASSERT(world.policy.expired || world.hold.phase() == HoldPhase::held);
}

RC_GTEST_PROP(SleepHoldHistory, IsOverWhenItsTimeIsAndSleepIsOnThen, ()) {
  World world;
  world.carryOut(world.hold.begin(world.now, kDuration, false));
  const int length = *rc::gen::inRange(0, 60);
  for (int step = 0; step < length; ++step) happen(world, anyEvent());
  world.reachable = true;
  while (world.now < kDuration) world.pass(Seconds{5});
  RC_ASSERT(world.hold.phase() == HoldPhase::ended);
  RC_ASSERT(world.hold.end().has_value());
  static_cast<void>(world.policy.connectionLost());  // its process goes
  RC_ASSERT(!world.policy.sleepDisabled);
}

RC_GTEST_PROP(SleepHoldHistory, AnAlarmIsAlwaysAheadOrDueAndTickTakesItAway, ()) {
  World world;
  world.carryOut(world.hold.begin(world.now, kDuration, false));
  const int length = *rc::gen::inRange(0, 60);
  for (int step = 0; step < length; ++step) {
    happen(world, anyEvent());
    world.carryOut(world.hold.tick(world.now));
    const auto alarm = world.hold.nextAlarm();
    RC_ASSERT(alarm.has_value() == (world.hold.phase() != HoldPhase::ended));
    RC_ASSERT(!alarm || *alarm > world.now);
    const SleepHold before = world.hold;
    RC_ASSERT(!world.hold.tick(world.now));
    RC_ASSERT(world.hold == before);
  }
}

}  // namespace
}  // namespace brindle
