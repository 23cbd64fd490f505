#include "logic/events/agent_notify_rules.h"

#include <gtest/gtest.h>

#include <string>

#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle {
namespace {

AgentNotifyRules decoded(const std::string& text) {
  const auto document = parseJson(text);
  EXPECT_TRUE(document && document->object() != nullptr) << text;
  return document && document->object() != nullptr ? decodeAgentNotifyRules(*document->object())
                                                   : AgentNotifyRules{.finished = true, .onlyWhenAway = false};
}

TEST(AgentNotifyRules, TakesTheDefaultsForAnEmptyObject) {
  EXPECT_EQ(decoded("{}"), (AgentNotifyRules{.finished = false,
                                             .needsApproval = false,
                                             .onlyWhenAway = true,
                                             .approvalDelay = Seconds{30},
                                             .idleGuess = true,
                                             .idleAfter = Seconds{120}}));
}

TEST(AgentNotifyRules, WritesAllSixKeysInTheirOrder) {
  EXPECT_EQ(writeJson(encode(AgentNotifyRules{})),
            R"({"finished":false,"needsApproval":false,"onlyWhenAway":true,"approvalDelay":30,"idleGuess":true,)"
            R"("idleAfter":120})");
}

TEST(AgentNotifyRules, ReadsBackWhatItWrote) {
  const AgentNotifyRules rules{.finished = true,
                               .needsApproval = true,
                               .onlyWhenAway = false,
                               .approvalDelay = Seconds{0.25},
                               .idleGuess = false,
                               .idleAfter = Seconds{-1}};
  EXPECT_EQ(decoded(writeJson(encode(rules))), rules);
}

TEST(AgentNotifyRules, ReadsEachKeyByItself) {
  EXPECT_EQ(decoded(R"({"finished":true})"), (AgentNotifyRules{.finished = true}));
  EXPECT_EQ(decoded(R"({"needsApproval":true})"), (AgentNotifyRules{.needsApproval = true}));
  EXPECT_EQ(decoded(R"({"onlyWhenAway":false})"), (AgentNotifyRules{.onlyWhenAway = false}));
  EXPECT_EQ(decoded(R"({"approvalDelay":5})"), (AgentNotifyRules{.approvalDelay = Seconds{5}}));
  EXPECT_EQ(decoded(R"({"idleGuess":false})"), (AgentNotifyRules{.idleGuess = false}));
  EXPECT_EQ(decoded(R"({"idleAfter":60})"), (AgentNotifyRules{.idleAfter = Seconds{60}}));
}

TEST(AgentNotifyRules, TakesTheDefaultForAWrongTypeAtEveryKey) {
  for (const std::string key :
       {"finished", "needsApproval", "onlyWhenAway", "approvalDelay", "idleGuess", "idleAfter"}) {
    for (const std::string wrong : {"null", "\"true\"", "[]", "{}"}) {
      EXPECT_EQ(decoded("{\"" + key + "\":" + wrong + "}"), AgentNotifyRules{}) << key << " " << wrong;
    }
  }
}

TEST(AgentNotifyRules, TakesNoBooleanForANumberAndNoNumberForABoolean) {
  EXPECT_EQ(decoded(R"({"finished":1,"needsApproval":1,"onlyWhenAway":0,"idleGuess":0})"), AgentNotifyRules{});
  EXPECT_EQ(decoded(R"({"approvalDelay":true,"idleAfter":false})"), AgentNotifyRules{});
}

}  // namespace
}  // namespace brindle
