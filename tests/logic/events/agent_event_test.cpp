#include "logic/events/agent_event.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle {
namespace {

AgentEvent fullEvent() {
  return {.id = "3F2504E0-4F89-41D3-9A0C-0305E82C3301",
          .time = dateFromSeconds(1'772'352'000),
          .agent = "Claude Code",
          .kind = AgentEventKind::needsApproval,
          .message = "May I?",
          .cwd = "/home/u/shop",
          .pid = 4711,
          .sessionID = "835f"};
}

AgentEvent bareEvent() {
  return {.id = "x", .time = dateFromSeconds(0), .agent = "Codex", .kind = AgentEventKind::finished};
}

std::optional<AgentEvent> decoded(const std::string& text, DateForm dates = DateForm::iso8601) {
  const auto document = parseJson(text);
  EXPECT_TRUE(document && document->object() != nullptr) << text;
  return document && document->object() != nullptr ? decodeAgentEvent(*document->object(), dates) : std::nullopt;
}

TEST(AgentEvent, WritesItsKeysInTheirOrder) {
  EXPECT_EQ(writeJson(encode(fullEvent(), DateForm::iso8601), {.escapeSlashes = false}),
            R"({"id":"3F2504E0-4F89-41D3-9A0C-0305E82C3301","time":"2026-03-01T08:00:00Z","agent":"Claude Code",)"
            R"("kind":"needsApproval","message":"May I?","cwd":"/home/u/shop","pid":4711,"sessionID":"835f"})");
}

TEST(AgentEvent, LeavesAbsentMembersOut) {
  EXPECT_EQ(writeJson(encode(bareEvent(), DateForm::iso8601)),
            R"({"id":"x","time":"1970-01-01T00:00:00Z","agent":"Codex","kind":"finished"})");
}

TEST(AgentEvent, WritesItsTimeAsSecondsWhereTheDocumentWantsThat) {
  AgentEvent event = bareEvent();
  event.time = dateFromSeconds(12.5);
  EXPECT_EQ(writeJson(encode(event, DateForm::seconds)), R"({"id":"x","time":12.5,"agent":"Codex","kind":"finished"})");
  EXPECT_EQ(decodeAgentEvent(encode(event, DateForm::seconds), DateForm::seconds), event);
}

TEST(AgentEvent, ReadsBackWhatItWrote) {
  for (const AgentEvent& event : {fullEvent(), bareEvent()}) {
    for (const DateForm dates : {DateForm::iso8601, DateForm::seconds}) {
      EXPECT_EQ(decodeAgentEvent(encode(event, dates), dates), event);
    }
  }
}

TEST(AgentEvent, NeedsItsFourRequiredMembers) {
  for (const std::string key : {"id", "time", "agent", "kind"}) {
    JsonObject object = encode(fullEvent(), DateForm::iso8601);
    ASSERT_TRUE(object.erase(key));
    EXPECT_EQ(decodeAgentEvent(object, DateForm::iso8601), std::nullopt) << key;
  }
}

TEST(AgentEvent, RefusesAWrongTypeAtARequiredMember) {
  for (const std::string key : {"id", "time", "agent", "kind"}) {
    for (const JsonValue& wrong :
         {JsonValue(), JsonValue(7), JsonValue(true), JsonValue(JsonArray{}), JsonValue(JsonObject{})}) {
      JsonObject object = encode(fullEvent(), DateForm::iso8601);
      object.set(key, wrong);
      EXPECT_EQ(decodeAgentEvent(object, DateForm::iso8601), std::nullopt) << key;
    }
  }
}

TEST(AgentEvent, ReadsAWrongTypeAtAnOptionalMemberAsAbsent) {
  for (const JsonValue& wrong :
       {JsonValue(), JsonValue(true), JsonValue(1.5), JsonValue(JsonArray{}), JsonValue(JsonObject{})}) {
    JsonObject object = encode(bareEvent(), DateForm::iso8601);
    for (const char* key : {"message", "cwd", "pid", "sessionID"}) object.set(key, wrong);
    EXPECT_EQ(decodeAgentEvent(object, DateForm::iso8601), bareEvent());
  }
}

TEST(AgentEvent, ReadsOnlyPidsThatFitThirtyTwoBits) {
  const auto pidOf = [](std::int64_t pid) {
    JsonObject object = encode(bareEvent(), DateForm::iso8601);
    object.set("pid", pid);
    return decodeAgentEvent(object, DateForm::iso8601).value().pid;
  };
  EXPECT_EQ(pidOf(2147483647), 2147483647);
  EXPECT_EQ(pidOf(2147483648), std::nullopt);
  EXPECT_EQ(pidOf(-2147483648LL), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(pidOf(-2147483649LL), std::nullopt);
}

TEST(AgentEvent, RefusesUnknownKindsAndTimesInAnotherForm) {
  const std::string head = R"({"id":"x","agent":"Codex",)";
  EXPECT_TRUE(decoded(head + R"("time":"2026-03-01T08:00:00Z","kind":"waiting"})"));
  EXPECT_FALSE(decoded(head + R"("time":"2026-03-01T08:00:00Z","kind":"Waiting"})"));
  EXPECT_FALSE(decoded(head + R"("time":"2026-03-01T08:00:00.5Z","kind":"waiting"})"));
  EXPECT_FALSE(decoded(head + R"("time":"yesterday","kind":"waiting"})"));
  EXPECT_FALSE(decoded(head + R"("time":1772352000,"kind":"waiting"})"));
  EXPECT_FALSE(decoded(head + R"("time":"2026-03-01T08:00:00Z","kind":"waiting"})", DateForm::seconds));
}

TEST(AgentEvent, IgnoresOtherKeys) {
  JsonObject object = encode(fullEvent(), DateForm::iso8601);
  object.set("Message", "other");
  object.set("z", JsonArray{});
  EXPECT_EQ(decodeAgentEvent(object, DateForm::iso8601), fullEvent());
}

TEST(AgentEventKind, RoundTripsItsThreeRawValuesInTheirOrder) {
  std::vector<std::string> texts;
  std::unordered_set<AgentEventKind> kinds;
  for (const auto& row : allCases<AgentEventKind>()) {
    EXPECT_EQ(static_cast<std::size_t>(row.value), texts.size());
    EXPECT_EQ(enumFrom<AgentEventKind>(row.text), row.value);
    texts.emplace_back(row.text);
    kinds.insert(row.value);
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"finished", "needsApproval", "waiting"}));
  EXPECT_EQ(kinds.size(), 3U);
}

TEST(SessionKey, IsTheAgentAndItsSession) { EXPECT_EQ(sessionKey(fullEvent()), "Claude Code:835f"); }

TEST(SessionKey, IsTheAgentAndItsPidWithoutASession) {
  AgentEvent event = fullEvent();
  event.sessionID.reset();
  EXPECT_EQ(sessionKey(event), "Claude Code:pid4711");
}

TEST(SessionKey, IsPidZeroWithoutSessionAndPid) {
  AgentEvent first = bareEvent();
  AgentEvent second = bareEvent();
  second.id = "another";
  EXPECT_EQ(sessionKey(first), "Codex:pid0");
  EXPECT_EQ(sessionKey(second), sessionKey(first));
}

TEST(SessionKey, TakesAnEmptySessionForASession) {
  AgentEvent event = fullEvent();
  event.sessionID = "";
  EXPECT_EQ(sessionKey(event), "Claude Code:");
}

}  // namespace
}  // namespace brindle
