#include "logic/mcp/mcp_message_reader.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace brindle {
namespace {

MCPInput line(std::string bytes) { return MCPMessage{std::move(bytes), MCPFrameStyle::line}; }
MCPInput framed(std::string bytes) { return MCPMessage{std::move(bytes), MCPFrameStyle::header}; }

void takeAll(MCPMessageReader& reader, std::vector<MCPInput>& into) {
  while (auto input = reader.next()) into.push_back(*std::move(input));
}

std::vector<MCPInput> readWhole(const std::string& bytes) {
  MCPMessageReader reader;
  reader.feed(bytes);
  std::vector<MCPInput> inputs;
  takeAll(reader, inputs);
  return inputs;
}

// An object of exactly `size` bytes.
std::string objectOf(std::size_t size) { return "{\"a\":\"" + std::string(size - 8, 'x') + "\"}"; }

TEST(MCPMessageReader, TellsHowEachMessageCame) {
  MCPMessageReader reader;
  reader.feed("{\"id\":1}\n" + MCPFraming::frame("{\"id\":2}"));
  EXPECT_EQ(reader.next(), line("{\"id\":1}"));
  EXPECT_EQ(reader.next(), framed("{\"id\":2}"));
  EXPECT_EQ(reader.next(), std::nullopt);
  EXPECT_EQ(reader.held(), 0u);
}

TEST(MCPMessageReader, JoinsAMessageThatCameByteByByte) {
  const std::string bytes = "{\"id\":1}\n" + MCPFraming::frame("{\"id\":2}") + "\n{\"id\":3}\r\n";
  MCPMessageReader reader;
  std::vector<MCPInput> inputs;
  for (const char byte : bytes) {
    reader.feed(std::string_view(&byte, 1));
    takeAll(reader, inputs);
  }
  EXPECT_EQ(inputs, (std::vector<MCPInput>{line("{\"id\":1}"), framed("{\"id\":2}"), line("{\"id\":3}\r")}));
}

TEST(MCPMessageReader, TakesALineAtTheLimit) {
  for (const std::size_t size : {kMCPMessageLimit - 1, kMCPMessageLimit}) {
    const std::string message = objectOf(size);
    EXPECT_EQ(readWhole(message + "\n"), std::vector<MCPInput>{line(message)}) << size;
  }
}

TEST(MCPMessageReader, RefusesALineOneByteAboveTheLimitOnceAndGoesOnBehindIt) {
  EXPECT_EQ(readWhole(objectOf(kMCPMessageLimit + 1) + "\n{}\n"),
            (std::vector<MCPInput>{MCPOversizedLine{}, line("{}")}));
}

TEST(MCPMessageReader, ReportsAnOversizedLineBeforeItsEndAndHoldsNoneOfIt) {
  MCPMessageReader reader;
  reader.feed(objectOf(kMCPMessageLimit + 1));
  EXPECT_EQ(reader.next(), MCPInput(MCPOversizedLine{}));
  EXPECT_EQ(reader.held(), 0u);
  for (int i = 0; i < 100; ++i) {
    reader.feed(std::string(65536, 'x'));
    EXPECT_EQ(reader.next(), std::nullopt);
    EXPECT_EQ(reader.held(), 0u);
  }
  reader.feed("\n{}\n");
  EXPECT_EQ(reader.next(), line("{}"));
}

TEST(MCPMessageReader, HoldsNothingOfARefusalBehindAMessageOfTheSameRead) {
  for (const std::string& refused :
       {objectOf(kMCPMessageLimit + 1), "Content-Length: " + std::to_string(kMCPMessageLimit + 1) + "\r\n\r\n"}) {
    MCPMessageReader reader;
    reader.feed("{}\n" + refused);
    EXPECT_EQ(reader.next(), line("{}"));
    EXPECT_NE(reader.next(), std::nullopt);
    EXPECT_EQ(reader.held(), 0u);
  }
}

TEST(MCPMessageReader, TakesABodyAtTheLimit) {
  const std::string body = objectOf(kMCPMessageLimit);
  EXPECT_EQ(readWhole(MCPFraming::frame(body)), std::vector<MCPInput>{framed(body)});
}

TEST(MCPMessageReader, RefusesABodyOneByteAboveTheLimitAsSoonAsItIsAnnouncedAndEnds) {
  MCPMessageReader reader;
  reader.feed("Content-Length: " + std::to_string(kMCPMessageLimit + 1) + "\r\n\r\n");
  EXPECT_EQ(reader.next(), MCPInput(MCPOversizedFrame{}));
  reader.feed("{}\n");
  EXPECT_EQ(reader.next(), std::nullopt);
  EXPECT_EQ(reader.held(), 0u);
}

TEST(MCPMessageReader, RefusesALengthThatFillsSixtyThreeBits) {
  EXPECT_EQ(readWhole("Content-Length: 9223372036854775807\r\n\r\n"), std::vector<MCPInput>{MCPOversizedFrame{}});
}

TEST(MCPMessageReader, TakesAHeaderBlockAtTheLimit) {
  const std::string length = "\r\nContent-Length: 2";
  const std::string header = "X: " + std::string(kMCPHeaderLimit - 3 - length.size(), 'x') + length;
  ASSERT_EQ(header.size(), kMCPHeaderLimit);
  EXPECT_EQ(readWhole(header + "\r\n\r\n{}"), std::vector<MCPInput>{framed("{}")});
  EXPECT_EQ(readWhole("Y" + header + "\r\n\r\n{}"), std::vector<MCPInput>{MCPOversizedFrame{}});
}

TEST(MCPMessageReader, HeaderLimitDoesNotDependOnWhereTheReadsWereCut) {
  const std::string header = "X: " + std::string(kMCPHeaderLimit - 22, 'x') + "\r\nContent-Length: 2";
  ASSERT_EQ(header.size(), kMCPHeaderLimit);
  MCPMessageReader reader;
  for (const std::string_view piece : {std::string_view(header), std::string_view("\r"), std::string_view("\n"),
                                       std::string_view("\r"), std::string_view("\n{")}) {
    reader.feed(piece);
    EXPECT_EQ(reader.next(), std::nullopt);
  }
  reader.feed("}");
  EXPECT_EQ(reader.next(), framed("{}"));
}

TEST(MCPMessageReader, RefusesAnEndlessHeaderBlock) {
  MCPMessageReader reader;
  reader.feed(std::string(kMCPHeaderLimit + 3, 'x'));
  EXPECT_EQ(reader.next(), std::nullopt);  // its last three bytes could still be the start of the empty line
  reader.feed("x");
  EXPECT_EQ(reader.next(), MCPInput(MCPOversizedFrame{}));
}

TEST(MCPMessageReader, ManySmallMessagesInOneFeedAllArrive) {
  std::string bytes;
  for (int i = 0; i < 10000; ++i) bytes += "{}\n";
  EXPECT_EQ(readWhole(bytes), std::vector<MCPInput>(10000, line("{}")));
}

// Bytes that are likely to meet the reader's own rules.
rc::Gen<std::string> junk() {
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::element<std::string>(
                          "{", "}", "\n", "\r\n", "\r\n\r\n", " ", "Content-Length: 3", "content-length:", "x", "\xff",
                          std::string(1, '\0'), "12", ":", "{\"id\":1}\n")),
                      [](const std::vector<std::string>& parts) {
                        std::string bytes;
                        for (const std::string& part : parts) bytes += part;
                        return bytes;
                      });
}

