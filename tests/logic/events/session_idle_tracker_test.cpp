#include "logic/events/session_idle_tracker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brindle {
namespace {

using Sample = SessionIdleTracker::Sample;
using Keys = std::vector<std::string>;
constexpr Date kNow = dateFromSeconds(1'000'000);
constexpr Seconds kIdleAfter{120};

Date at(double seconds) { return kNow + Seconds{seconds}; }

class Tracker {
 public:
  Keys pass(double seconds, std::vector<Sample> samples) { return inner.update(samples, at(seconds), kIdleAfter); }
  SessionIdleTracker inner;
};

Sample busy(const std::string& key = "a") { return {.key = key, .cpu = 80}; }
Sample quiet(const std::string& key = "a") { return {.key = key, .cpu = 0.1}; }

TEST(SessionIdleTracker, ReportsASessionOnceWhenItHasBeenQuietForLongEnough) {
  Tracker tracker;
  EXPECT_EQ(tracker.pass(0, {busy()}), Keys{});
  EXPECT_EQ(tracker.pass(60, {quiet()}), Keys{});
  EXPECT_EQ(tracker.pass(119.999, {quiet()}), Keys{});
  EXPECT_EQ(tracker.pass(120, {quiet()}), Keys{"a"});
  EXPECT_EQ(tracker.pass(180, {quiet()}), Keys{});
}

TEST(SessionIdleTracker, NeverReportsASessionThatWasNeverBusy) {
  Tracker tracker;
  for (int i = 0; i < 100; ++i) EXPECT_EQ(tracker.pass(i * 600, {quiet()}), Keys{});
}

TEST(SessionIdleTracker, ReportsAgainAfterANewBusySpell) {
  Tracker tracker;
  EXPECT_EQ(tracker.pass(0, {busy()}), Keys{});
  EXPECT_EQ(tracker.pass(120, {quiet()}), Keys{"a"});
  EXPECT_EQ(tracker.pass(130, {busy()}), Keys{});
  EXPECT_EQ(tracker.pass(249, {quiet()}), Keys{});
  EXPECT_EQ(tracker.pass(250, {quiet()}), Keys{"a"});
}

TEST(SessionIdleTracker, CountsALoadOfExactlyFiveAsBusy) {
  for (const auto& [cpu, reported] :
       std::vector<std::pair<double, bool>>{{4.99, false},
                                            {5.0, true},
                                            {5.01, true},
                                            {std::nan(""), false},
                                            {std::numeric_limits<double>::infinity(), true}}) {
    Tracker tracker;
    EXPECT_EQ(tracker.pass(0, {{.key = "a", .cpu = cpu}}), Keys{});
    EXPECT_EQ(tracker.pass(120, {quiet()}), reported ? Keys{"a"} : Keys{}) << cpu;
  }
}

TEST(SessionIdleTracker, CountsAForcedQuietSampleAsQuietWhateverItsLoad) {
  Tracker tracker;
  EXPECT_EQ(tracker.pass(0, {busy()}), Keys{});
  EXPECT_EQ(tracker.pass(120, {{.key = "a", .cpu = 100, .forcedQuiet = true}}), Keys{"a"});
  Tracker other;
  EXPECT_EQ(other.pass(0, {{.key = "a", .cpu = 100, .forcedQuiet = true}}), Keys{});
  EXPECT_EQ(other.pass(120, {quiet()}), Keys{});
}

TEST(SessionIdleTracker, StartsAfreshWhenAKeyComesBack) {
  Tracker tracker;
  EXPECT_EQ(tracker.pass(0, {busy()}), Keys{});
  EXPECT_EQ(tracker.pass(10, {}), Keys{});
  EXPECT_TRUE(tracker.inner.states().empty());
  EXPECT_EQ(tracker.pass(20, {quiet()}), Keys{});
  EXPECT_EQ(tracker.inner.states().at("a"), (SessionIdleTracker::State{.firstSeen = at(20)}));
  EXPECT_EQ(tracker.pass(500, {quiet()}), Keys{});
  EXPECT_EQ(tracker.pass(510, {busy()}), Keys{});
  EXPECT_EQ(tracker.pass(630, {quiet()}), Keys{"a"});
}

TEST(SessionIdleTracker, ReportsInTheOrderOfTheSamples) {
  Tracker tracker;
  EXPECT_EQ(tracker.pass(0, {busy("a"), busy("b"), busy("c")}), Keys{});
  EXPECT_EQ(tracker.pass(200, {quiet("c"), quiet("a"), busy("b")}), (Keys{"c", "a"}));
}

TEST(SessionIdleTracker, RemembersWhatItSaw) {
  Tracker tracker;
  (void)tracker.pass(0, {quiet()});
  (void)tracker.pass(10, {busy()});
  EXPECT_EQ(tracker.inner.states().at("a"),
            (SessionIdleTracker::State{.firstSeen = at(0), .lastBusy = at(10), .everBusy = true}));
  (void)tracker.pass(130, {quiet()});
  EXPECT_EQ(
      tracker.inner.states().at("a"),
      (SessionIdleTracker::State{.firstSeen = at(0), .lastBusy = at(10), .everBusy = true, .reportedIdle = true}));
  (void)tracker.pass(140, {busy()});
  EXPECT_EQ(tracker.inner.states().at("a"),
            (SessionIdleTracker::State{.firstSeen = at(0), .lastBusy = at(140), .everBusy = true}));
}

TEST(SessionIdleTracker, ForgetsOnlyTheKeysOfWhichAPassSaysNothing) {
  Tracker tracker;
  (void)tracker.pass(0, {busy("a"), busy("b")});
  (void)tracker.pass(10, {quiet("b")});
  EXPECT_EQ(tracker.inner.states().size(), 1U);
  EXPECT_EQ(tracker.pass(120, {quiet("a"), quiet("b")}), Keys{"b"});
}

TEST(SessionIdleTracker, TakesAKeyTwiceInOnePassInTurn) {
  Tracker tracker;
  EXPECT_EQ(tracker.pass(0, {busy(), quiet()}), Keys{});
  EXPECT_EQ(tracker.pass(120, {quiet(), quiet()}), Keys{"a"});
  EXPECT_EQ(tracker.inner.states().size(), 1U);
}

TEST(SessionIdleTracker, ReportsAtOnceWhenNoQuietTimeIsAskedFor) {
  SessionIdleTracker tracker;
  EXPECT_EQ(tracker.update(std::vector{busy()}, kNow, Seconds{0}), Keys{});
  EXPECT_EQ(tracker.update(std::vector{quiet()}, kNow, Seconds{0}), Keys{"a"});
}

TEST(SessionIdleTracker, IsNotRecentlyActiveForAnUnknownKey) {
  EXPECT_FALSE(SessionIdleTracker{}.recentlyActive("a", kNow, Seconds{1e9}));
}

TEST(SessionIdleTracker, MeasuresActivityFromTheLastBusySample) {
  Tracker tracker;
  (void)tracker.pass(0, {quiet()});
  (void)tracker.pass(100, {busy()});
  EXPECT_TRUE(tracker.inner.recentlyActive("a", at(159.999), Seconds{60}));
  EXPECT_FALSE(tracker.inner.recentlyActive("a", at(160), Seconds{60}));
}

TEST(SessionIdleTracker, MeasuresActivityFromTheFirstSampleWhenNeverBusy) {
  Tracker tracker;
  (void)tracker.pass(0, {quiet()});
  (void)tracker.pass(50, {quiet()});
  EXPECT_TRUE(tracker.inner.recentlyActive("a", at(59), Seconds{60}));
  EXPECT_FALSE(tracker.inner.recentlyActive("a", at(60), Seconds{60}));
}

}  // namespace
}  // namespace brindle
