#include "logic/reports/stop_confirm.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

using Decision = StopConfirm::Decision;

/// The decision at a terminal where this is typed.
Decision typed(std::optional<std::string> answer) {
  return StopConfirm{.interactive = true}.decide([&] { return answer; });
}

std::optional<std::string> mustNotAsk() {
  ADD_FAILURE() << "asked";
  return "y";
}

TEST(StopConfirm, ProceedsWhenThePersonAgrees) {
  for (const char* answer : {"y", "Y", "yes", "YES", "Yes", "yEs"})
    EXPECT_EQ(typed(answer), Decision::proceed) << answer;
}

TEST(StopConfirm, IsDeclinedByEveryOtherAnswer) {
  for (const char* answer : {"n", "no", "", " ", "y ", " y", "ye", "yess", "yes!", "ok", "1", "y\n", "j"}) {
    EXPECT_EQ(typed(answer), Decision::declined) << answer;
  }
}

TEST(StopConfirm, IsDeclinedAtTheEndOfInput) { EXPECT_EQ(typed(std::nullopt), Decision::declined); }

TEST(StopConfirm, NeedsATerminalToAsk) { EXPECT_EQ(StopConfirm{}.decide(mustNotAsk), Decision::needsTTY); }

TEST(StopConfirm, ProceedsWithoutAskingWhenAgreedInAdvance) {
  EXPECT_EQ((StopConfirm{.agreedInAdvance = true, .interactive = true}.decide(mustNotAsk)), Decision::proceed);
  EXPECT_EQ((StopConfirm{.agreedInAdvance = true, .interactive = false}.decide(mustNotAsk)), Decision::proceed);
}

TEST(StopConfirm, AsksOnce) {
  int asked = 0;
  (void)StopConfirm{.interactive = true}.decide([&]() -> std::optional<std::string> {
    ++asked;
    return "what?";
  });
  EXPECT_EQ(asked, 1);
}

}  // namespace
}  // namespace brindle
