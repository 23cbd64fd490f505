#include "logic/sessions/byte_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

TEST(ByteText, WritesEachSizeWithItsUnitAndDecimals) {
  const struct {
    std::uint64_t bytes;
    const char* text;
  } rows[] = {
      {0, "0 B"},
      {1, "1 B"},
      {999, "999 B"},
      {1'000, "1 KB"},
      {1'499, "1 KB"},
      {1'501, "2 KB"},
      {999'499, "999 KB"},
      {999'999, "1000 KB"},
      {1'000'000, "1.0 MB"},
      {2'500'000, "2.5 MB"},
      {9'999'999, "10.0 MB"},
      {10'000'000, "10 MB"},
      {45'000'000, "45 MB"},
      {999'999'999, "1000 MB"},
      {1'000'000'000, "1.00 GB"},
      {1'500'000'000, "1.50 GB"},
      {9'999'999'999, "10.00 GB"},
      {10'000'000'000, "10.0 GB"},
      {12'345'678'901, "12.3 GB"},
      {std::numeric_limits<std::uint64_t>::max(), "18446744073.7 GB"},
  };
  for (const auto& row : rows) EXPECT_EQ(ByteText::text(row.bytes), row.text);
}

TEST(ByteText, RoundsExactHalvesToEvenLikeTheSystemsFormatter) {
  EXPECT_EQ(ByteText::text(1'500), "2 KB");
  EXPECT_EQ(ByteText::text(2'500), "2 KB");
  EXPECT_EQ(ByteText::text(1'250'000), "1.2 MB");
}

}  // namespace
}  // namespace brindle
