#include "logic/plan/plan_alert_tracker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/json_writer.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'000'000);
constexpr Date kResets = dateFromSeconds(1'003'619);  // 16726 whole minutes
constexpr auto kSession = PlanWindowKind::session;

TEST(PlanAlertTracker, AlertsOnceForAWindow) {
  PlanAlertTracker tracker;
  EXPECT_FALSE(tracker.shouldAlert("a", kSession, kResets, 89.99, kNow));
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, kResets, 90, kNow));
  EXPECT_FALSE(tracker.shouldAlert("a", kSession, kResets, 95, kNow + Seconds{60}));
}

TEST(PlanAlertTracker, RemembersTheAlertUnderAccountWindowAndMinuteOfReset) {
  PlanAlertTracker tracker;
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, kResets, 90, kNow));
  EXPECT_TRUE(tracker.shouldAlert("a", PlanWindowKind::week, std::nullopt, 90, kNow));
  EXPECT_EQ(tracker.sent, (std::map<std::string, Date>{{"a|session|16726", kNow}, {"a|week|0", kNow}}));
}

TEST(PlanAlertTracker, AlertsAgainForANewResetDate) {
  PlanAlertTracker tracker;
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, kResets, 95, kNow));
  EXPECT_FALSE(tracker.shouldAlert("a", kSession, kResets + Seconds{0.9}, 95, kNow));
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, kResets + Seconds{18000}, 95, kNow));
}

TEST(PlanAlertTracker, AlertsOnceForEachAccountAndEachKind) {
  PlanAlertTracker tracker;
  for (const auto kind : {kSession, PlanWindowKind::week}) {
    for (const char* account : {"a", "b"}) {
      EXPECT_TRUE(tracker.shouldAlert(account, kind, kResets, 95, kNow));
      EXPECT_FALSE(tracker.shouldAlert(account, kind, kResets, 95, kNow));
    }
  }
}

TEST(PlanAlertTracker, SharesOneAlertBetweenWindowsWithoutAResetDateForEightDays) {
  PlanAlertTracker tracker;
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, std::nullopt, 95, kNow));
  EXPECT_FALSE(tracker.shouldAlert("a", kSession, std::nullopt, 95, kNow + Seconds{691199}));
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, std::nullopt, 95, kNow + Seconds{691200}));
}

TEST(PlanAlertTracker, TruncatesTheMinuteTowardZero) {
  PlanAlertTracker tracker;
  EXPECT_TRUE(tracker.shouldAlert("a", kSession, dateFromSeconds(-59), 95, kNow));
  EXPECT_TRUE(tracker.shouldAlert("b", kSession, dateFromSeconds(-61), 95, kNow));
  EXPECT_TRUE(tracker.shouldAlert("c", kSession, dateFromSeconds(119.9), 95, kNow));
  EXPECT_TRUE(tracker.sent.contains("a|session|0"));
  EXPECT_TRUE(tracker.sent.contains("b|session|-1"));
  EXPECT_TRUE(tracker.sent.contains("c|session|1"));
}

TEST(PlanAlertTracker, DropsOldEntriesEvenBelowTheThreshold) {
  PlanAlertTracker tracker{.sent = {{"old", kNow}, {"young", kNow + Seconds{1}}}};
  EXPECT_FALSE(tracker.shouldAlert("a", kSession, kResets, 10, kNow + Seconds{691200}));
  EXPECT_EQ(tracker.sent, (std::map<std::string, Date>{{"young", kNow + Seconds{1}}}));
}

TEST(PlanAlertTracker, TakesAnyInputWithoutFailing) {
  PlanAlertTracker tracker;
  EXPECT_FALSE(tracker.shouldAlert("", kSession, kResets, std::nan(""), kNow));
  EXPECT_TRUE(tracker.shouldAlert("", kSession, dateFromSeconds(std::nan("")), 1e300, kNow));
  EXPECT_TRUE(tracker.shouldAlert("", kSession, dateFromSeconds(1e300), 90, kNow));
}

TEST(PlanAlertTracker, SaysHowMuchIsUsed) {
  EXPECT_EQ(PlanAlertTracker::alertText("Claude (Pro and Max)", 92, PlanWindowKind::week),
            "Claude (Pro and Max) at 92% this week");
  EXPECT_EQ(PlanAlertTracker::alertText("Work", 92, kSession), "Work at 92%");
}

TEST(PlanAlertTracker, RoundsTheUseDown) {
  EXPECT_EQ(PlanAlertTracker::alertText("Work", 99.7, kSession), "Work at 99%");
  EXPECT_EQ(PlanAlertTracker::alertText("Work", -0.5, kSession), "Work at -1%");
  EXPECT_EQ(PlanAlertTracker::alertText("Work", std::nan(""), kSession), "Work at 0%");
}

TEST(PlanAlertTracker, RoundTripsItsDatesAsSeconds) {
  const PlanAlertTracker tracker{.sent = {{"b|week|0", dateFromSeconds(2.5)}, {"a|session|1", kNow}}};
  EXPECT_EQ(writeJson(encode(tracker)), R"({"sent":{"a|session|1":1000000,"b|week|0":2.5}})");
  EXPECT_EQ(decodePlanAlertTracker(encode(tracker)), tracker);
  EXPECT_EQ(decodePlanAlertTracker(encode(PlanAlertTracker{})), PlanAlertTracker{});
}

TEST(PlanAlertTracker, RefusesWhatIsNoMapOfNumbers) {
  EXPECT_EQ(decodePlanAlertTracker({}), std::nullopt);
  for (const JsonValue& wrong : {JsonValue(), JsonValue(1), JsonValue("x"), JsonValue(true), JsonValue(JsonArray{})}) {
    EXPECT_EQ(decodePlanAlertTracker(JsonObject{{"sent", wrong}}), std::nullopt);
  }
  for (const JsonValue& wrong : {JsonValue(), JsonValue("1"), JsonValue(true), JsonValue(JsonArray{})}) {
    EXPECT_EQ(decodePlanAlertTracker(JsonObject{{"sent", JsonObject{{"a", 1}, {"b", wrong}}}}), std::nullopt);
  }
}

TEST(PlanAlertTracker, HoldsTheAgreedLimits) {
  EXPECT_EQ(PlanAlertTracker::kThreshold, 90);
  EXPECT_EQ(PlanAlertTracker::kRetention, Seconds{8 * 86400});
}

}  // namespace
}  // namespace brindle
