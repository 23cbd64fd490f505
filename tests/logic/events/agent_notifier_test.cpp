#include "logic/events/agent_notifier.h"

#include <gtest/gtest.h>

#include <cmath>

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'000'000);
constexpr AgentNotifyRules kAll{.finished = true, .needsApproval = true};
constexpr AgentNotifyRules kAtOnce{.finished = true, .needsApproval = true, .approvalDelay = Seconds{0}};

Date at(double seconds) { return kNow + Seconds{seconds}; }

AgentEvent event(AgentEventKind kind, const std::string& session = "s") {
  return {.id = session, .time = kNow, .agent = "Codex", .kind = kind, .sessionID = session};
}

AgentEvent finished(const std::string& session = "s") { return event(AgentEventKind::finished, session); }
AgentEvent approval(const std::string& session = "s") { return event(AgentEventKind::needsApproval, session); }
AgentEvent waiting(const std::string& session = "s") { return event(AgentEventKind::waiting, session); }

bool always(const AgentEvent&) { return true; }
bool never(const AgentEvent&) { return false; }

using Events = std::vector<AgentEvent>;

TEST(AgentNotifier, AnnouncesAFinishedTurnAndADelayedApproval) {
  AgentNotifier notifier;
  EXPECT_EQ(notifier.handle(finished(), kAll, kNow), finished());
  EXPECT_EQ(notifier.handle(approval(), kAll, kNow), std::nullopt);
  EXPECT_EQ(notifier.releaseDue(at(29), kAll, always), Events{});
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), Events{approval()});
  EXPECT_EQ(notifier.releaseDue(at(31), kAll, always), Events{});
}

TEST(AgentNotifier, BeginsEmpty) {
  const AgentNotifier notifier;
  EXPECT_TRUE(notifier.pending().empty());
  EXPECT_TRUE(notifier.posted().empty());
  EXPECT_TRUE(notifier.lastFinished().empty());
}

TEST(AgentNotifier, AnnouncesNothingUnderDefaultRules) {
  AgentNotifier notifier;
  for (const auto& row : allCases<AgentEventKind>()) {
    EXPECT_EQ(notifier.handle(event(row.value), AgentNotifyRules{}, kNow), std::nullopt);
  }
  EXPECT_TRUE(notifier.posted().empty());
  EXPECT_TRUE(notifier.pending().empty());
}

TEST(AgentNotifier, ForgetsPendingRequestsWhenApprovalsAreSwitchedOff) {
  AgentNotifier notifier;
  EXPECT_EQ(notifier.handle(approval(), kAll, kNow), std::nullopt);
  ASSERT_EQ(notifier.pending().size(), 1U);
  EXPECT_EQ(notifier.releaseDue(at(1), AgentNotifyRules{}, always), Events{});
  EXPECT_TRUE(notifier.pending().empty());
  EXPECT_EQ(notifier.releaseDue(at(60), kAll, always), Events{});
}

TEST(AgentNotifier, DoesNotRepeatAnAnnouncementWithinTenSeconds) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished(), kAll, kNow));
  EXPECT_FALSE(notifier.handle(finished(), kAll, at(5)));
  EXPECT_FALSE(notifier.handle(finished(), kAll, at(9.999)));
  EXPECT_TRUE(notifier.handle(finished(), kAll, at(10)));
}

TEST(AgentNotifier, RepeatsAnAnnouncementElevenSecondsLater) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished(), kAll, kNow));
  EXPECT_TRUE(notifier.handle(finished(), kAll, at(11)));
}

TEST(AgentNotifier, MeasuresTheRepeatWindowFromTheLastAnnouncementMade) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished(), kAll, kNow));
  EXPECT_FALSE(notifier.handle(finished(), kAll, at(6)));
  EXPECT_TRUE(notifier.handle(finished(), kAll, at(12)));
}

TEST(AgentNotifier, TellsSessionsAndKindsApart) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished("a"), kAtOnce, kNow));
  EXPECT_TRUE(notifier.handle(finished("b"), kAtOnce, kNow));
  EXPECT_TRUE(notifier.handle(approval("a"), kAtOnce, kNow));
  EXPECT_EQ(notifier.posted().size(), 3U);
  EXPECT_TRUE(notifier.posted().contains("finished|Codex:a"));
  EXPECT_TRUE(notifier.posted().contains("needsApproval|Codex:a"));
}

