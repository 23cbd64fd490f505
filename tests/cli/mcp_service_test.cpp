#include "cli/mcp_service.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "base/json_reader.h"
#include "logic/mcp/mcp_heartbeat.h"
#include "logic/mcp/mcp_quit_inbox.h"
#include "logic/mcp/mcp_request_log.h"
#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

constexpr Date kNow = dateFromSeconds(1'772'352'000);

class ScriptedSource : public SnapshotSource {
 public:
  Result<HostSnapshot> take(const ProtectionRules& rules) override {
    ++takes;
    if (failure != 0) return fail(failure, "look at the processes");
    return snapshotOf(processes, SnapshotContext{kNow, 1000, SystemProcessRules::forLinux(), rules});
  }

  std::vector<TrackedProcess> processes = {
      {.pid = 500, .ppid = 400, .uid = 1000, .name = "claude", .role = ProcessRole::agent, .agentName = "Claude Code"},
      {.pid = 510, .ppid = 500, .uid = 1000, .name = "node", .commandLine = "node server.js", .ports = {3000}},
      {.pid = 700, .ppid = 1, .uid = 999, .name = "postgres", .ports = {5432}}};
  int takes = 0;
  int failure = 0;
};

class MCPServiceTest : public ::testing::Test {
 protected:
  std::string call(const std::string& params, Date now = kNow) {
    const auto message = parseJson(R"({"id":1,"method":"tools/call","params":)" + params + "}");
    return service.answer(*message->object(), now).value_or("none");
  }
  [[nodiscard]] std::vector<MCPLogEntry> logged() const { return MCPRequestLog(folder.path()).recent(kNow); }

  TemporaryFolder folder;
  ScriptedSource source;
  std::vector<std::string> remarks;
  MCPService service{{.source = source,
                      .stateFolder = folder.path(),
                      .settingsFile = folder.file("settings.json"),
                      .remark = [this](std::string_view line) { remarks.emplace_back(line); }}};
};

TEST_F(MCPServiceTest, NothingIsLookedAtBeforeAToolNeedsIt) {
  for (const char* method : {"initialize", "ping", "tools/list"}) {
    const auto message = parseJson(std::string(R"({"id":1,"method":")") + method + "\"}");
    EXPECT_NE(service.answer(*message->object(), kNow), std::nullopt);
  }
  EXPECT_EQ(source.takes, 0);
  EXPECT_EQ(folder.entries(), 0u);
}

TEST_F(MCPServiceTest, OneSnapshotServesCallsOfOneSecond) {
  call(R"({"name":"status"})");
  call(R"({"name":"ports"})", kNow + Seconds{0.999});
  EXPECT_EQ(source.takes, 1);
  call(R"({"name":"agents"})", kNow + Seconds{1});
  EXPECT_EQ(source.takes, 2);
  call(R"({"name":"agents"})", kNow - Seconds{3600});  // the clock was set back
  EXPECT_EQ(source.takes, 3);
}

TEST_F(MCPServiceTest, AFailingSourceFailsEachToolInItsOwnWay) {
  source.failure = EACCES;
  EXPECT_NE(call(R"({"name":"status"})").find("Brindle could not look at the processes: "), std::string::npos);
  const std::string agents = call(R"({"name":"agents"})");
  EXPECT_NE(agents.find("Brindle could not list the agents: "), std::string::npos);
  EXPECT_NE(agents.find("\"isError\":true"), std::string::npos);
  EXPECT_NE(call(R"({"name":"safety","arguments":{"pid":510}})").find("leaveAlone"), std::string::npos);
  EXPECT_NE(call(R"({"name":"request_quit","arguments":{"pid":510}})").find("\\\"accepted\\\":false"),
            std::string::npos);
}

TEST_F(MCPServiceTest, TheSessionDecidesBeforeThePidAndThePidBeforeThePort) {
  const auto verdictOf = [&](const std::string& arguments) {
    call(R"({"name":"safety","arguments":)" + arguments + "}");
    return logged().back().result;
  };
  EXPECT_EQ(verdictOf(R"({"sessionPid":500,"pid":99999,"port":1})"), "askFirst");
  EXPECT_EQ(verdictOf(R"({"sessionPid":99999,"pid":510})"), "leaveAlone");
  EXPECT_EQ(verdictOf(R"({"pid":510,"port":5432})"), "askFirst");
  EXPECT_EQ(verdictOf(R"({"pid":99999,"port":3000})"), "leaveAlone");
  EXPECT_EQ(verdictOf(R"({"port":3000})"), "askFirst");
  EXPECT_EQ(verdictOf(R"({"port":5432})"), "leaveAlone");
}

TEST_F(MCPServiceTest, AFiledRequestCarriesTargetTimeAndACleanedBoundedNote) {
  call(R"({"name":"request_quit","arguments":{"sessionPid":500,"pid":510,"note":"now\u001b[31m --key=abc )" +
       std::string(2000, '.') + "\"}}");
  const auto pending = MCPQuitInbox(folder.path()).pending();
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_EQ(pending[0].kind, "session");
  EXPECT_EQ(pending[0].sessionPID, 500);
  EXPECT_EQ(pending[0].pid, 510);
  EXPECT_EQ(pending[0].time, kNow);
  EXPECT_EQ(pending[0].id.size(), 36u);
  ASSERT_TRUE(pending[0].note);
  EXPECT_TRUE(pending[0].note->starts_with("now --key=••• ...")) << *pending[0].note;
  EXPECT_EQ(pending[0].note->size(), kNoteLimit + 6);  // three bullets are nine bytes
}

TEST_F(MCPServiceTest, AskingAgainWhileARequestWaitsAnswersItsId) {
  call(R"({"name":"request_quit","arguments":{"pid":510}})");
  const auto pending = MCPQuitInbox(folder.path()).pending();
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_NE(call(R"({"name":"request_quit","arguments":{"pid":510}})").find(pending[0].id), std::string::npos);
  EXPECT_EQ(MCPQuitInbox(folder.path()).pending(), pending);
}

TEST_F(MCPServiceTest, ARequestForAnotherUsersProcessIsRefusedAndNotFiled) {
  const std::string reply = call(R"({"name":"request_quit","arguments":{"pid":700}})");
  EXPECT_NE(reply.find("Owned by another user."), std::string::npos) << reply;
  EXPECT_NE(reply.find("\"isError\":false"), std::string::npos) << reply;
  EXPECT_EQ(MCPQuitInbox(folder.path()).pending().size(), 0u);
}

TEST_F(MCPServiceTest, ARuleOfTheUserCountsAtTheNextCallAndForSessionsToo) {
  const auto verdictOf = [&](const std::string& arguments) {
    call(R"({"name":"safety","arguments":)" + arguments + "}");
    return logged().back().result;
  };
  EXPECT_EQ(verdictOf(R"({"pid":510})"), "askFirst");
  EXPECT_EQ(verdictOf(R"({"sessionPid":500})"), "askFirst");
  writeRaw(folder.file("settings.json"), R"({"protect":{"names":["node","claude"]}})");
  EXPECT_EQ(verdictOf(R"({"pid":510})"), "leaveAlone");
  EXPECT_EQ(verdictOf(R"({"sessionPid":500})"), "leaveAlone");
}

TEST_F(MCPServiceTest, ALongNameOfAToolIsLoggedCut) {
  call(R"({"name":")" + std::string(kLoggedToolLimit + 1, 'x') + "\"}");
  EXPECT_EQ(logged().back().tool, std::string(kLoggedToolLimit, 'x'));
  call(R"({"name":")" + std::string(kLoggedToolLimit, 'y') + "\"}");
  EXPECT_EQ(logged().back().tool, std::string(kLoggedToolLimit, 'y'));
}

