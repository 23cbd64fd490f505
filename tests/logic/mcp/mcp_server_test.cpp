#include "logic/mcp/mcp_server.h"

#include <gtest/gtest.h>

#include "base/json_writer.h"
#include "logic/mcp/mcp_tools.h"
#include "tests/logic/mcp/mcp_server_fixture.h"

namespace brindle {
namespace {

constexpr std::string_view kParseErrorReply = R"({"error":{"code":-32700,"message":"Parse error"},"jsonrpc":"2.0"})";

class MCPServerHandle : public MCPServerFixture {
 protected:
  std::string reply(std::string_view message) { return server.handle(message, kCallTime).value_or("no reply"); }
};

TEST_F(MCPServerHandle, InitializeTellsVersionToolsNameAndInstructions) {
  EXPECT_EQ(
      reply(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-06-18"}})"),
      R"({"id":0,"jsonrpc":"2.0","result":{"capabilities":{"tools":{}},"instructions":"Read only. Brindle never )"
      R"(stops a process from this server. request_quit asks the person in the Brindle app, and nothing stops )"
      R"(until they confirm. System processes and other users' processes are left alone. This covers every AI )"
      R"(agent, not one vendor.","protocolVersion":"2024-11-05","serverInfo":{"name":"brindle","version":"1.3.0"}}})");
}

