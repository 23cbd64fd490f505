#include "cli/agent_hook.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "logic/events/agent_event_inbox.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"
#include "tests/cli/recorded_context.h"

namespace brindle {
namespace {

constexpr Date kNow{Seconds{1772352000}};
constexpr std::uint32_t kUser = 1000;
constexpr std::string_view kStop = R"({"hook_event_name":"Stop","session_id":"835f","cwd":"/home/u/shop"})";
// Pids of made-up processes: no process table of a real machine reaches them, so nothing is found below them.
constexpr std::int32_t kShell = 2'000'000'100;
constexpr std::int32_t kClaude = 2'000'000'050;
constexpr std::int32_t kWrapper = 2'000'000'049;
constexpr std::int32_t kTerminal = 2'000'000'040;
constexpr std::int32_t kElsewhere = 2'000'000'070;

ProcessFacts process(std::int32_t pid, const std::string& name) {
  ProcessFacts facts;
  facts.pid = pid;
  facts.uid = kUser;
  facts.name = name;
  facts.arguments = {name};
  facts.path = "/usr/bin/" + name;
  return facts;
}

/// A hook command started by a shell, with a table of processes that tests fill.
struct AgentHookTest : testing::Test {
  std::optional<ReportingAgent> agent(HookOrigin origin = HookOrigin::claudeHook) {
    return reportingAgent(origin, recorded.context.environment, processes);
  }
  std::optional<std::int32_t> agentPid(HookOrigin origin = HookOrigin::claudeHook) {
    const auto found = agent(origin);
    return found ? std::optional(found->process.pid) : std::nullopt;
  }
  std::vector<std::string> record(std::string_view text, HookOrigin origin = HookOrigin::claudeHook) {
    return recordHook({.origin = origin, .text = text, .time = kNow}, recorded.context.environment, processes);
  }
  std::vector<AgentEvent> events() const { return AgentEventInbox(state).drain(kNow); }

  TemporaryFolder folder;
  std::string state = folder.file("state");
  RecordedContext recorded;
  std::map<std::int32_t, std::vector<ProcessFacts>> chains;
  HookProcesses processes{.chainOf =
                              [this](std::int32_t pid) {
                                const auto found = chains.find(pid);
                                return found == chains.end() ? std::vector<ProcessFacts>{} : found->second;
                              },
                          .parent = kShell,
                          .user = kUser};