TEST_F(MCPServiceTest, NamesThatOthersChooseAreCleanedInEveryAnswer) {
  source.processes[1].name = "no\x1b[31mde\x07";
  for (const char* params : {R"({"name":"safety","arguments":{"pid":510}})", R"({"name":"ports"})"}) {
    const std::string reply = call(params);
    EXPECT_EQ(reply.find("u001b"), std::string::npos) << reply;
    EXPECT_EQ(reply.find("u0007"), std::string::npos) << reply;
    EXPECT_NE(reply.find("node"), std::string::npos) << reply;
  }
}

TEST_F(MCPServiceTest, TheHeartbeatTellsWhetherTheApplicationRuns) {
  ASSERT_TRUE(MCPHeartbeat::write(folder.path(), kNow));
  const std::string request = R"({"name":"request_quit","arguments":{"pid":510}})";
  EXPECT_NE(call(request, kNow + Seconds{14.9}).find("\\\"appRunning\\\":true"), std::string::npos);
  EXPECT_NE(call(request, kNow + Seconds{15}).find("\\\"appRunning\\\":false"), std::string::npos);
}

TEST_F(MCPServiceTest, OnlyAFalseInTheSettingsTurnsItOff) {
  for (const std::string document : {"{}", "{\"mcpEnabled\":true}", "{\"mcpEnabled\":0}", "{\"mcpEnabled\":null}"}) {
    writeRaw(folder.file("settings.json"), document);
    EXPECT_NE(call(R"({"name":"status"})").find("\"isError\":false"), std::string::npos) << document;
  }
  writeRaw(folder.file("settings.json"), "{\"mcpEnabled\":false}");
  EXPECT_NE(call(R"({"name":"status"})").find("Brindle's MCP server is off. Turn it on in Brindle's settings."),
            std::string::npos);
  EXPECT_TRUE(remarks.empty());
}

TEST_F(MCPServiceTest, WithoutAStateFolderReportsWorkAndRequestsFail) {
  MCPService bare({.source = source, .remark = [](std::string_view) {}});
  const auto status = parseJson(R"({"id":1,"method":"tools/call","params":{"name":"status"}})");
  EXPECT_NE(bare.answer(*status->object(), kNow)->find("\"isError\":false"), std::string::npos);
  const auto quit =
      parseJson(R"({"id":1,"method":"tools/call","params":{"name":"request_quit","arguments":{"pid":510}}})");
  EXPECT_NE(bare.answer(*quit->object(), kNow)->find("Brindle could not file the request"), std::string::npos);
}

TEST_F(MCPServiceTest, OneProblemIsRemarkedOnceInARow) {
  std::filesystem::create_directory(folder.file("mcp-log.lock"));
  call(R"({"name":"status"})");
  call(R"({"name":"status"})");
  ASSERT_EQ(remarks.size(), 1u);
  EXPECT_TRUE(remarks[0].starts_with("cannot record the call: ")) << remarks[0];
}

}  // namespace
}  // namespace brindle