RC_GTEST_PROP(MCPMessageReaderProperty, WhereTheReadsWereCutChangesNothing, ()) {
  const std::string bytes = *junk();
  const auto cuts = *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(1, 9));
  MCPMessageReader reader;
  std::vector<MCPInput> inputs;
  std::size_t at = 0;
  for (const std::size_t cut : cuts) {
    reader.feed(std::string_view(bytes).substr(std::min(at, bytes.size()), cut));
    takeAll(reader, inputs);
    at += cut;
  }
  if (at < bytes.size()) reader.feed(std::string_view(bytes).substr(at));
  takeAll(reader, inputs);
  RC_ASSERT(inputs == readWhole(bytes));
}

RC_GTEST_PROP(MCPMessageReaderProperty, AWellFormedMessageAfterJunkIsFound, ()) {
  std::string bytes = *junk();
  // What announces a length may swallow what follows; nothing else may.
  for (std::size_t at; (at = bytes.find("ontent")) != std::string::npos;) bytes.erase(at, 6);
  const std::string body = "{\"method\":\"ping\"}";
  const bool asLine = *rc::gen::arbitrary<bool>();
  bytes += "\n\r\n\r\n" + (asLine ? body + "\n" : MCPFraming::frame(body));
  const std::vector<MCPInput> inputs = readWhole(bytes);
  RC_ASSERT(!inputs.empty());
  RC_ASSERT(inputs.back() == (asLine ? line(body) : framed(body)));
}

RC_GTEST_PROP(MCPMessageReaderProperty, MemoryStaysBoundedForAnyBytes, ()) {
  const std::string piece = *junk();
  MCPMessageReader reader;
  std::vector<MCPInput> inputs;
  for (int i = 0; i < 64; ++i) {
    reader.feed(piece);
    inputs.clear();
    takeAll(reader, inputs);
    RC_ASSERT(reader.held() <= kMCPMessageLimit + kMCPHeaderLimit + 4 + piece.size());
  }
}

}  // namespace
}  // namespace brindle
