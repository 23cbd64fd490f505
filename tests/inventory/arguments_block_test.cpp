#include "inventory/arguments_block.h"

#include <gtest/gtest.h>

#include <cstring>

#include "inventory/agent_table.h"
#include "inventory/proc_text.h"

namespace brindle {
namespace {

using namespace std::string_literals;

std::string blockOf(std::int32_t count, const std::string& rest) {
  std::string block(sizeof count, '\0');
  std::memcpy(block.data(), &count, sizeof count);
  return block + rest;
}

std::optional<ArgumentsBlock> parse(const std::string& block) { return parseArgumentsBlock(block, namedVariables()); }

const std::string kWhole = blockOf(2, "/usr/bin/node\0\0\0\0node\0srv.js\0PATH=/bin\0CLAUDE_PID=7\0"s);

TEST(ArgumentsBlock, HoldsPathArgumentsAndNamedVariables) {
  EXPECT_EQ(parse(kWhole), (ArgumentsBlock{"/usr/bin/node", {"node", "srv.js"}, {{"CLAUDE_PID", "7"}}}));
}

TEST(ArgumentsBlock, ABlockWithoutCountIsNone) {
  EXPECT_EQ(parse(""), std::nullopt);
  EXPECT_EQ(parse("abc"), std::nullopt);
  EXPECT_EQ(parse(blockOf(-1, "x")), std::nullopt);
  EXPECT_EQ(parse(blockOf(0, "")), ArgumentsBlock{});
}

TEST(ArgumentsBlock, EveryPrefixGivesWhatIsWhole) {
  std::size_t most = 0;
  for (std::size_t length = 4; length <= kWhole.size(); ++length) {
    const auto found = parse(kWhole.substr(0, length));
    ASSERT_TRUE(found);
    EXPECT_LE(found->arguments.size(), 2U);
    most = std::max(most, found->arguments.size());
  }
  EXPECT_EQ(most, 2U);
}

TEST(ArgumentsBlock, ACountBeyondTheBlockTakesWhatIsThere) {
  EXPECT_EQ(parse(blockOf(0x7FFFFFFF, "/x\0a\0b\0"s))->arguments, (std::vector<std::string>{"a", "b"}));
}

TEST(ArgumentsBlock, KeepsTheStatedNumberOfArgumentsAndStillFindsTheVariables) {
  std::string rest = "/x\0"s;
  const auto count = static_cast<std::int32_t>(kArgumentCountLimit + 1);
  for (std::int32_t each = 0; each < count; ++each) rest += "a\0"s;
  const auto found = parse(blockOf(count, rest + "AGENT=amp\0"s));
  EXPECT_EQ(found->arguments.size(), kArgumentCountLimit);
  EXPECT_EQ(found->variables.size(), 1U);
}

}  // namespace
}  // namespace brindle
