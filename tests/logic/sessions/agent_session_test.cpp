#include "logic/sessions/agent_session.h"

#include <gmock/gmock.h>

#include <limits>

#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using Kind = SessionChildKind;

AgentSession sample() {
  return {.pid = 500,
          .startTime = 12,
          .start = dateFromSeconds(100.5),
          .agent = "Codex",
          .project = "shop",
          .cwd = "/home/ada/shop",
          .activity = SessionActivity::idle,
          .footprint = std::numeric_limits<std::uint64_t>::max(),
          .children =
              {{.pid = 501, .name = "node", .commandLine = "node x", .kind = Kind::mcp, .ports = {1}, .footprint = 9}},
          .ports = {1, 2},
          .cpuPercent = 0.5};
}

AgentSession withKinds(std::vector<Kind> kinds) {
  AgentSession session;
  for (const Kind kind : kinds) session.children.push_back({.kind = kind});
  return session;
}

TEST(AgentSession, ReadsBackAsWritten) {
  const auto document = parseJson(writeJson(encode(sample())));
  ASSERT_TRUE(document && document->object());
  EXPECT_EQ(decodeAgentSession(*document->object()), sample());
}

TEST(AgentSession, WritesItsFieldsInDeclarationOrderAndLeavesAbsentOnesOut) {
  AgentSession session = sample();
  session.project = std::nullopt;
  session.cwd = std::nullopt;
  session.cpuPercent = std::nullopt;
  session.footprint = 3;
  EXPECT_EQ(
      writeJson(encode(session)),
      R"({"pid":500,"startTime":12,"start":100.5,"agent":"Codex","activity":"idle","footprint":3,"children":[)"
      R"({"pid":501,"name":"node","commandLine":"node x","kind":"mcp","ports":[1],"footprint":9}],"ports":[1,2]})");
  EXPECT_EQ(decodeAgentSession(encode(session)), session);
}

TEST(AgentSession, IsNoRecordWithoutARequiredFieldOrWithOneOfAnotherType) {
  for (const char* key : {"pid", "startTime", "start", "agent", "activity", "footprint", "children", "ports"}) {
    JsonObject object = encode(sample());
    object.set(key, JsonObject{});
    EXPECT_EQ(decodeAgentSession(object), std::nullopt) << key;
    ASSERT_TRUE(object.erase(key)) << key;
    EXPECT_EQ(decodeAgentSession(object), std::nullopt) << key;
  }
}

TEST(AgentSession, IsNoRecordWithAChildThatIsNone) {
  for (const char* key : {"pid", "name", "commandLine", "kind", "ports", "footprint"}) {
    JsonObject child = encode(sample().children[0]);
    ASSERT_TRUE(child.erase(key)) << key;
    EXPECT_EQ(decodeSessionChild(child), std::nullopt) << key;
    JsonObject object = encode(sample());
    object.set("children", JsonArray{child});
    EXPECT_EQ(decodeAgentSession(object), std::nullopt) << key;
  }
  JsonObject object = encode(sample());
  object.set("children", JsonArray{1});
  EXPECT_EQ(decodeAgentSession(object), std::nullopt);
}

TEST(AgentSession, TakesAnOptionalFieldOfAnotherTypeForAbsent) {
  JsonObject object = encode(sample());
  for (const char* key : {"project", "cwd", "cpuPercent"}) object.set(key, true);
  AgentSession expected = sample();
  expected.project = expected.cwd = std::nullopt;
  expected.cpuPercent = std::nullopt;
  EXPECT_EQ(decodeAgentSession(object), expected);
}

TEST(AgentSession, HashesEqualRecordsAlike) {
  EXPECT_EQ(std::hash<AgentSession>{}(sample()), std::hash<AgentSession>{}(sample()));
  EXPECT_NE(std::hash<AgentSession>{}(sample()), std::hash<AgentSession>{}(AgentSession{}));
  EXPECT_EQ(std::hash<SessionChild>{}(sample().children[0]), std::hash<SessionChild>{}(sample().children[0]));
}

TEST(SessionSummary, CountsTwoDevServersAndOneMcpServer) {
  EXPECT_EQ(sessionSummary(withKinds({Kind::mcp, Kind::devServer, Kind::devServer})), "2 dev servers, 1 MCP server");
}

TEST(SessionSummary, SaysWhenThereIsNothing) { EXPECT_EQ(sessionSummary(AgentSession{}), "Nothing else yet"); }

TEST(SessionSummary, NamesOneOfEachKindInFixedOrder) {
  EXPECT_EQ(sessionSummary(withKinds({Kind::other, Kind::browser, Kind::testRunner, Kind::mcp, Kind::devServer})),
            "1 dev server, 1 MCP server, 1 test runner, 1 browser, 1 other process");
}

TEST(SessionSummary, NamesSeveralOfEachKind) {
  const struct {
    Kind kind;
    const char* text;
  } rows[] = {{Kind::devServer, "3 dev servers"},
              {Kind::mcp, "3 MCP servers"},
              {Kind::testRunner, "3 test runners"},
              {Kind::browser, "3 browsers"},
              {Kind::other, "3 other processes"}};
  ASSERT_EQ(std::size(rows), allCases<Kind>().size());
  for (const auto& row : rows) EXPECT_EQ(sessionSummary(withKinds({row.kind, row.kind, row.kind})), row.text);
}

}  // namespace
}  // namespace brindle