 protected:
  void SetUp() override {
    recorded.variables["BRINDLE_DATA_DIR"] = state;
    chains[kShell] = {process(kShell, "sh"), process(kClaude, "claude"), process(kTerminal, "kitty")};
  }
};

TEST_F(AgentHookTest, QueuesTheEventOfTheNearestAgent) {
  EXPECT_EQ(record(kStop), std::vector<std::string>{});
  const auto queued = events();
  ASSERT_EQ(queued.size(), 1u);
  EXPECT_EQ(queued[0], (AgentEvent{.id = queued[0].id,
                                   .time = kNow,
                                   .agent = "Claude Code",
                                   .kind = AgentEventKind::finished,
                                   .cwd = "/home/u/shop",
                                   .pid = kClaude,
                                   .sessionID = "835f"}));
}

TEST_F(AgentHookTest, TakesTheOutermostProcessOfAnAgentOfTwo) {
  chains[kShell] = {process(kShell, "sh"), process(kClaude, "claude"), process(kWrapper, "claude")};
  EXPECT_EQ(agentPid(), kWrapper);
}

TEST_F(AgentHookTest, TakesTheAncestorThatClaudeNames) {
  chains[kShell] = {process(kShell, "sh"), process(kClaude, "claude"), process(kWrapper, "claude")};
  recorded.variables["CLAUDE_PID"] = std::to_string(kClaude);
  EXPECT_EQ(agent(), (ReportingAgent{process(kClaude, "claude"), "Claude Code"}));
}

TEST_F(AgentHookTest, TakesALiveAgentThatClaudeNamesAndThatIsNoAncestor) {
  chains[kElsewhere] = {process(kElsewhere, "claude")};
  recorded.variables["CLAUDE_PID"] = std::to_string(kElsewhere);
  EXPECT_EQ(agentPid(), kElsewhere);
}

TEST_F(AgentHookTest, PassesOverANamedPidThatIsGoneOrAStrangerNow) {
  recorded.variables["CLAUDE_PID"] = std::to_string(kElsewhere);
  EXPECT_EQ(agentPid(), kClaude) << "gone";
  chains[kElsewhere] = {process(kElsewhere, "vim")};
  EXPECT_EQ(agentPid(), kClaude) << "another program";
  chains[kElsewhere] = {process(kElsewhere, "claude")};
  chains[kElsewhere][0].uid = kUser + 1;
  EXPECT_EQ(agentPid(), kClaude) << "another user";
}

TEST_F(AgentHookTest, PassesOverAVariableThatIsNoPid) {
  for (const char* text : {"", "x", "-5", "1", "0", "+7", " 2000000070", "2000000070x", "99999999999999999999"}) {
    recorded.variables["CLAUDE_PID"] = text;
    EXPECT_EQ(agentPid(), kClaude) << text;
  }
}

TEST_F(AgentHookTest, DoesNotTakeClaudesVariableForCodex) {
  chains[kShell] = {process(kShell, "codex"), process(kTerminal, "bash"), process(kClaude, "claude")};
  recorded.variables["CLAUDE_PID"] = std::to_string(kClaude);
  EXPECT_EQ(agent(HookOrigin::codexNotify), (ReportingAgent{process(kShell, "codex"), "Codex"}));
}

TEST_F(AgentHookTest, QueuesAnEventWithoutPidWhenNoAgentIsFound) {
  chains[kShell] = {process(kShell, "sh"), process(kTerminal, "kitty")};
  EXPECT_EQ(record(kStop), std::vector<std::string>{"no agent among the ancestors of this process"});
  const auto queued = events();
  ASSERT_EQ(queued.size(), 1u);
  EXPECT_EQ(queued[0].pid, std::nullopt);
}

TEST_F(AgentHookTest, QueuesWhatEachPayloadOfClaudeCodeSays) {
  struct Case {
    const char* payload;
    std::optional<AgentEventKind> kind;
    std::optional<std::string> message;
  };
  const Case cases[] = {
      {R"({"session_id":"835f39ae-4a05-4bff-95ec-9ff21ca99141","transcript_path":"/home/u/.claude/projects/x.jsonl","cwd":"/home/u/shop","hook_event_name":"Notification","message":"Claude needs your permission","title":"Permission needed","notification_type":"permission_prompt"})",
       AgentEventKind::needsApproval, "Claude needs your permission"},
      {R"({"session_id":"835f","transcript_path":"/t","cwd":"/home/u/shop","hook_event_name":"Notification","message":"Claude is waiting for your input","notification_type":"idle_prompt"})",
       AgentEventKind::waiting, "Claude is waiting for your input"},
      {R"({"session_id":"835f","transcript_path":"/t","cwd":"/home/u/shop","permission_mode":"default","hook_event_name":"Stop","stop_hook_active":false,"last_assistant_message":"Done.","background_tasks":[{"id":"task-001","type":"shell","status":"running","description":"dev server","command":"npm run dev"}]})",
       AgentEventKind::finished, std::nullopt},
      {R"({"session_id":"835f","cwd":"/home/u/shop","hook_event_name":"SessionStart","source":"startup","model":"m"})",
       std::nullopt, std::nullopt},
      {R"({"session_id":"835f","cwd":"/home/u/shop","hook_event_name":"PostToolUse","tool_name":"Bash","tool_input":{"command":"npm test"},"tool_response":{"stdout":"ok"},"tool_use_id":"toolu_01","duration_ms":12})",
       std::nullopt, std::nullopt},
  };
  for (const Case& each : cases) {
    const auto problems = record(each.payload);
    const auto queued = events();
    ASSERT_EQ(queued.size(), each.kind ? 1u : 0u) << each.payload;
    if (!each.kind) {
      EXPECT_EQ(problems, std::vector<std::string>{"the payload is no event that is recorded"});
      continue;
    }
    EXPECT_EQ(problems, std::vector<std::string>{});
    EXPECT_EQ(queued[0].kind, *each.kind);
    EXPECT_EQ(queued[0].message, each.message);
    EXPECT_EQ(queued[0].cwd, "/home/u/shop");
  }
}

TEST_F(AgentHookTest, QueuesOnlyTheTypesOfNotificationThatItKnows) {
  const std::map<std::string, std::optional<AgentEventKind>> types = {
      {"permission_prompt", AgentEventKind::needsApproval},
      {"elicitation_dialog", AgentEventKind::needsApproval},
      {"idle_prompt", AgentEventKind::waiting},
      {"auth_success", std::nullopt},
      {"elicitation_url_dialog", std::nullopt},
      {"elicitation_complete", std::nullopt},
      {"elicitation_response", std::nullopt},
      {"agent_needs_input", std::nullopt},
      {"agent_completed", std::nullopt},
      {"quota_auto_resume_fired", std::nullopt},
      {"quota_auto_resume_stale", std::nullopt},
      {"quota_auto_resume_disabled", std::nullopt},
  };
  for (const auto& [type, kind] : types) {
    (void)record(R"({"hook_event_name":"Notification","notification_type":")" + type + "\"}");
    const auto queued = events();
    ASSERT_EQ(queued.size(), kind ? 1u : 0u) << type;
    if (kind) {
      EXPECT_EQ(queued[0].kind, *kind) << type;
    }
  }
}

TEST_F(AgentHookTest, QueuesTheNotificationOfCodex) {
  chains[kShell] = {process(kShell, "codex")};
  EXPECT_EQ(
      record(R"({"type":"agent-turn-complete","thread-id":"b5f6c1c2-1111-2222-3333-444455556666","turn-id":"12345",)"
             R"("cwd":"/Users/example/project","client":"codex-tui","input-messages":["Rename `foo` to `bar`."],)"
             R"("last-assistant-message":null})",
             HookOrigin::codexNotify),
      std::vector<std::string>{});
  const auto queued = events();
  ASSERT_EQ(queued.size(), 1u);
  EXPECT_EQ(queued[0], (AgentEvent{.id = queued[0].id,
                                   .time = kNow,
                                   .agent = "Codex",
                                   .kind = AgentEventKind::finished,
                                   .cwd = "/Users/example/project",
                                   .pid = kShell,
                                   .sessionID = "b5f6c1c2-1111-2222-3333-444455556666"}));
}

TEST_F(AgentHookTest, TakesAPayloadOfTheLimitAndRefusesOneByteMore) {
  std::string payload = R"({"hook_event_name":"Stop","x":""})";
  payload.insert(payload.size() - 2, kHookPayloadLimit - 1 - payload.size(), 'x');
  for (const std::size_t size : {kHookPayloadLimit - 1, kHookPayloadLimit}) {
    ASSERT_EQ(payload.size(), size);
    EXPECT_EQ(record(payload), std::vector<std::string>{});
    EXPECT_EQ(events().size(), 1u);
    payload.insert(payload.size() - 2, 1, 'x');
  }
  EXPECT_EQ(record(payload), std::vector<std::string>{"the payload has more than 1048576 bytes"});
  EXPECT_TRUE(events().empty());
}

TEST_F(AgentHookTest, TouchesNothingForAnEmptyPayload) {
  EXPECT_EQ(record(""), std::vector<std::string>{"the payload is empty"});
  EXPECT_EQ(folder.entries(), 0u);
}

TEST_F(AgentHookTest, QueuesNothingForBytesThatAreNoPayload) {
  for (const std::string& text : {std::string("not JSON"), std::string("\0\xff\xfe\x80", 4), std::string("[]"),
                                  std::string("null"), std::string(600, '['), std::string(kStop.substr(0, 40))}) {
    EXPECT_EQ(record(text), std::vector<std::string>{"the payload is no event that is recorded"});
    EXPECT_TRUE(events().empty());
  }
}

TEST_F(AgentHookTest, SaysThatTheFolderBelongsToSomebodyElse) {
  const std::string foreign = foreignFolder(folder.path());
  recorded.variables["BRINDLE_DATA_DIR"] = foreign;
  const auto problems = record(kStop);
  ASSERT_FALSE(problems.empty());
  EXPECT_EQ(problems[0], "use folder " + foreign + " of another user: Permission denied");
}

TEST_F(AgentHookTest, SaysThatTheLockIsNoFile) {
  std::filesystem::create_directories(state + "/agent-events.lock");
  const auto problems = record(kStop);
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_EQ(problems[0], "lock " + state + "/agent-events.lock (Is a directory): Permission denied");
}

TEST_F(AgentHookTest, EndsInZeroWhateverTheWorkDoes) {
  const auto work = [] { return std::vector<std::string>{"first", "second"}; };
  EXPECT_EQ(runHookQuietly(recorded.context, false, work), 0);
  EXPECT_EQ(recorded.remarks.text, "");
  EXPECT_EQ(runHookQuietly(recorded.context, true, work), 0);
  EXPECT_EQ(recorded.remarks.text, "brindle: first\nbrindle: second\n");
  const auto failing = []() -> std::vector<std::string> { throw std::runtime_error("no memory"); };
  EXPECT_EQ(runHookQuietly(recorded.context, true, failing), 0);
  EXPECT_EQ(recorded.remarks.text, "brindle: first\nbrindle: second\nbrindle: no memory\n");
  EXPECT_EQ(recorded.results.text, "");
}

TEST_F(AgentHookTest, LeavesNoAlarmBehind) {
  runHookQuietly(recorded.context, false, [] { return std::vector<std::string>{}; });
  EXPECT_EQ(::alarm(0), 0u);
}

}  // namespace
}  // namespace brindle
