#include "logic/mcp/mcp_framing.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

using MCPFraming::frame;
using MCPFraming::nextMessage;

// Takes messages until there is none.
std::vector<std::string> allMessages(std::string& buffer) {
  std::vector<std::string> messages;
  while (auto message = nextMessage(buffer)) messages.push_back(*message);
  return messages;
}

TEST(MCPFraming, TwoLinesYieldTwoMessagesThenNothing) {
  std::string buffer = "{\"id\":1}\n{\"id\":2}\n";
  EXPECT_EQ(nextMessage(buffer), "{\"id\":1}");
  EXPECT_EQ(nextMessage(buffer), "{\"id\":2}");
  EXPECT_EQ(nextMessage(buffer), std::nullopt);
  EXPECT_EQ(buffer, "");
}

TEST(MCPFraming, EmptyBufferYieldsNothing) {
  std::string buffer;
  EXPECT_EQ(nextMessage(buffer), std::nullopt);
}

TEST(MCPFraming, LineWithoutItsEndStaysInTheBuffer) {
  std::string buffer = "{\"id\":1}";
  EXPECT_EQ(nextMessage(buffer), std::nullopt);
  EXPECT_EQ(buffer, "{\"id\":1}");
  buffer += "\n";
  EXPECT_EQ(nextMessage(buffer), "{\"id\":1}");
}

TEST(MCPFraming, CarriageReturnBelongsToTheLine) {
  std::string buffer = "{}\r\n";
  EXPECT_EQ(nextMessage(buffer), "{}\r");
}

TEST(MCPFraming, IncompleteBodyKeepsAllBytesUntilTheLastTwoArrive) {
  const std::string part = "CONTENT-LENGTH: 5\r\n\r\nabc";
  std::string buffer = part;
  EXPECT_EQ(nextMessage(buffer), std::nullopt);
  EXPECT_EQ(buffer, part);
  buffer += "de";
  EXPECT_EQ(nextMessage(buffer), "abcde");
  EXPECT_EQ(buffer, "");
}

TEST(MCPFraming, IncompleteHeaderKeepsAllBytes) {
  const std::string whole = "Content-Length: 2\r\n\r\n{}";
  for (std::size_t length = 1; length < whole.size(); ++length) {
    std::string buffer = whole.substr(0, length);
    EXPECT_EQ(nextMessage(buffer), std::nullopt) << length;
    EXPECT_EQ(buffer, whole.substr(0, length));
  }
}

TEST(MCPFraming, BodyMayBeginWithAnythingAndHoldLineFeeds) {
  std::string buffer = "Content-Length: 7\r\n\r\n[1,\n2]\n{}\n";
  EXPECT_EQ(nextMessage(buffer), "[1,\n2]\n");
  EXPECT_EQ(nextMessage(buffer), "{}");
}

TEST(MCPFraming, EmptyBodyIsAMessage) {
  std::string buffer = "Content-Length: 0\r\n\r\n";
  EXPECT_EQ(nextMessage(buffer), "");
  EXPECT_EQ(buffer, "");
}

TEST(MCPFraming, OtherHeaderLinesAreIgnored) {
  std::string buffer = "Content-Type: application/json\r\ncontent-length:\t 2 \t\r\nX: 9\r\n\r\n{}";
  EXPECT_EQ(nextMessage(buffer), "{}");
}

TEST(MCPFraming, LastLengthThatCountsIsTaken) {
  std::string buffer = "Content-Length: 9\r\nContent-Length: 2\r\nContent-Length: x\r\n\r\n{}";
  EXPECT_EQ(nextMessage(buffer), "{}");
}

TEST(MCPFraming, InvalidUtf8InTheHeaderDoesNotHideTheLength) {
  std::string buffer = "X: \xff\xfe\r\nContent-Length: 2\r\n\r\n{}";
  EXPECT_EQ(nextMessage(buffer), "{}");
}

TEST(MCPFraming, HeaderBlocksWithoutUsableLengthAreRemovedAndReadingStartsAgain) {
  for (const std::string value :
       {"", " ", "x", "-1", "+2", "2.0", "0x2", "2 2", "2\r", "9223372036854775808", "99999999999999999999999999"}) {
    std::string buffer = "Content-Length: " + value + "\r\n\r\n{\"after\":1}\n";
    EXPECT_EQ(nextMessage(buffer), "{\"after\":1}") << value;
    EXPECT_EQ(buffer, "");
  }
}

TEST(MCPFraming, RemovedHeaderBlocksAreGoneEvenWhenNoMessageFollows) {
  std::string buffer = "Host: x\r\n\r\nrest";
  EXPECT_EQ(nextMessage(buffer), std::nullopt);
  EXPECT_EQ(buffer, "rest");
}

TEST(MCPFraming, LengthMustBeginItsLine) {
  for (const std::string name : {"X-Content-Length", "Xontent-Length"}) {
    std::string buffer = name + ": 1\r\n\r\n{}\n";
    EXPECT_EQ(nextMessage(buffer), "{}") << name;  // the block was no header of a frame; the rest is a line
  }
}

TEST(MCPFraming, LargestLengthIsAwaitedWithoutOverflow) {
  std::string buffer = "Content-Length: 9223372036854775807\r\n\r\n{}\n";
  EXPECT_EQ(nextMessage(buffer), std::nullopt);
  EXPECT_EQ(MCPFraming::step(buffer).bodyLength, 9223372036854775807u);
}

TEST(MCPFraming, BlankLinesBetweenMessagesAreSkipped) {
  std::string buffer = "\n\r\n \t\r\n{\"id\":1}\n\n{\"id\":2}\n\r\nContent-Length: 2\r\n\r\n{}\n{\"id\":3}\n";
  EXPECT_EQ(allMessages(buffer), (std::vector<std::string>{"{\"id\":1}", "{\"id\":2}", "{}", "{\"id\":3}"}));
  EXPECT_EQ(buffer, "");
}

TEST(MCPFraming, FramesAndLinesMayAlternate) {
  std::string buffer = frame("{\"id\":1}") + "{\"id\":2}\n" + frame("{\"id\":3}");
  EXPECT_EQ(allMessages(buffer), (std::vector<std::string>{"{\"id\":1}", "{\"id\":2}", "{\"id\":3}"}));
}

TEST(MCPFraming, FrameWritesTheHeaderAndTheText) { EXPECT_EQ(frame("{}"), "Content-Length: 2\r\n\r\n{}"); }

TEST(MCPFraming, FrameCountsBytesNotCharacters) { EXPECT_EQ(frame("•"), "Content-Length: 3\r\n\r\n•"); }

TEST(MCPFraming, FrameOfNothingCountsZero) { EXPECT_EQ(frame(""), "Content-Length: 0\r\n\r\n"); }

}  // namespace
}  // namespace brindle
