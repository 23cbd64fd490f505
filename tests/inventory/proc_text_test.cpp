#include "inventory/proc_text.h"

#include <gtest/gtest.h>

#include "inventory/agent_table.h"

namespace brindle {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

TEST(ProcArguments, SplitsAtEachNul) {
  EXPECT_EQ(parseArguments("node\0srv.js\0\0x\0"s), (Texts{"node", "srv.js", "", "x"}));
  EXPECT_EQ(commandLineOf({"node", "srv.js"}), "node srv.js");
}

TEST(ProcArguments, ATitleLeavesOneArgumentAndNoTrail) {
  EXPECT_EQ(parseArguments("npm run dev\0\0\0\0\0"s), (Texts{"npm run dev"}));
}

TEST(ProcArguments, AnEmptyTextHasNone) {
  EXPECT_TRUE(parseArguments("").empty());
  EXPECT_TRUE(parseArguments("\0\0"s).empty());
}

TEST(ProcArguments, TextWithoutFinalNulKeepsItsLastPiece) { EXPECT_EQ(parseArguments("a\0b"s), (Texts{"a", "b"})); }

TEST(ProcArguments, KeepsTheStatedNumberOfThem) {
  const auto count = [](std::size_t arguments) {
    std::string text;
    for (std::size_t each = 0; each < arguments; ++each) text += "a\0"s;
    return parseArguments(text).size();
  };
  EXPECT_EQ(count(kArgumentCountLimit - 1), kArgumentCountLimit - 1);
  EXPECT_EQ(count(kArgumentCountLimit), kArgumentCountLimit);
  EXPECT_EQ(count(kArgumentCountLimit + 1), kArgumentCountLimit);
}

TEST(ProcArguments, CutsEachAtTheStatedLength) {
  EXPECT_EQ(parseArguments(std::string(kArgumentByteLimit, 'x')).front().size(), kArgumentByteLimit);
  EXPECT_EQ(parseArguments(std::string(kArgumentByteLimit + 1, 'x')).front().size(), kArgumentByteLimit);
}

TEST(ProcEnvironment, TakesTheNamedVariablesAndNothingElse) {
  const auto found = parseNamedVariables("SECRET=x\0CLAUDECODE=1\0AGENT=amp\0PATH=/bin\0"s, namedVariables());
  EXPECT_EQ(found, (std::vector<NamedVariable>{{"CLAUDECODE", "1"}, {"AGENT", "amp"}}));
}

TEST(ProcEnvironment, TheFirstOfTwoEqualNamesCounts) {
  EXPECT_EQ(parseNamedVariables("AGENT=amp\0AGENT=goose\0"s, namedVariables()),
            (std::vector<NamedVariable>{{"AGENT", "amp"}}));
}

TEST(ProcEnvironment, NamesAreComparedWhole) {
  EXPECT_TRUE(parseNamedVariables("XAGENT=1\0AGENTX=1\0agent=1\0AGENT\0=AGENT\0"s, namedVariables()).empty());
}

TEST(ProcEnvironment, AValueOverTheLimitCountsAsNotSet) {
  const auto count = [](std::size_t length) {
    return parseNamedVariables("AGENT=" + std::string(length, 'x'), namedVariables()).size();
  };
  EXPECT_EQ(count(kVariableByteLimit - 1), 1U);
  EXPECT_EQ(count(kVariableByteLimit), 1U);
  EXPECT_EQ(count(kVariableByteLimit + 1), 0U);
}

TEST(ProcMemory, PrivatePagesAreResidentMinusShared) {
  EXPECT_EQ(parsePrivatePages("5531 1280 900 230 0 600 0\n"), 380U);
  EXPECT_EQ(parsePrivatePages("1 7 9 0 0 0 0\n"), 0U);
  EXPECT_EQ(parsePrivatePages("0 0 0 0 0 0 0\n"), 0U);
}

TEST(ProcMemory, DamagedTextHasNoPages) {
  for (const char* text : {"", "1", "1 2", "1 2 x", "1 -2 3", "a b c", "1 99999999999999999999 0"}) {
    EXPECT_EQ(parsePrivatePages(text), std::nullopt) << text;
  }
}

TEST(ProcMemory, SwapIsReadInKibibytes) {
  EXPECT_EQ(parseSwapBytes("Name:\tVmSwap: 9 kB\nVmSwap:\t      12 kB\nThreads:\t1\n"), 12288U);
  EXPECT_EQ(parseSwapBytes("Name:\tx\n"), std::nullopt);
  EXPECT_EQ(parseSwapBytes("VmSwap:\t12\n"), std::nullopt);
  EXPECT_EQ(parseSwapBytes("VmSwap:\t18446744073709551615 kB\n"), std::nullopt);
  EXPECT_EQ(parseSwapBytes("VmSwap:"), std::nullopt);
}

TEST(ProcLinks, OnlySocketsHaveAnInode) {
  EXPECT_EQ(parseSocketLink("socket:[12345]"), 12345U);
  for (const char* link : {"pipe:[12345]", "socket:[]", "socket:[1", "socket:[x]", "socket:[-1]", "", "socket:[1]x"}) {
    EXPECT_EQ(parseSocketLink(link), std::nullopt) << link;
  }
}

TEST(ProcLinks, TheMarkOfDeletedFilesIsTakenAway) {
  EXPECT_EQ(withoutDeletedMark("/srv/shop (deleted)"), "/srv/shop");
  EXPECT_EQ(withoutDeletedMark("/srv/(deleted)"), "/srv/(deleted)");
  EXPECT_EQ(withoutDeletedMark(""), "");
}

}  // namespace
}  // namespace brindle
