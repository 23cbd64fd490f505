#include "logic/plan/plan_provider.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "logic/plan/plan_account.h"

namespace brindle {
namespace {

TEST(PlanProvider, NamesEveryPlan) {
  EXPECT_EQ(displayName(PlanProvider::claude), "Claude (Pro and Max)");
  EXPECT_EQ(displayName(PlanProvider::codex), "Codex and ChatGPT");
  EXPECT_EQ(displayName(PlanProvider::cursor), "Cursor");
  EXPECT_EQ(displayName(PlanProvider::gemini), "Gemini CLI");
  EXPECT_EQ(displayName(PlanProvider::copilot), "GitHub Copilot");
}

TEST(PlanProvider, ExplainsWhyTheUseOfAPlanCannotBeRead) {
  EXPECT_EQ(unavailableNote(PlanProvider::claude), std::nullopt);
  EXPECT_EQ(unavailableNote(PlanProvider::codex),
            "OpenAI's usage API covers API keys only. ChatGPT plan limits for Codex have no public API.");
  EXPECT_EQ(unavailableNote(PlanProvider::cursor), "Cursor has no public API for plan usage.");
  EXPECT_EQ(unavailableNote(PlanProvider::gemini), "Google has no public API for Gemini CLI plan quotas.");
  EXPECT_EQ(unavailableNote(PlanProvider::copilot),
            "GitHub reports billed premium requests, not how much of your plan is left.");
}

TEST(PlanProvider, RoundTripsItsRawValuesInTheirOrder) {
  std::vector<std::string> texts;
  for (const auto& row : allCases<PlanProvider>()) {
    EXPECT_EQ(static_cast<std::size_t>(row.value), texts.size());
    EXPECT_EQ(enumFrom<PlanProvider>(row.text), row.value);
    texts.emplace_back(row.text);
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"claude", "codex", "cursor", "gemini", "copilot"}));
}

TEST(PlanAccount, RoundTripsUnderItsOwnKeys) {
  const PlanAccount account{.id = "a-1", .name = "Work"};
  EXPECT_EQ(encode(account), (JsonObject{{"id", "a-1"}, {"name", "Work"}}));
  EXPECT_EQ(decodePlanAccount(encode(account)), account);
}

TEST(PlanAccount, NeedsBothMembersAsTexts) {
  EXPECT_EQ(decodePlanAccount(JsonObject{{"id", "a"}}), std::nullopt);
  EXPECT_EQ(decodePlanAccount(JsonObject{{"name", "a"}}), std::nullopt);
  for (const JsonValue& wrong : {JsonValue(), JsonValue(1), JsonValue(true), JsonValue(JsonArray{})}) {
    EXPECT_EQ(decodePlanAccount(JsonObject{{"id", wrong}, {"name", "a"}}), std::nullopt);
    EXPECT_EQ(decodePlanAccount(JsonObject{{"id", "a"}, {"name", wrong}}), std::nullopt);
  }
}

}  // namespace
}  // namespace brindle
