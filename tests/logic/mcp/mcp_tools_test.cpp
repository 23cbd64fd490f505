#include "logic/mcp/mcp_tools.h"

#include <gtest/gtest.h>

#include "base/json_writer.h"
#include "tests/logic/mcp/mcp_server_fixture.h"

namespace brindle {
namespace {

class MCPToolsCall : public MCPServerFixture {};

TEST(MCPToolsList, DescribesTheFiveToolsInTheirOrder) {
  EXPECT_EQ(
      writeJson(JsonValue(MCPTools::descriptors()), JsonStyle{.sortedKeys = true}),
      R"([{"description":"What Brindle sees right now: ghosts, dev servers, live agent sessions, memory and ports.",)"
      R"("inputSchema":{"properties":{},"type":"object"},"name":"status"},)"
      R"({"description":"Which processes are listening, and whether each one is yours.",)"
      R"("inputSchema":{"properties":{},"type":"object"},"name":"ports"},)"
      R"({"description":"Live agent sessions and the processes they started, plus crash orphans left behind.",)"
      R"("inputSchema":{"properties":{},"type":"object"},"name":"agents"},)"
      R"({"description":"Whether Brindle would ask you before stopping a pid, a port, or a session. This never stops )"
      R"(anything.","inputSchema":{"properties":{"pid":{"type":"integer"},"port":{"type":"integer"},)"
      R"("sessionPid":{"type":"integer"}},"type":"object"},"name":"safety"},)"
      R"({"description":"Ask the person using Brindle to confirm a stop. Nothing is signalled here. System processes )"
      R"(and other users are refused.","inputSchema":{"properties":{"note":{"description":"Why you are asking. Secrets )"
      R"(are redacted.","type":"string"},"pid":{"type":"integer"},"port":{"type":"integer"},)"
      R"("sessionPid":{"type":"integer"}},"type":"object"},"name":"request_quit"}])");
}

TEST_F(MCPToolsCall, ReportsAnswerTheirDocumentAndLogOk) {
  EXPECT_EQ(call(R"({"name":"status"})"), (ToolAnswer{"STATUS", false}));
  EXPECT_EQ(call(R"({"name":"ports","arguments":{}})"), (ToolAnswer{"PORTS", false}));
  EXPECT_EQ(call(R"({"name":"agents","arguments":7})"), (ToolAnswer{"AGENTS", false}));
  EXPECT_EQ(logged, (std::vector{entry("status", "status", "ok"), entry("ports", "ports", "ok"),
                                 entry("agents", "agents", "ok")}));
}

TEST_F(MCPToolsCall, FailingAgentsIsAToolErrorAndLogged) {
  agentsAnswer = fail(5, "read processes");
  const ToolAnswer answer = call(R"({"name":"agents"})");
  EXPECT_TRUE(answer.isError);
  EXPECT_EQ(answer.text, "Brindle could not list the agents: " + agentsAnswer.error().message() + ".");
  EXPECT_TRUE(answer.text.starts_with("Brindle could not list the agents: read processes: ")) << answer;
  EXPECT_EQ(logged, std::vector{entry("agents", "agents", "error")});
}

TEST_F(MCPToolsCall, OffAnswersTheOffMessageWhateverTheNameAndRunsNothing) {
  server.enabled = false;
  for (const std::string name : {"status", "ports", "agents", "safety", "request_quit", "nonsense"}) {
    EXPECT_EQ(call(R"({"name":")" + name + R"(","arguments":{"pid":1}})"), (ToolAnswer{"It is off.", true}));
    EXPECT_EQ(logged.back(), entry(name, "off", "MCP is off"));
  }
  EXPECT_EQ(call("{}"), (ToolAnswer{"It is off.", true}));
  EXPECT_EQ(logged.back(), entry("tools/call", "off", "MCP is off"));
  EXPECT_TRUE(calls.empty());
}

TEST_F(MCPToolsCall, UnknownToolsAreErrorsLoggedUnderTheirName) {
  EXPECT_EQ(call(R"({"name":"kill"})"), (ToolAnswer{"Unknown tool.", true}));
  EXPECT_EQ(call(R"({"name":"Status"})"), (ToolAnswer{"Unknown tool.", true}));
  EXPECT_EQ(logged, (std::vector{entry("kill", "unknown tool", "error"), entry("Status", "unknown tool", "error")}));
}

TEST_F(MCPToolsCall, AMissingOrWrongNameIsLoggedAsToolsCall) {
  for (const std::string params : {"{}", R"({"name":""})", R"({"name":5})"}) {
    EXPECT_EQ(call(params), (ToolAnswer{"Unknown tool.", true}));
    EXPECT_EQ(logged.back(), entry("tools/call", "unknown tool", "error"));
  }
}

TEST_F(MCPToolsCall, SafetyWithoutTargetSaysWhatIsMissing) {
  EXPECT_EQ(call(R"({"name":"safety","arguments":{}})"), (ToolAnswer{"Say which pid, port or sessionPid.", true}));
  EXPECT_EQ(call(R"({"name":"safety"})"), (ToolAnswer{"Say which pid, port or sessionPid.", true}));
  EXPECT_EQ(logged,
            (std::vector{entry("safety", "missing target", "error"), entry("safety", "missing target", "error")}));
  EXPECT_TRUE(calls.empty());
}

TEST_F(MCPToolsCall, SafetyAnswersVerdictReasonAndName) {
  EXPECT_EQ(call(R"({"name":"safety","arguments":{"pid":42}})"),
            (ToolAnswer{R"({"name":"node","reason":"Brindle will ask you in the app before it stops anything.",)"
                        R"("verdict":"askFirst"})",
                        false}));
  EXPECT_EQ(targets, std::vector{MCPTarget{.pid = 42}});
  EXPECT_EQ(logged, std::vector{entry("safety", "pid 42", "askFirst")});
}

TEST_F(MCPToolsCall, SafetyNamesNothingWithAnEmptyText) {
  verdict = {"leaveAlone", "Nothing of yours matches.", std::nullopt};
  EXPECT_EQ(call(R"({"name":"safety","arguments":{"port":3000}})").text,
            R"({"name":"","reason":"Nothing of yours matches.","verdict":"leaveAlone"})");
  EXPECT_EQ(logged, std::vector{entry("safety", "port 3000", "leaveAlone")});
}

TEST_F(MCPToolsCall, SafetyIsAlwaysSerialisedBrokenNamesIncluded) {
  verdict = {"leaveAlone", "r", "\xff"};
  EXPECT_EQ(call(R"({"name":"safety","arguments":{"pid":1}})"),
            (ToolAnswer{"{\"name\":\"\uFFFD\",\"reason\":\"r\",\"verdict\":\"leaveAlone\"}", false}));
}

TEST_F(MCPToolsCall, TargetTextPrefersTheSessionThenJoinsPidAndPort) {
  for (const auto& [arguments, text] :
       std::vector<std::pair<std::string, std::string>>{{R"({"sessionPid":7})", "session 7"},
                                                        {R"({"sessionPid":7,"pid":8,"port":9})", "session 7"},
                                                        {R"({"pid":8,"port":9})", "pid 8 port 9"},
                                                        {R"({"port":9})", "port 9"},
                                                        {R"({"pid":8})", "pid 8"},
                                                        {R"({"pid":-8})", "pid -8"}}) {
    call(R"({"name":"safety","arguments":)" + arguments + "}");
    EXPECT_EQ(logged.back(), entry("safety", text, "askFirst")) << arguments;
  }
}

TEST_F(MCPToolsCall, IntegersWithin32SignedBitsCount) {
  for (const auto& [value, pid] : std::vector<std::pair<std::string, std::int32_t>>{{"2147483647", 2147483647},
                                                                                    {"-2147483648", -2147483647 - 1},
                                                                                    {"0", 0},
                                                                                    {"3.0", 3},
                                                                                    {"3.99", 3},
                                                                                    {"-3.99", -3},
                                                                                    {"2147483647.5", 2147483647},
                                                                                    {"4e1", 40}}) {
    call(R"({"name":"safety","arguments":{"pid":)" + value + "}}");
    ASSERT_FALSE(targets.empty()) << value;
    EXPECT_EQ(targets.back(), MCPTarget{.pid = pid}) << value;
  }
}

TEST_F(MCPToolsCall, OtherValuesCountAsNotGiven) {
  for (const std::string value : {"2147483648", "-2147483649", "1e300", "-1e300", "true", "false", "null", "\"42\"",
                                  "[42]", "{\"pid\":42}", "99999999999999999999"}) {
    EXPECT_EQ(call(R"({"name":"safety","arguments":{"pid":)" + value + "}}"),
              (ToolAnswer{"Say which pid, port or sessionPid.", true}))
        << value;
  }
}

TEST_F(MCPToolsCall, RequestQuitWithoutTargetSaysWhatIsMissing) {
  EXPECT_EQ(call(R"({"name":"request_quit","arguments":{"note":"please"}})"),
            (ToolAnswer{"Say which pid, port or sessionPid.", true}));
  EXPECT_EQ(logged, std::vector{entry("request_quit", "missing target", "error")});
  EXPECT_TRUE(calls.empty());
}

TEST_F(MCPToolsCall, RequestQuitForAnotherUsersProcessIsRefusedAndFilesNothing) {
  verdict = {"leaveAlone", "Owned by another user.", "postgres"};
  EXPECT_EQ(call(R"({"name":"request_quit","arguments":{"pid":42}})"),
            (ToolAnswer{R"({"accepted":false,"reason":"Owned by another user.","verdict":"leaveAlone"})", false}));
  EXPECT_TRUE(quits.empty());
  EXPECT_EQ(logged, std::vector{entry("request_quit", "pid 42", "refused: Owned by another user.")});
}

TEST_F(MCPToolsCall, RequestQuitFilesWhatMayBeAsked) {
  server.appRunning = true;
  EXPECT_EQ(
      call(R"({"name":"request_quit","arguments":{"pid":42,"note":"stuck"}})"),
      (ToolAnswer{R"({"accepted":true,"appRunning":true,"message":"Brindle will ask you in the app. Nothing stops )"
                  R"(until you confirm.","requestId":"ID-1","verdict":"askFirst"})",
                  false}));
  EXPECT_EQ(quits, (std::vector{MCPQuitCall{"pid", MCPTarget{.pid = 42}, "stuck"}}));
  EXPECT_EQ(logged, std::vector{entry("request_quit", "pid 42", "needs confirmation ID-1")});
  EXPECT_EQ(calls, (std::vector<std::string>{"safety", "requestQuit"}));
}

