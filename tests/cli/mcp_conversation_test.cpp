#include "cli/mcp_conversation.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/json_record.h"
#include "logic/mcp/mcp_server.h"

namespace brindle {
namespace {

constexpr std::string_view kParseError = R"({"error":{"code":-32700,"message":"Parse error"},"jsonrpc":"2.0"})";

class MCPConversationTest : public ::testing::Test {
 protected:
  MCPConversation begin(MCPFramingChoice choice) {
    return {choice,
            {.answer = [this](const JsonObject& message) -> std::optional<std::string> {
               const std::string method = stringMember(message, "method").value_or("");
               asked.push_back(method);
               if (method == "silent") return std::nullopt;
               if (method == "long") return "\"" + std::string(longReply - 2, 'x') + "\"";
               return "\"" + method + "\"";
             },
             .send =
                 [this](std::string_view bytes) {
                   sent.emplace_back(bytes);
                   return sent.size() < sendsUntilGone;
                 }}};
  }

  std::vector<std::string> asked;
  std::vector<std::string> sent;
  std::size_t sendsUntilGone = 1000;
  std::size_t longReply = kMCPReplyLimit;
};

TEST_F(MCPConversationTest, EachMessageIsAnsweredInItsOwnWriteAndStyle) {
  MCPConversation conversation = begin(MCPFramingChoice::automatic);
  EXPECT_TRUE(conversation.receive("{\"method\":\"a\"}\n" + MCPFraming::frame("{\"method\":\"b\"}")));
  EXPECT_EQ(sent, (std::vector<std::string>{"Content-Length: 3\r\n\r\n\"a\"\n", "Content-Length: 3\r\n\r\n\"b\""}));
}

TEST_F(MCPConversationTest, WhatGetsNoAnswerIsNotWritten) {
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_TRUE(conversation.receive("{\"method\":\"silent\"}\n"));
  EXPECT_TRUE(sent.empty());
}

TEST_F(MCPConversationTest, RepliesOfTheClientAreNotEvenAsked) {
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_TRUE(conversation.receive("{\"error\":{\"code\":-32700}}\n{\"id\":1,\"result\":{}}\n"));
  EXPECT_TRUE(asked.empty());
  EXPECT_TRUE(sent.empty());
}

TEST_F(MCPConversationTest, TheClientsNameCountsForTheReplyToItsInitialize) {
  MCPConversation conversation = begin(MCPFramingChoice::automatic);
  EXPECT_TRUE(conversation.receive("{\"method\":\"initialize\",\"params\":{\"clientInfo\":{\"name\":\"cursor\"}}}\n"));
  EXPECT_EQ(sent, std::vector<std::string>{"\"initialize\"\n"});
}

TEST_F(MCPConversationTest, MessagesThatAreNoObjectsAreParseErrors) {
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_TRUE(conversation.receive("{x\n" + MCPFraming::frame("[]")));
  EXPECT_EQ(sent, (std::vector<std::string>{std::string(kParseError) + "\n", MCPFraming::frame(kParseError)}));
  EXPECT_TRUE(asked.empty());
}

TEST_F(MCPConversationTest, AnOversizedLineIsOneParseErrorAndTheConversationGoesOn) {
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_TRUE(conversation.receive("{" + std::string(kMCPMessageLimit, 'x')));
  EXPECT_TRUE(conversation.receive("xxx\n{\"method\":\"a\"}\n"));
  EXPECT_EQ(sent, (std::vector<std::string>{std::string(kParseError) + "\n", "\"a\"\n"}));
}

TEST_F(MCPConversationTest, AnOversizedFrameIsAParseErrorAndTheEnd) {
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_FALSE(conversation.receive("Content-Length: 99999999\r\n\r\n"));
  EXPECT_EQ(sent, std::vector<std::string>{MCPFraming::frame(kParseError)});
}

TEST_F(MCPConversationTest, AReaderThatHasGoneIsTheEnd) {
  sendsUntilGone = 1;
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_FALSE(conversation.receive("{\"method\":\"a\"}\n{\"method\":\"b\"}\n"));
  EXPECT_EQ(asked, std::vector<std::string>{"a"});
}

TEST_F(MCPConversationTest, AReplyAtTheLimitIsSent) {
  for (longReply = kMCPReplyLimit - 1; longReply <= kMCPReplyLimit; ++longReply) {
    sent.clear();
    MCPConversation conversation = begin(MCPFramingChoice::lines);
    EXPECT_TRUE(conversation.receive("{\"id\":1,\"method\":\"long\"}\n"));
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].size(), longReply + 1);
  }
}

TEST_F(MCPConversationTest, AReplyOneByteAboveTheLimitIsReplacedUnderItsId) {
  longReply = kMCPReplyLimit + 1;
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_TRUE(conversation.receive("{\"id\":\"q\",\"method\":\"long\"}\n"));
  EXPECT_EQ(sent, std::vector<std::string>{
                      R"({"id":"q","jsonrpc":"2.0","result":{"content":[{"text":"Brindle's answer is longer than )"
                      R"(256 KiB.","type":"text"}],"isError":true}})"
                      "\n"});
}

TEST_F(MCPConversationTest, AnEnormousIdIsNotEchoed) {
  longReply = kMCPReplyLimit + 1;
  MCPConversation conversation = begin(MCPFramingChoice::lines);
  EXPECT_TRUE(conversation.receive("{\"id\":\"" + std::string(kMCPReplyLimit, 'i') + "\",\"method\":\"long\"}\n"));
  EXPECT_EQ(sent, std::vector<std::string>{
                      "{\"error\":{\"code\":-32600,\"message\":\"The id is too long\"},\"jsonrpc\":\"2.0\"}\n"});
}

}  // namespace
}  // namespace brindle
