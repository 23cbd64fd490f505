#include "logic/mcp/mcp_reply_style.h"

#include <gtest/gtest.h>

#include "base/json_reader.h"

namespace brindle {
namespace {

JsonObject parsed(std::string_view text) {
  const auto value = parseJson(text);
  EXPECT_TRUE(value && value->object() != nullptr) << text;
  return *value->object();
}

JsonObject initializeFrom(const std::string& name, const std::string& version) {
  return parsed(R"({"id":0,"method":"initialize","params":{"clientInfo":{"name":")" + name + R"(","version":")" +
                version + R"("}}})");
}

constexpr std::string_view kBare = "{}\n";
constexpr std::string_view kFramed = "Content-Length: 2\r\n\r\n{}";
constexpr std::string_view kFramedLine = "Content-Length: 2\r\n\r\n{}\n";

TEST(MCPReplyStyle, FramedRequestsGetAFrameWithNothingBehindItWhateverIsChosen) {
  for (const auto& [choice, text] : allCases<MCPFramingChoice>()) {
    EXPECT_EQ(MCPReplyStyle(choice).wrap("{}", MCPFrameStyle::header), kFramed) << text;
  }
}

TEST(MCPReplyStyle, HeaderAnswersALineWithAFrameAndOneLineFeed) {
  EXPECT_EQ(MCPReplyStyle(MCPFramingChoice::header).wrap("{}", MCPFrameStyle::line), kFramedLine);
}

TEST(MCPReplyStyle, LinesAnswersALineWithTheBareTextAndALineFeed) {
  EXPECT_EQ(MCPReplyStyle(MCPFramingChoice::lines).wrap("{}", MCPFrameStyle::line), kBare);
}

TEST(MCPReplyStyle, AutomaticBeginsAsHeader) {
  EXPECT_EQ(MCPReplyStyle(MCPFramingChoice::automatic).wrap("{}", MCPFrameStyle::line), kFramedLine);
}

TEST(MCPReplyStyle, AutomaticTurnsToLinesForAClientThatCannotBearAHeader) {
  MCPReplyStyle style(MCPFramingChoice::automatic);
  style.observe(initializeFrom("Cursor", "3.0"));
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kBare);
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::header), kFramed);
}

TEST(MCPReplyStyle, AutomaticStaysWithTheHeaderForOtherClients) {
  MCPReplyStyle style(MCPFramingChoice::automatic);
  style.observe(initializeFrom("claude-code", "2.0"));
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kFramedLine);
}

TEST(MCPReplyStyle, AutomaticStaysWithTheHeaderForAVersionThatBearsIt) {
  MCPReplyStyle style(MCPFramingChoice::automatic);
  style.observe(initializeFrom("codex-mcp-client", "0.138.0"));
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kFramedLine);
  style.observe(initializeFrom("codex-mcp-client", "0.137.0"));
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kBare);
}

TEST(MCPReplyStyle, HeaderStaysWhateverTheClientSays) {
  MCPReplyStyle style(MCPFramingChoice::header);
  style.observe(initializeFrom("cursor", "3.0"));
  style.observe(parsed(R"({"error":{"code":-32700}})"));
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kFramedLine);
}

TEST(MCPReplyStyle, AutomaticTurnsToLinesWhenTheClientComplainsWithoutAnId) {
  for (const std::string_view complaint :
       {R"({"jsonrpc":"2.0","error":{"code":-32700}})", R"({"error":{"code":-32600},"id":null})"}) {
    MCPReplyStyle style(MCPFramingChoice::automatic);
    style.observe(parsed(complaint));
    EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kBare) << complaint;
  }
}

TEST(MCPReplyStyle, OtherErrorsAreNoComplaint) {
  for (const std::string_view message :
       {R"({"error":{"code":-32700},"id":1})", R"({"error":{"code":-32601}})", R"({"error":{"code":-32699}})",
        R"({"error":{"code":"-32700"}})", R"({"error":-32700})", R"({"result":{}})",
        R"({"method":"x","error":{"code":-32700}})"}) {
    MCPReplyStyle style(MCPFramingChoice::automatic);
    style.observe(parsed(message));
    EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kFramedLine) << message;
  }
}

TEST(MCPReplyStyle, ALaterClientNameDoesNotTakeTheComplaintBack) {
  MCPReplyStyle style(MCPFramingChoice::automatic);
  style.observe(parsed(R"({"error":{"code":-32700}})"));
  style.observe(initializeFrom("claude-code", "2.0"));
  EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kBare);
}

TEST(MCPReplyStyle, InitializeWithoutClientInfoChangesNothing) {
  for (const std::string_view message :
       {R"({"method":"initialize"})", R"({"method":"initialize","params":[]})",
        R"({"method":"initialize","params":{"clientInfo":"cursor"}})",
        R"({"method":"initialize","params":{"clientInfo":{"name":1}}})", R"({"method":7})"}) {
    MCPReplyStyle style(MCPFramingChoice::automatic);
    style.observe(parsed(message));
    EXPECT_EQ(style.wrap("{}", MCPFrameStyle::line), kFramedLine) << message;
  }
}

TEST(MCPKnownClients, NamesMatchByTheirBeginningInAnyCase) {
  for (const std::string_view name :
       {"cursor", "cursor-vscode", "Cursor", "antigravity-client", "Antigravity", "windsurf", "WINDSURF 2"}) {
    EXPECT_TRUE(needsBareLines({name, "9.9"})) << name;
  }
  for (const std::string_view name :
       {"", "curso", "my-cursor", "xursor", "claude-code", "gemini-cli-mcp-client", "codex"}) {
    EXPECT_FALSE(needsBareLines({name, "0.1"})) << name;
  }
}

TEST(MCPKnownClients, CodexNeedsBareLinesBelowItsMinor138) {
  for (const std::string_view version : {"0.1", "0.121.0", "0.137.9", "0.137", "", "x", "x.200", "0.x", "138"}) {
    EXPECT_TRUE(needsBareLines({"codex-mcp-client", version})) << version;
  }
  for (const std::string_view version : {"0.138", "0.138.0", "0.138.0-alpha.1", "0.139.1", "1.0", "2.1.0"}) {
    EXPECT_FALSE(needsBareLines({"codex-mcp-client", version})) << version;
  }
}

TEST(MCPReplies, AMessageWithoutMethodButWithAResultOrErrorIsAReply) {
  EXPECT_TRUE(isMCPReply(parsed(R"({"id":1,"result":{}})")));
  EXPECT_TRUE(isMCPReply(parsed(R"({"error":{"code":-32700}})")));
  EXPECT_FALSE(isMCPReply(parsed(R"({"id":1,"method":"ping","result":{}})")));
  EXPECT_FALSE(isMCPReply(parsed(R"({"id":1})")));
  EXPECT_FALSE(isMCPReply(parsed("{}")));
}

}  // namespace
}  // namespace brindle
