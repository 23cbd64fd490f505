#include "base/byte_count.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/base/golden.h"

namespace brindle {
namespace {

TEST(MemoryByteCount, MatchesEveryReferenceRow) {
  for (const JsonObject& row : goldenRows("byte-count-memory.json")) {
    const auto bytes = integerMember(row, "bytes");
    ASSERT_TRUE(bytes);
    EXPECT_EQ(memoryByteCount(*bytes), textIn(row, "text")) << *bytes;
  }
}

TEST(MemoryByteCount, ChangesTheUnitExactlyAtPowersOf1024) {
  EXPECT_EQ(memoryByteCount(1023), "1,023 bytes");
  EXPECT_EQ(memoryByteCount(1024), "1 KB");
  EXPECT_EQ(memoryByteCount((std::int64_t{1} << 40) - 1), "1,024 GB");
  EXPECT_EQ(memoryByteCount(std::int64_t{1} << 40), "1 TB");
  EXPECT_EQ(memoryByteCount(std::int64_t{1} << 60), "1 EB");
}

TEST(MemoryByteCount, ShowsTheDecimalsOfEveryUnit) {
  constexpr std::int64_t kQuarter = 1280 + 1;  // 1.251 in units of 1024
  EXPECT_EQ(memoryByteCount(kQuarter), "1 KB");
  EXPECT_EQ(memoryByteCount(kQuarter << 10), "1.3 MB");
  EXPECT_EQ(memoryByteCount(kQuarter << 20), "1.25 GB");
  EXPECT_EQ(memoryByteCount(kQuarter << 30), "1.25 TB");
  EXPECT_EQ(memoryByteCount(kQuarter << 40), "1.25 PB");
  EXPECT_EQ(memoryByteCount(kQuarter << 50), "1.25 EB");
}

TEST(MemoryByteCount, CarriesAMinusForNegativeCounts) {
  EXPECT_EQ(memoryByteCount(-1), "-1 byte");
  EXPECT_EQ(memoryByteCount(-2), "-2 bytes");
  EXPECT_EQ(memoryByteCount(-1572864), "-1.5 MB");
  EXPECT_EQ(memoryByteCount(std::numeric_limits<std::int64_t>::min()), "-8 EB");
}

}  // namespace
}  // namespace brindle