TEST_F(MCPServerHandle, PingAnswersAnEmptyObject) {
  EXPECT_EQ(reply(R"({"id":7,"method":"ping"})"), R"({"id":7,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerHandle, PingWithANullIdIsAnsweredWithoutId) {
  EXPECT_EQ(reply(R"({"id":null,"method":"ping"})"), R"({"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerHandle, PingWithoutIdIsAnsweredWithoutId) {
  EXPECT_EQ(reply(R"({"method":"ping"})"), R"({"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerHandle, AStringIdIsEchoedAsAString) {
  EXPECT_EQ(reply(R"({"id":"abc","method":"ping"})"), R"({"id":"abc","jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerHandle, ANumericIdKeepsItsText) {
  for (const std::string id : {"0", "-1", "3.5", "1e2", "9007199254740993", "123456789012345678901234567890"}) {
    EXPECT_EQ(reply(R"({"id":)" + id + R"(,"method":"ping"})"), R"({"id":)" + id + R"(,"jsonrpc":"2.0","result":{}})");
  }
}

TEST_F(MCPServerHandle, AnyOtherIdIsEchoedAsItCame) {
  for (const std::string id : {"true", "[1,2]", R"({"a":1})"}) {
    EXPECT_EQ(reply(R"({"id":)" + id + R"(,"method":"ping"})"), R"({"id":)" + id + R"(,"jsonrpc":"2.0","result":{}})");
  }
}

TEST_F(MCPServerHandle, AnErrorReplyCarriesTheIdToo) {
  EXPECT_EQ(reply(R"({"id":"abc","method":"resources/list"})"),
            R"({"error":{"code":-32601,"message":"Method not found"},"id":"abc","jsonrpc":"2.0"})");
  EXPECT_EQ(reply(R"({"id":null,"method":"resources/list"})"),
            R"({"error":{"code":-32601,"message":"Method not found"},"jsonrpc":"2.0"})");
}

TEST_F(MCPServerHandle, ANotificationGetsNoReply) {
  EXPECT_EQ(server.handle(R"({"jsonrpc":"2.0","method":"notifications/initialized"})", kCallTime), std::nullopt);
  EXPECT_EQ(server.handle(R"({"method":"notifications/"})", kCallTime), std::nullopt);
}

TEST_F(MCPServerHandle, ANotificationMethodWithAnIdIsNotFound) {
  EXPECT_EQ(reply(R"({"id":1,"method":"notifications/initialized"})"),
            R"({"error":{"code":-32601,"message":"Method not found"},"id":1,"jsonrpc":"2.0"})");
}

TEST_F(MCPServerHandle, ANotificationMethodWithANullIdIsNotFoundWithoutId) {
  EXPECT_EQ(reply(R"({"id":null,"method":"notifications/initialized"})"),
            R"({"error":{"code":-32601,"message":"Method not found"},"jsonrpc":"2.0"})");
}

TEST_F(MCPServerHandle, ARequestWithoutIdThatIsNoNotificationIsNotFound) {
  EXPECT_EQ(reply(R"({"method":"shutdown"})"),
            R"({"error":{"code":-32601,"message":"Method not found"},"jsonrpc":"2.0"})");
}

TEST_F(MCPServerHandle, AMethodThatIsNoStringCountsAsEmpty) {
  for (const std::string method : {"null", "1", "[\"ping\"]", "{}", "true"}) {
    EXPECT_EQ(reply(R"({"id":1,"method":)" + method + "}"),
              R"({"error":{"code":-32601,"message":"Method not found"},"id":1,"jsonrpc":"2.0"})");
  }
  EXPECT_EQ(reply(R"({"id":1})"), R"({"error":{"code":-32601,"message":"Method not found"},"id":1,"jsonrpc":"2.0"})");
}

TEST_F(MCPServerHandle, MethodsMatchExactly) {
  for (const std::string method : {"Ping", "ping ", "tools/List", "notification/x", "initialized"}) {
    EXPECT_EQ(reply(R"({"id":1,"method":")" + method + R"("})"),
              R"({"error":{"code":-32601,"message":"Method not found"},"id":1,"jsonrpc":"2.0"})");
  }
}

TEST_F(MCPServerHandle, BytesThatAreNoJsonObjectAreAParseErrorWithoutId) {
  for (const std::string_view message : {"", " ", "x", "{", "[]", "[{\"id\":1,\"method\":\"ping\"}]", "null", "1",
                                         "\"ping\"", "{\"id\":1,}", "{\"id\":1,\"method\":\"\xff\"}", "{\"id\":1}{}"}) {
    EXPECT_EQ(reply(message), kParseErrorReply) << message;
  }
}

TEST_F(MCPServerHandle, ATrailingCarriageReturnIsWhiteSpace) {
  EXPECT_EQ(reply("{\"id\":1,\"method\":\"ping\"}\r"), R"({"id":1,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerHandle, EveryPrefixOfAMessageIsAParseError) {
  const std::string message = R"({"id":1,"method":"ping"})";
  for (std::size_t length = 0; length < message.size(); ++length) {
    EXPECT_EQ(reply(message.substr(0, length)), kParseErrorReply) << length;
  }
}

TEST_F(MCPServerHandle, WhileOffTheProtocolStillAnswers) {
  const auto initialize = reply(R"({"id":1,"method":"initialize"})");
  const auto list = reply(R"({"id":1,"method":"tools/list"})");
  server.enabled = false;
  EXPECT_EQ(reply(R"({"id":1,"method":"initialize"})"), initialize);
  EXPECT_EQ(reply(R"({"id":1,"method":"tools/list"})"), list);
  EXPECT_EQ(reply(R"({"id":1,"method":"ping"})"), R"({"id":1,"jsonrpc":"2.0","result":{}})");
}

TEST_F(MCPServerHandle, ListsTheDescriptorsOfTheTools) {
  const std::string tools = writeJson(MCPTools::descriptors(), {.sortedKeys = true, .escapeSlashes = false});
  EXPECT_EQ(reply(R"({"id":1,"method":"tools/list"})"), R"({"id":1,"jsonrpc":"2.0","result":{"tools":)" + tools + "}}");
}

TEST_F(MCPServerHandle, InitializeIsNotDemandedFirst) { EXPECT_EQ(call(R"({"name":"status"})").text, "STATUS"); }

TEST_F(MCPServerHandle, AToolCallAnswersContentAndFlag) {
  EXPECT_EQ(reply(R"({"id":1,"method":"tools/call","params":{"name":"ports"}})"),
            R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"PORTS","type":"text"}],"isError":false}})");
}

TEST_F(MCPServerHandle, ParamsThatAreNoObjectCountAsEmpty) {
  for (const std::string params : {"null", "[]", "\"status\"", "3"}) {
    EXPECT_EQ(call(params), (ToolAnswer{"Unknown tool.", true})) << params;
  }
  EXPECT_EQ(reply(R"({"id":1,"method":"tools/call"})"),
            R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"Unknown tool.","type":"text"}],"isError":true}})");
}

TEST_F(MCPServerHandle, AReplyIsAlwaysSerialisedBrokenTextIncluded) {
  server.status = [] { return std::string("name \xff\xc3"); };
  EXPECT_EQ(
      reply(R"({"id":1,"method":"tools/call","params":{"name":"status"}})"),
      "{\"id\":1,\"jsonrpc\":\"2.0\",\"result\":{\"content\":[{\"text\":\"name \uFFFD\uFFFD\",\"type\":\"text\"}],"
      "\"isError\":false}}");
}

TEST_F(MCPServerHandle, HostileDepthIsAParseError) {
  EXPECT_EQ(reply(std::string(100'000, '[')), kParseErrorReply);
  EXPECT_EQ(reply("{\"id\":" + std::string(100'000, '[') + std::string(100'000, ']') + "}"), kParseErrorReply);
}

}  // namespace
}  // namespace brindle
