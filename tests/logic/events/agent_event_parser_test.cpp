#include "logic/events/agent_event_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using AgentEventParser::parseClaudeHook;
using AgentEventParser::parseCodexNotify;
constexpr Date kTime = dateFromSeconds(1'772'352'000.25);

/// Everything but the identifier, which is different every time.
std::optional<AgentEvent> withoutId(std::optional<AgentEvent> event) {
  if (event) event->id.clear();
  return event;
}

std::optional<AgentEvent> claude(std::string_view payload) {
  return withoutId(parseClaudeHook(payload, std::nullopt, kTime));
}

std::optional<AgentEvent> codex(std::string_view payload) {
  return withoutId(parseCodexNotify(payload, std::nullopt, kTime));
}

AgentEvent claudeEvent(AgentEventKind kind) { return {.time = kTime, .agent = "Claude Code", .kind = kind}; }
AgentEvent codexEvent(AgentEventKind kind) { return {.time = kTime, .agent = "Codex", .kind = kind}; }

std::string notification(const std::string& members) { return R"({"hook_event_name":"Notification",)" + members + "}"; }

TEST(ClaudeHook, ReadsAWholePermissionPrompt) {
  const auto event = parseClaudeHook(
      R"({"session_id":"835f39ae-4a05-4bff-95ec-9ff21ca99141","transcript_path":"/home/u/.claude/t.jsonl",)"
      R"("cwd":"/home/u/shop","hook_event_name":"Notification","message":"Claude needs your permission",)"
      R"("title":"Permission needed","notification_type":"permission_prompt"})",
      4711, kTime);
  EXPECT_EQ(withoutId(event), (AgentEvent{.time = kTime,
                                          .agent = "Claude Code",
                                          .kind = AgentEventKind::needsApproval,
                                          .message = "Claude needs your permission",
                                          .cwd = "/home/u/shop",
                                          .pid = 4711,
                                          .sessionID = "835f39ae-4a05-4bff-95ec-9ff21ca99141"}));
}

TEST(ClaudeHook, FinishesOnABareStop) {
  EXPECT_EQ(claude(R"({"hook_event_name":"Stop"})"), claudeEvent(AgentEventKind::finished));
}

TEST(ClaudeHook, ReadsTheMessageOfAStopToo) {
  AgentEvent expected = claudeEvent(AgentEventKind::finished);
  expected.message = "one";
  EXPECT_EQ(claude(R"({"hook_event_name":"Stop","message":"\n\none\ntwo"})"), expected);
}

TEST(ClaudeHook, IgnoresTheOtherMembersOfAStop) {
  AgentEvent expected = claudeEvent(AgentEventKind::finished);
  expected.cwd = "/home/u/shop";
  expected.sessionID = "835f";
  EXPECT_EQ(claude(R"({"session_id":"835f","transcript_path":"/t","cwd":"/home/u/shop","permission_mode":"default",)"
                   R"("hook_event_name":"Stop","stop_hook_active":false,"last_assistant_message":"Done.",)"
                   R"("background_tasks":[{"id":"task-001","type":"shell","command":"npm run dev"}]})"),
            expected);
}

TEST(ClaudeHook, GivesEachEventAFreshUpperCaseUuid) {
  const auto first = parseClaudeHook(R"({"hook_event_name":"Stop"})", std::nullopt, kTime);
  const auto second = parseClaudeHook(R"({"hook_event_name":"Stop"})", std::nullopt, kTime);
  ASSERT_TRUE(first && second);
  EXPECT_NE(first->id, second->id);
  ASSERT_EQ(first->id.size(), 36U);
  for (std::size_t i = 0; i < first->id.size(); ++i) {
    const char c = first->id[i];
    const bool hyphen = i == 8 || i == 13 || i == 18 || i == 23;
    EXPECT_TRUE(hyphen ? c == '-' : (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F')) << first->id;
  }
}

TEST(ClaudeHook, NeedsApprovalForPermissionPromptsAndElicitationDialogs) {
  for (const std::string type : {"permission_prompt", "elicitation_dialog"}) {
    EXPECT_EQ(claude(notification(R"("notification_type":")" + type + "\"")),
              claudeEvent(AgentEventKind::needsApproval));
  }
}

TEST(ClaudeHook, WaitsForAnIdlePrompt) {
  EXPECT_EQ(claude(notification(R"("notification_type":"idle_prompt")")), claudeEvent(AgentEventKind::waiting));
}

TEST(ClaudeHook, DropsEveryOtherNotificationTypeWhateverItsMessage) {
  for (const std::string type :
       {"auth_success", "elicitation_url_dialog", "elicitation_complete", "elicitation_response", "agent_needs_input",
        "agent_completed", "quota_auto_resume_fired", "quota_auto_resume_stale", "quota_auto_resume_disabled", "",
        "Permission_prompt"}) {
    EXPECT_EQ(claude(notification(R"("message":"permission","notification_type":")" + type + "\"")), std::nullopt)
        << type;
  }
}

TEST(ClaudeHook, TellsApprovalByTheMessageWithoutAType) {
  for (const std::string message : {"Claude needs your permission to use Bash", "PERMISSION", "xPermissionx"}) {
    AgentEvent expected = claudeEvent(AgentEventKind::needsApproval);
    expected.message = message;
    EXPECT_EQ(claude(notification(R"("message":")" + message + "\"")), expected);
  }
}

