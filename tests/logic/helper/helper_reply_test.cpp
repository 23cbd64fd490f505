#include "logic/helper/helper_reply.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(HelperReply, HasTheAgreedTexts) {
  EXPECT_EQ(HelperReplyText::kSleepDisabled, "Sleep disabled");
  EXPECT_EQ(HelperReplyText::kSleepOn, "Sleep on");
  EXPECT_EQ(HelperReplyText::kSleepAlreadyDisabled, "Sleep already disabled");
  EXPECT_EQ(HelperReplyText::kSleepAlreadyOn, "Sleep already on");
  EXPECT_EQ(HelperReplyText::kMaxDurationReached, "Max duration reached. Turn it off first.");
}

TEST(HelperReply, NamesTheSwitchThatFailed) {
  EXPECT_EQ(HelperReplyText::failed("pmset"), "pmset failed");
  EXPECT_EQ(HelperReplyText::failed("logind"), "logind failed");
}

TEST(HelperReply, StatesItsVersionUnlessToldOtherwise) {
  EXPECT_EQ(HelperStatus{}, (HelperStatus{.sleepDisabled = false, .remaining = Seconds{0}, .version = 1}));
}

}  // namespace
}  // namespace brindle