TEST_F(MCPToolsCall, RequestQuitSaysWhenTheApplicationIsNotOpen) {
  EXPECT_EQ(
      call(R"({"name":"request_quit","arguments":{"pid":42}})").text,
      R"({"accepted":true,"appRunning":false,"message":"Brindle isn't open. The request waits until you open it, )"
      R"(and nothing stops until you confirm there.","requestId":"ID-1","verdict":"askFirst"})");
}

TEST_F(MCPToolsCall, RequestQuitWithPidAndSessionIsOfKindSession) {
  call(R"({"name":"request_quit","arguments":{"pid":42,"sessionPid":7,"port":1}})");
  EXPECT_EQ(quits, (std::vector{MCPQuitCall{"session", MCPTarget{42, 1, 7}, std::nullopt}}));
}

TEST_F(MCPToolsCall, RequestQuitWithPidAndPortIsOfKindPid) {
  call(R"({"name":"request_quit","arguments":{"pid":42,"port":1}})");
  EXPECT_EQ(quits, (std::vector{MCPQuitCall{"pid", MCPTarget{42, 1, std::nullopt}, std::nullopt}}));
}

TEST_F(MCPToolsCall, RequestQuitWithAPortAloneIsOfKindPort) {
  call(R"({"name":"request_quit","arguments":{"port":3000}})");
  EXPECT_EQ(quits, (std::vector{MCPQuitCall{"port", MCPTarget{.port = 3000}, std::nullopt}}));
}

