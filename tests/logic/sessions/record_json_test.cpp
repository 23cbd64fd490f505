#include "logic/sessions/record_json.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/json_writer.h"
#include "logic/sessions/byte_sum.h"

namespace brindle {
namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

TEST(RecordJson, WritesAndReadsTheWholeUnsignedRange) {
  for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{1} << 63, (std::uint64_t{1} << 63) - 1, kLargest}) {
    EXPECT_EQ(uint64Member(JsonObject{{"n", unsignedNumber(value)}}, "n"), value);
  }
}

TEST(RecordJson, ReadsWholeNumbersInEveryForm) {
  EXPECT_EQ(uint64Member(JsonObject{{"n", JsonNumber::fromText("3.0")}}, "n"), 3U);
  EXPECT_EQ(uint64Member(JsonObject{{"n", JsonNumber::fromText("3.5")}}, "n"), std::nullopt);
  EXPECT_EQ(uint64Member(JsonObject{{"n", JsonNumber::fromText("1e30")}}, "n"), std::nullopt);
  EXPECT_EQ(uint64Member(JsonObject{{"n", true}}, "n"), std::nullopt);
  EXPECT_EQ(uint64Member(JsonObject{}, "n"), std::nullopt);
}

TEST(RecordJson, ReadsPortsOnlyWhenAllAreWholeNumbers) {
  EXPECT_EQ(portsMember(JsonObject{{"ports", portsToJson({3000, -1, 70000})}}, "ports"),
            (std::vector<int>{3000, -1, 70000}));
  EXPECT_EQ(portsMember(JsonObject{{"ports", JsonArray{3000, "3001"}}}, "ports"), std::nullopt);
  EXPECT_EQ(portsMember(JsonObject{{"ports", JsonArray{2.5}}}, "ports"), std::nullopt);
  EXPECT_EQ(portsMember(JsonObject{{"ports", JsonArray{std::int64_t{2147483647}}}}, "ports"),
            std::vector<int>{2147483647});
  EXPECT_EQ(portsMember(JsonObject{{"ports", JsonArray{std::int64_t{2147483648}}}}, "ports"), std::nullopt);
  EXPECT_EQ(portsMember(JsonObject{{"ports", JsonArray{std::int64_t{-2147483648}}}}, "ports"),
            std::vector<int>{std::numeric_limits<int>::min()});
  EXPECT_EQ(portsMember(JsonObject{{"ports", JsonArray{std::int64_t{-2147483649}}}}, "ports"), std::nullopt);
  EXPECT_EQ(portsMember(JsonObject{{"ports", 3000}}, "ports"), std::nullopt);
}

TEST(ByteSum, AddsUpToTheLargestNumber) {
  EXPECT_EQ(addedBytes(kLargest - 1, 1), kLargest);
  EXPECT_FALSE(byteSumOverflows(kLargest - 1, 1));
  EXPECT_TRUE(byteSumOverflows(kLargest, 1));
}

TEST(ByteSumDeathTest, EndsTheProgramRatherThanWrapAround) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH((void)addedBytes(kLargest, 1), "");
}

}  // namespace
}  // namespace brindle
