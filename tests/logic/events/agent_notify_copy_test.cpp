#include "logic/events/agent_notify_copy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace brindle {
namespace {

using namespace AgentNotifyCopy;
constexpr Seconds kFiveMinutes{300};

TEST(AgentNotifyCopy, WritesDurationsInWholeMinutes) {
  const std::vector<std::pair<double, std::string>> cases{
      {0, "under a minute"}, {29, "under a minute"}, {29.999, "under a minute"}, {30, "1 min"},       {89.999, "1 min"},
      {90, "2 min"},         {720, "12 min"},        {3569, "59 min"},           {3570, "1 h"},       {3599, "1 h"},
      {3600, "1 h"},         {3629, "1 h"},          {3630, "1 h 1 min"},        {3900, "1 h 5 min"}, {7200, "2 h"},
      {90000, "25 h"},       {216000, "60 h"},       {-100, "under a minute"}};
  for (const auto& [seconds, expected] : cases) EXPECT_EQ(duration(Seconds{seconds}), expected) << seconds;
}

TEST(AgentNotifyCopy, WritesAnyDurationWithoutFailing) {
  EXPECT_EQ(duration(Seconds{std::nan("")}), "under a minute");
  EXPECT_EQ(duration(Seconds{-std::numeric_limits<double>::infinity()}), "under a minute");
  EXPECT_TRUE(duration(Seconds{std::numeric_limits<double>::infinity()}).find(" h") != std::string::npos);
}

TEST(AgentNotifyCopy, HasATitleForEachSituation) {
  EXPECT_EQ(finishedTitle("Codex"), "Codex finished");
  EXPECT_EQ(sessionEndedTitle(), "Session finished");
  EXPECT_EQ(approvalTitle("Claude Code"), "Claude Code needs your approval");
  EXPECT_EQ(waitingTitle("Claude Code"), "Claude Code is waiting for you");
  EXPECT_EQ(idleGuessTitle("Codex"), "Codex looks done (a guess)");
}

TEST(AgentNotifyCopy, AsksForApprovalInTheAgentsWords) {
  EXPECT_EQ(approvalBody({.message = "Run npm test?"}, kFiveMinutes), "Run npm test?. Waiting 5 min.");
  EXPECT_EQ(approvalBody({.message = "Needs permission."}, kFiveMinutes), "Needs permission. Waiting 5 min.");
  EXPECT_EQ(approvalBody({.context = "shop", .message = "Needs permission"}, Seconds{10}),
            "shop \xC2\xB7 Needs permission. Waiting under a minute.");
}

TEST(AgentNotifyCopy, AsksForApprovalWithoutAMessage) {
  EXPECT_EQ(approvalBody({}, kFiveMinutes), "Waiting on a prompt. Waiting 5 min.");
  EXPECT_EQ(approvalBody({.message = ""}, kFiveMinutes), "Waiting on a prompt. Waiting 5 min.");
  EXPECT_EQ(approvalBody({.context = "shop"}, kFiveMinutes), "shop \xC2\xB7 Waiting on a prompt. Waiting 5 min.");
}

TEST(AgentNotifyCopy, WaitsInTheAgentsWords) {
  EXPECT_EQ(waitingBody({.message = "Which one"}), "Which one.");
  EXPECT_EQ(waitingBody({.message = "Which one."}), "Which one.");
  EXPECT_EQ(waitingBody({.context = "shop", .message = "Which one?"}), "shop \xC2\xB7 Which one?.");
}

TEST(AgentNotifyCopy, WaitsForInputWithoutAMessage) {
  EXPECT_EQ(waitingBody({}), "Waiting for your input.");
  EXPECT_EQ(waitingBody({.context = "shop"}), "shop \xC2\xB7 Waiting for your input.");
}

TEST(AgentNotifyCopy, MakesASentenceOfAnEmptyWaitingMessageToo) { EXPECT_EQ(waitingBody({.message = ""}), "."); }

TEST(AgentNotifyCopy, SaysThatItIsYourTurn) {
  EXPECT_EQ(yourTurnBody(std::nullopt, std::nullopt), "Your turn.");
  EXPECT_EQ(yourTurnBody(std::nullopt, Seconds{3900}), "Your turn. Session open 1 h 5 min.");
  EXPECT_EQ(yourTurnBody("shop", Seconds{60}), "shop \xC2\xB7 Your turn. Session open 1 min.");
}

TEST(AgentNotifyCopy, CountsWhatASessionLeftBehind) {
  EXPECT_EQ(sessionEndedBody(std::nullopt, {.processes = 1, .bytes = 0}, kFiveMinutes),
            "5 min, 1 process left behind.");
  EXPECT_EQ(sessionEndedBody(std::nullopt, {.processes = 2, .bytes = 0}, kFiveMinutes),
            "5 min, 2 processes left behind.");
  EXPECT_EQ(sessionEndedBody("shop", {.processes = 3, .bytes = 1'500'000'000}, Seconds{7200}),
            "shop \xC2\xB7 2 h, 3 processes left behind (1.50 GB).");
  EXPECT_EQ(sessionEndedBody(std::nullopt, {.processes = 1, .bytes = 1}, kFiveMinutes),
            "5 min, 1 process left behind (1 B).");
}

TEST(AgentNotifyCopy, SaysWhenNothingWasLeftBehind) {
  EXPECT_EQ(sessionEndedBody(std::nullopt, {}, kFiveMinutes), "5 min, nothing left behind.");
  EXPECT_EQ(sessionEndedBody(std::nullopt, {.processes = -1, .bytes = 5}, kFiveMinutes), "5 min, nothing left behind.");
}

TEST(AgentNotifyCopy, AdmitsThatAGuessIsOne) {
  EXPECT_EQ(idleGuessBody(std::nullopt, Seconds{120}),
            "Quiet for 2 min, so it may be finished or waiting on you. Install hooks for an exact alert.");
  EXPECT_EQ(
      idleGuessBody("shop", Seconds{120}),
      "shop \xC2\xB7 Quiet for 2 min, so it may be finished or waiting on you. Install hooks for an exact alert.");
}

TEST(AgentNotifyCopy, JoinsAnEmptyContextTooBecauseItIsNotAbsent) {
  EXPECT_EQ(yourTurnBody("", std::nullopt), " \xC2\xB7 Your turn.");
}

}  // namespace
}  // namespace brindle
