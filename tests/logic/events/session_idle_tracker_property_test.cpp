#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <set>

#include "logic/events/session_idle_tracker.h"

namespace brindle {
namespace {

using Sample = SessionIdleTracker::Sample;

std::vector<Sample> anyPass() {
  std::vector<Sample> samples;
  for (const char* key : {"a", "b", "c"}) {
    if (*rc::gen::inRange(0, 12) == 0) continue;
    samples.push_back({key, *rc::gen::element(0.0, 4.99, 5.0, 90.0), *rc::gen::inRange(0, 8) == 0});
  }
  return samples;
}

/// What is known of a key from the samples alone.
struct Spell {
  double lastBusy = 0;
  bool reported = false;
};

RC_GTEST_PROP(SessionIdleTrackerProperty, ReportsExactlyOnceASpellOfQuietAfterWork, ()) {
  constexpr double kIdleAfter = 120;
  SessionIdleTracker tracker;
  std::map<std::string, Spell> spells;  // keys that have been busy since they appeared
  double now = 1e6;
  const int length = *rc::gen::inRange(0, 60);
  for (int i = 0; i < length; ++i) {
    now += *rc::gen::element(0.0, 1.0, 30.0, 60.0, 119.999, 120.0, 500.0);
    const auto samples = anyPass();
    const auto reported = tracker.update(samples, dateFromSeconds(now), Seconds{kIdleAfter});
    std::vector<std::string> expected;
    std::set<std::string> present;
    for (const Sample& sample : samples) {
      present.insert(sample.key);
      if (sample.cpu >= 5 && !sample.forcedQuiet) {
        spells[sample.key] = {.lastBusy = now};
      } else if (const auto spell = spells.find(sample.key);
                 spell != spells.end() && !spell->second.reported && now - spell->second.lastBusy >= kIdleAfter) {
        spell->second.reported = true;
        expected.push_back(sample.key);
      }
    }
    std::erase_if(spells, [&](const auto& spell) { return !present.contains(spell.first); });
    RC_ASSERT(reported == expected);
    RC_ASSERT(tracker.states().size() == present.size());
  }
}

}  // namespace
}  // namespace brindle
