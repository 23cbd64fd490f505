#include "inventory/procargs_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "inventory/proc_text.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

std::string blockOf(std::int32_t count, const std::string& text) {
  std::string block(sizeof count, '\0');
  std::memcpy(block.data(), &count, sizeof count);
  return block + text;
}

TEST(ProcessStartText, ReadsPathArgumentsAndEnvironment) {
  const std::string block = blockOf(2, "/usr/bin/node\0\0\0\0node\0server.js\0HOME=/Users/me\0TERM=xterm\0"s);
  const auto start = parseProcessStart(block);
  ASSERT_TRUE(start);
  EXPECT_EQ(start->path, "/usr/bin/node");
  EXPECT_THAT(start->arguments, ElementsAre("node", "server.js"));
  EXPECT_EQ(start->environment, "HOME=/Users/me\0TERM=xterm\0"s);
}

TEST(ProcessStartText, KeepsEmptyArgumentsAfterTheFirst) {
  const std::string block = blockOf(3, "/bin/a\0a\0\0b\0X=1\0"s);
  const auto start = parseProcessStart(block);
  ASSERT_TRUE(start);
  EXPECT_THAT(start->arguments, ElementsAre("a", "", "b"));
  EXPECT_EQ(start->environment, "X=1\0"s);
}

TEST(ProcessStartText, HasNoEnvironmentWhereTheKernelKeepsItToItself) {
  const std::string block = blockOf(1, "/bin/a\0a\0"s);
  const auto start = parseProcessStart(block);
  ASSERT_TRUE(start);
  EXPECT_THAT(start->arguments, ElementsAre("a"));
  EXPECT_TRUE(start->environment.empty());
}

TEST(ProcessStartText, HasNoArgumentsWhenNoneAreCounted) {
  const std::string block = blockOf(0, "/bin/a\0\0X=1\0"s);
  const auto start = parseProcessStart(block);
  ASSERT_TRUE(start);
  EXPECT_THAT(start->arguments, IsEmpty());
  EXPECT_EQ(start->environment, "X=1\0"s);
}

TEST(ProcessStartText, TakesWhatIsThereWhenMoreArgumentsAreCounted) {
  const std::string block = blockOf(std::numeric_limits<std::int32_t>::max(), "/bin/a\0a\0b"s);
  const auto start = parseProcessStart(block);
  ASSERT_TRUE(start);
  EXPECT_THAT(start->arguments, ElementsAre("a", "b"));
  EXPECT_TRUE(start->environment.empty());
}

TEST(ProcessStartText, IsNoneWithoutANumber) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{3}}) {
    EXPECT_FALSE(parseProcessStart(std::string(size, '\1'))) << size;
  }
}

TEST(ProcessStartText, IsNoneWithANegativeNumber) { EXPECT_FALSE(parseProcessStart(blockOf(-1, "/bin/a\0a\0"s))); }

TEST(ProcessStartText, IsNoneWithoutAPath) {
  EXPECT_FALSE(parseProcessStart(blockOf(1, "")));
  EXPECT_FALSE(parseProcessStart(blockOf(1, "\0a\0"s)));
  EXPECT_FALSE(parseProcessStart(blockOf(1, "/bin/never-ended")));
}

TEST(ProcessStartText, IsTotalOnEveryPrefixOfABlock) {
  const std::string block = blockOf(2, "/usr/bin/node\0\0\0\0node\0server.js\0HOME=/Users/me\0"s);
  const std::size_t pathIsWhole = sizeof(std::int32_t) + std::string("/usr/bin/node").size() + 1;
  for (std::size_t size = 0; size <= block.size(); ++size) {
    const std::string prefix = block.substr(0, size);
    EXPECT_EQ(parseProcessStart(prefix).has_value(), size >= pathIsWhole) << size;
  }
}

TEST(ProcessStartText, KeepsNoMoreArgumentsThanTheirLimit) {
  std::string text = "/bin/a\0"s;
  for (std::size_t i = 0; i <= kArgumentCountLimit; ++i) text += "x\0"s;
  const std::string block = blockOf(static_cast<std::int32_t>(kArgumentCountLimit) + 1, text + "X=1\0"s);
  const auto start = parseProcessStart(block);
  ASSERT_TRUE(start);
  EXPECT_EQ(start->arguments.size(), kArgumentCountLimit);
  EXPECT_EQ(start->environment, "X=1\0"s);
}

}  // namespace
}  // namespace brindle