TEST_F(MCPToolsCall, RequestQuitHandsOnARedactedNote) {
  call(R"({"name":"request_quit","arguments":{"pid":42,"note":"curl --token=abc  now"}})");
  ASSERT_EQ(quits.size(), 1u);
  EXPECT_EQ(quits[0].note, "curl --token=•••  now");
}

TEST_F(MCPToolsCall, ANoteThatIsNoTextCountsAsNotGiven) {
  call(R"({"name":"request_quit","arguments":{"pid":42,"note":["x"]}})");
  ASSERT_EQ(quits.size(), 1u);
  EXPECT_EQ(quits[0].note, std::nullopt);
}

TEST_F(MCPToolsCall, FailingToFileIsAToolErrorAndLogged) {
  quitAnswer = fail(kFileWriteNoPermission, "lock inbox");
  EXPECT_EQ(call(R"({"name":"request_quit","arguments":{"pid":42}})"),
            (ToolAnswer{"Brindle could not file the request: lock inbox: Permission denied.", true}));
  EXPECT_EQ(logged, std::vector{entry("request_quit", "pid 42", "error")});
}

TEST_F(MCPToolsCall, EveryCallIsLoggedExactlyOnceWithItsTime) {
  for (const std::string params :
       {"{}", R"({"name":"status"})", R"({"name":"ports"})", R"({"name":"agents"})", R"({"name":"safety"})",
        R"({"name":"safety","arguments":{"pid":1}})", R"({"name":"request_quit"})",
        R"({"name":"request_quit","arguments":{"pid":1}})", R"({"name":"x"})"}) {
    logged.clear();
    call(params);
    ASSERT_EQ(logged.size(), 1u) << params;
    EXPECT_EQ(logged[0].time, kCallTime);
  }
}

}  // namespace
}  // namespace brindle
