#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>

#include "logic/events/agent_notifier.h"

namespace brindle {
namespace {

constexpr AgentNotifyRules kRules{.finished = true, .needsApproval = true};

AgentEvent anyEvent(double now) {
  return {.time = dateFromSeconds(now - *rc::gen::inRange(0, 20)),
          .agent = "A",
          .kind = *rc::gen::element(AgentEventKind::finished, AgentEventKind::needsApproval, AgentEventKind::waiting),
          .pid = *rc::gen::element<std::optional<std::int32_t>>(std::nullopt, 1, 2),
          .sessionID = *rc::gen::element<std::optional<std::string>>(std::nullopt, "x", "y", "z")};
}

AgentNotifyRules anyRules() {
  AgentNotifyRules rules = kRules;
  rules.approvalDelay = Seconds{*rc::gen::element(0.0, 1.0, 30.0)};
  rules.needsApproval = *rc::gen::inRange(0, 10) > 0;
  return rules;
}

/// Runs a random history and hands every announcement to `seen(event, now)`.
template <typename Seen>
void runHistory(AgentNotifier& notifier, Seen seen) {
  double now = 1e6;
  const int length = *rc::gen::inRange(0, 80);
  for (int i = 0; i < length; ++i) {
    now += *rc::gen::element(0.0, 0.5, 1.0, 5.0, 9.999, 10.0, 30.0, 600.0, 3600.0);
    const AgentNotifyRules rules = anyRules();
    if (*rc::gen::inRange(0, 3) == 0) {
      const auto released = notifier.releaseDue(dateFromSeconds(now), rules, [](const auto&) { return true; });
      RC_ASSERT(std::is_sorted(released.begin(), released.end(),
                               [](const auto& a, const auto& b) { return a.time < b.time; }));
      for (const AgentEvent& event : released) seen(event, now);
    } else if (const auto event = notifier.handle(anyEvent(now), rules, dateFromSeconds(now))) {
      seen(*event, now);
    }
    for (const auto& [key, date] : notifier.posted()) RC_ASSERT(date <= dateFromSeconds(now));
  }
}

RC_GTEST_PROP(AgentNotifierProperty, NeverAnnouncesTheSameTwiceWithinTheWindow, ()) {
  AgentNotifier notifier;
  std::map<std::pair<AgentEventKind, std::string>, double> last;
  runHistory(notifier, [&](const AgentEvent& event, double now) {
    const auto key = std::make_pair(event.kind, sessionKey(event));
    const auto previous = last.find(key);
    if (previous != last.end()) RC_ASSERT(now - previous->second >= 10);
    last[key] = now;
  });
}

RC_GTEST_PROP(AgentNotifierProperty, NeverHoldsMoreThanOneRequestASessionNorPastItsRelease, ()) {
  AgentNotifier notifier;
  runHistory(notifier, [](const AgentEvent&, double) {});
  for (const auto& [key, request] : notifier.pending()) {
    RC_ASSERT(sessionKey(request.event) == key);
    RC_ASSERT(request.event.kind == AgentEventKind::needsApproval);
  }
  (void)notifier.releaseDue(dateFromSeconds(1e12), kRules, [](const auto&) { return true; });
  RC_ASSERT(notifier.pending().empty());
}

RC_GTEST_PROP(AgentNotifierProperty, AnnouncesNothingThatIsSwitchedOff, ()) {
  AgentNotifier notifier;
  double now = 1e6;
  const int length = *rc::gen::inRange(0, 60);
  for (int i = 0; i < length; ++i) {
    now += *rc::gen::inRange(0, 1000);
    RC_ASSERT(!notifier.handle(anyEvent(now), AgentNotifyRules{}, dateFromSeconds(now)));
  }
  RC_ASSERT(notifier.posted().empty());
  RC_ASSERT(notifier.pending().empty());
}

}  // namespace
}  // namespace brindle