TEST(AgentNotifier, SharesOneSessionBetweenEventsWithoutSessionAndPid) {
  AgentNotifier notifier;
  AgentEvent first = finished();
  first.sessionID.reset();
  AgentEvent second = first;
  second.id = "other";
  EXPECT_TRUE(notifier.handle(first, kAll, kNow));
  EXPECT_FALSE(notifier.handle(second, kAll, at(1)));
  EXPECT_TRUE(notifier.lastFinished().contains("Codex:pid0"));
}

TEST(AgentNotifier, KeepsQuietAboutAWaitWithinTenMinutesOfAFinishedTurn) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished(), kAll, kNow));
  EXPECT_FALSE(notifier.handle(waiting(), kAll, at(599)));
  EXPECT_FALSE(notifier.handle(waiting(), kAll, at(599.999)));
  EXPECT_TRUE(notifier.handle(waiting(), kAll, at(600)));
}

TEST(AgentNotifier, AnnouncesAWaitOfASessionThatNeverFinished) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished("other"), kAll, kNow));
  EXPECT_TRUE(notifier.handle(waiting(), kAll, kNow));
}

TEST(AgentNotifier, GatesWaitsByTheFinishedSetting) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(waiting(), {.finished = false, .needsApproval = true}, kNow));
  EXPECT_TRUE(notifier.handle(waiting(), {.finished = true, .needsApproval = false}, kNow));
}

TEST(AgentNotifier, RemembersAFinishedTurnEvenWhenItIsNotAnnounced) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(finished(), {.needsApproval = true}, kNow));
  EXPECT_FALSE(notifier.handle(waiting(), kAll, at(1)));
}

TEST(AgentNotifier, TakesAPendingApprovalBackWhenTheTurnFinishes) {
  for (const AgentNotifyRules& rules : {kAll, AgentNotifyRules{.needsApproval = true}}) {
    AgentNotifier notifier;
    EXPECT_FALSE(notifier.handle(approval("a"), kAll, kNow));
    EXPECT_FALSE(notifier.handle(approval("b"), kAll, kNow));
    (void)notifier.handle(finished("a"), rules, at(10));
    EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), Events{approval("b")});
  }
}

TEST(AgentNotifier, KeepsTheDueDateOfTheFirstPendingApproval) {
  AgentNotifier notifier;
  AgentEvent second = approval();
  second.id = "second";
  EXPECT_FALSE(notifier.handle(approval(), kAll, kNow));
  EXPECT_FALSE(notifier.handle(second, kAll, at(20)));
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), Events{approval()});
  EXPECT_EQ(notifier.releaseDue(at(50), kAll, always), Events{});
}

TEST(AgentNotifier, AnnouncesApprovalsAtOnceWithoutADelay) {
  for (const double delay : {0.0, -1.0, std::nan("")}) {
    AgentNotifier notifier;
    EXPECT_EQ(notifier.handle(approval(), {.needsApproval = true, .approvalDelay = Seconds{delay}}, kNow), approval());
    EXPECT_TRUE(notifier.pending().empty());
  }
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(approval(), {.needsApproval = true, .approvalDelay = Seconds{0.001}}, kNow));
}

TEST(AgentNotifier, IgnoresApprovalsThatAreSwitchedOff) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(approval(), {.finished = true, .approvalDelay = Seconds{0}}, kNow));
  EXPECT_FALSE(notifier.handle(approval(), {.finished = true}, kNow));
  EXPECT_TRUE(notifier.pending().empty());
}

TEST(AgentNotifier, AsksOnceWhetherEachDueRequestIsStillWanted) {
  AgentNotifier notifier;
  for (const char* session : {"a", "b", "c"}) EXPECT_FALSE(notifier.handle(approval(session), kAll, kNow));
  AgentNotifyRules slow = kAll;
  slow.approvalDelay = Seconds{300};
  EXPECT_FALSE(notifier.handle(approval("later"), slow, kNow));
  std::vector<std::string> asked;
  const auto released = notifier.releaseDue(at(30), kAll, [&](const AgentEvent& due) {
    asked.push_back(due.id);
    return due.id != "b";
  });
  EXPECT_EQ(asked, (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(released, (Events{approval("a"), approval("c")}));
  EXPECT_EQ(notifier.pending().size(), 1U);
}

TEST(AgentNotifier, DropsARequestThatIsNoLongerWanted) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(approval(), kAll, kNow));
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, never), Events{});
  EXPECT_TRUE(notifier.pending().empty());
  EXPECT_TRUE(notifier.posted().empty());
}