TEST(ClaudeHook, WaitsForAnyOtherMessageWithoutAType) {
  AgentEvent expected = claudeEvent(AgentEventKind::waiting);
  EXPECT_EQ(claude(R"({"hook_event_name":"Notification"})"), expected);
  expected.message = "Claude is waiting for your input";
  EXPECT_EQ(claude(notification(R"("message":"Claude is waiting for your input")")), expected);
  expected.message = "permissio";
  EXPECT_EQ(claude(notification(R"("message":"permissio")")), expected);
}

TEST(ClaudeHook, LooksForThePermissionInTheCleanedLineAlone) {
  AgentEvent expected = claudeEvent(AgentEventKind::waiting);
  expected.message = "first";
  EXPECT_EQ(claude(notification(R"("message":"first\npermission")")), expected);
}

TEST(ClaudeHook, TakesATypeThatIsNoTextForAbsent) {
  for (const std::string wrong : {"null", "7", "true", "[]", "{}"}) {
    EXPECT_EQ(claude(notification(R"("notification_type":)" + wrong)), claudeEvent(AgentEventKind::waiting)) << wrong;
  }
}

TEST(ClaudeHook, TakesOptionalMembersThatAreNoTextForAbsent) {
  for (const std::string wrong : {"null", "7", "true", "[]", "{}"}) {
    EXPECT_EQ(claude(R"({"hook_event_name":"Stop","message":)" + wrong + R"(,"cwd":)" + wrong + R"(,"session_id":)" +
                     wrong + "}"),
              claudeEvent(AgentEventKind::finished))
        << wrong;
  }
}

TEST(ClaudeHook, KnowsNoOtherHookEvent) {
  for (const std::string name :
       {"stop", "STOP", "notification", "SessionStart", "PostToolUse", "SubagentStop", "", "Stop "}) {
    EXPECT_EQ(claude(R"({"hook_event_name":")" + name + R"(","message":"permission"})"), std::nullopt) << name;
  }
}

TEST(ClaudeHook, NeedsAHookEventName) {
  EXPECT_EQ(claude("{}"), std::nullopt);
  for (const std::string wrong : {"null", "1", "true", R"(["Stop"])", R"({"Stop":1})"}) {
    EXPECT_EQ(claude(R"({"hook_event_name":)" + wrong + "}"), std::nullopt) << wrong;
  }
}

TEST(ClaudeHook, MakesAnEmptyMessageOfNewlinesAlone) {
  AgentEvent expected = claudeEvent(AgentEventKind::finished);
  expected.message = "";
  EXPECT_EQ(claude(R"({"hook_event_name":"Stop","message":"\n\r\n"})"), expected);
}

TEST(CodexNotify, ReadsAWholeFinishedTurnWithoutItsText) {
  const auto event = parseCodexNotify(
      R"({"type":"agent-turn-complete","thread-id":"b5f6c1c2-1111-2222-3333-444455556666","turn-id":"12345",)"
      R"("cwd":"/Users/example/project","client":"codex-tui","input-messages":["Rename `foo` to `bar`."],)"
      R"("last-assistant-message":"Renamed.","message":"Done."})",
      12, kTime);
  ASSERT_TRUE(event);
  EXPECT_EQ(event->id.size(), 36U);
  EXPECT_EQ(withoutId(event), (AgentEvent{.time = kTime,
                                          .agent = "Codex",
                                          .kind = AgentEventKind::finished,
                                          .cwd = "/Users/example/project",
                                          .pid = 12,
                                          .sessionID = "b5f6c1c2-1111-2222-3333-444455556666"}));
}

TEST(CodexNotify, FallsBackToTheConversationWhenTheThreadIsNoText) {
  AgentEvent expected = codexEvent(AgentEventKind::finished);
  expected.sessionID = "c-1";
  for (const std::string wrong : {"7", "null", "[]"}) {
    EXPECT_EQ(codex(R"({"type":"agent-turn-complete","thread-id":)" + wrong + R"(,"conversation-id":"c-1"})"),
              expected);
  }
  EXPECT_EQ(codex(R"({"type":"agent-turn-complete","conversation-id":"c-1"})"), expected);
}

TEST(CodexNotify, PrefersTheThreadToTheConversation) {
  AgentEvent expected = codexEvent(AgentEventKind::finished);
  expected.sessionID = "t-1";
  EXPECT_EQ(codex(R"({"type":"agent-turn-complete","conversation-id":"c-1","thread-id":"t-1"})"), expected);
}

TEST(CodexNotify, NeedsApprovalWithoutAnyIdentifier) {
  EXPECT_EQ(codex(R"({"type":"approval-requested"})"), codexEvent(AgentEventKind::needsApproval));
  EXPECT_EQ(codex(R"({"type":"approval-requested","thread-id":1,"conversation-id":2,"cwd":3})"),
            codexEvent(AgentEventKind::needsApproval));
}

TEST(CodexNotify, KnowsNoOtherType) {
  for (const std::string type : {"", "Agent-turn-complete", "agent-turn-started", "waiting", "idle_prompt"}) {
    EXPECT_EQ(codex(R"({"type":")" + type + "\"}"), std::nullopt) << type;
  }
  for (const std::string wrong : {"null", "1", "true", "[]", "{}"}) {
    EXPECT_EQ(codex(R"({"type":)" + wrong + "}"), std::nullopt) << wrong;
  }
  EXPECT_EQ(codex("{}"), std::nullopt);
}

TEST(HookPayload, YieldsNoEventWhenItIsNoObjectOrNoJson) {
  for (const std::string_view payload :
       {"", " ", "null", "[]", R"([{"hook_event_name":"Stop"}])", "\"Stop\"", "7", "true", "{", "{\"hook_event_name\"",
        R"({"hook_event_name":"Stop"} x)", R"({"hook_event_name":"Stop",})", "\xFF\xFE", "hello"}) {
    EXPECT_EQ(claude(payload), std::nullopt) << payload;
    EXPECT_EQ(codex(payload), std::nullopt) << payload;
  }
}

TEST(HookPayload, YieldsNoEventForEveryCutPayload) {
  const std::string hook = R"({"hook_event_name":"Stop","message":"caf\u00e9","cwd":"/x"})";
  const std::string notify = R"({"type":"approval-requested","thread-id":"t"})";
  ASSERT_TRUE(claude(hook) && codex(notify));
  for (std::size_t length = 0; length < hook.size(); ++length) {
    EXPECT_EQ(claude(std::string_view(hook).substr(0, length)), std::nullopt) << length;
  }
  for (std::size_t length = 0; length < notify.size(); ++length) {
    EXPECT_EQ(codex(std::string_view(notify).substr(0, length)), std::nullopt) << length;
  }
}

TEST(HookPayload, YieldsNoEventForInvalidUtf8) {
  EXPECT_EQ(claude("{\"hook_event_name\":\"Stop\",\"message\":\"\xC3\x28\"}"), std::nullopt);
  EXPECT_EQ(codex("{\"type\":\"approval-requested\",\"cwd\":\"\xFF\"}"), std::nullopt);
}

TEST(HookPayload, SurvivesADocumentOfTenMegabytes) {
  const std::string text(10'000'000, 'x');
  const auto event = claude(R"({"hook_event_name":"Stop","message":")" + text + "\"}");
  ASSERT_TRUE(event);
  EXPECT_EQ(event->message, text.substr(0, 157) + "...");
  EXPECT_EQ(claude(std::string(10'000'000, '[')), std::nullopt);
}

TEST(HookPayload, SurvivesAHundredThousandLevels) {
  std::string nested = R"({"hook_event_name":"Stop","x":)";
  nested += std::string(100'000, '[') + std::string(100'000, ']') + "}";
  EXPECT_EQ(claude(nested), std::nullopt);
  std::string objects = R"({"type":"approval-requested","x":)";
  for (int i = 0; i < 100'000; ++i) objects += R"({"a":)";
  EXPECT_EQ(codex(objects), std::nullopt);
}

}  // namespace
}  // namespace brindle