TEST(AgentNotifier, SortsReleasedRequestsByTheTimeOfTheirEvents) {
  AgentNotifier notifier;
  AgentEvent old = approval("z");
  old.time = at(-100);
  AgentEvent recent = approval("a");
  recent.time = at(-1);
  EXPECT_FALSE(notifier.handle(recent, kAll, kNow));
  EXPECT_FALSE(notifier.handle(old, kAll, kNow));
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), (Events{old, recent}));
}

TEST(AgentNotifier, KeepsRequestsOfEqualTimeInTheOrderInWhichTheyCame) {
  AgentNotifier notifier;
  for (const char* session : {"c", "a", "b"}) EXPECT_FALSE(notifier.handle(approval(session), kAll, kNow));
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), (Events{approval("c"), approval("a"), approval("b")}));
}

TEST(AgentNotifier, SortsTimesThatAreNoNumbersWithoutFailing) {
  AgentNotifier notifier;
  for (int i = 0; i < 40; ++i) {
    AgentEvent odd = approval(std::to_string(i));
    odd.time = i % 3 == 0 ? dateFromSeconds(std::nan("")) : at(-i);
    EXPECT_FALSE(notifier.handle(odd, kAll, kNow));
  }
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always).size(), 40U);
}

TEST(AgentNotifier, CountsAReleasedRequestAsAnnounced) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(approval(), kAll, kNow));
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always).size(), 1U);
  EXPECT_FALSE(notifier.handle(approval(), kAtOnce, at(39)));
  EXPECT_TRUE(notifier.handle(approval(), kAtOnce, at(40)));
}

TEST(AgentNotifier, DoesNotReleaseWhatWasJustAnnounced) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(approval(), kAll, kNow));
  EXPECT_TRUE(notifier.handle(approval(), kAtOnce, at(25)));
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), Events{});
  EXPECT_TRUE(notifier.pending().empty());
}

TEST(AgentNotifier, ForgetsACancelledRequest) {
  AgentNotifier notifier;
  EXPECT_FALSE(notifier.handle(approval("a"), kAll, kNow));
  EXPECT_FALSE(notifier.handle(approval("b"), kAll, kNow));
  notifier.cancel("Codex:a");
  notifier.cancel("Codex:unknown");
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), Events{approval("b")});
}

TEST(AgentNotifier, ForgetsTheRequestsOfAPidAndKeepsThoseWithout) {
  AgentNotifier notifier;
  AgentEvent mine = approval("mine");
  mine.pid = 7;
  AgentEvent other = approval("other");
  other.pid = 8;
  for (const AgentEvent& request : {mine, other, approval("without")}) {
    EXPECT_FALSE(notifier.handle(request, kAll, kNow));
  }
  notifier.forget(7);
  notifier.forget(0);
  EXPECT_EQ(notifier.releaseDue(at(30), kAll, always), (Events{other, approval("without")}));
}

TEST(AgentNotifier, ForgetsAnnouncementsAnHourOld) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished("a"), kAll, kNow));
  EXPECT_TRUE(notifier.handle(finished("b"), kAll, at(3599.5)));
  EXPECT_EQ(notifier.posted().size(), 2U);
  EXPECT_TRUE(notifier.handle(finished("c"), kAll, at(3600)));
  EXPECT_FALSE(notifier.posted().contains("finished|Codex:a"));
  EXPECT_EQ(notifier.posted().size(), 2U);
}

TEST(AgentNotifier, NeverForgetsWhenASessionLastFinished) {
  AgentNotifier notifier;
  EXPECT_TRUE(notifier.handle(finished("a"), kAll, kNow));
  EXPECT_TRUE(notifier.handle(finished("b"), kAll, at(1e6)));
  EXPECT_EQ(notifier.lastFinished().size(), 2U);
}

TEST(AgentNotifier, HoldsTheAgreedTimes) {
  EXPECT_EQ(AgentNotifier::kRepeatWindow, Seconds{10});
  EXPECT_EQ(AgentNotifier::kAfterFinishWindow, Seconds{600});
  EXPECT_EQ(AgentNotifier::kPostedRetention, Seconds{3600});
}

}  // namespace
}  // namespace brindle
