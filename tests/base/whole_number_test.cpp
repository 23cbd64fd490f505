#include "base/whole_number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brindle {
namespace {

constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
constexpr auto kMin = std::numeric_limits<std::int64_t>::min();

TEST(WholeNumber, TruncatesTowardZero) {
  EXPECT_EQ(wholeNumber(2.999), 2);
  EXPECT_EQ(wholeNumber(-2.999), -2);
  EXPECT_EQ(wholeNumber(0.5), 0);
  EXPECT_EQ(wholeNumber(-0.5), 0);
  EXPECT_EQ(wholeNumber(7), 7);
}

TEST(WholeNumber, TakesTheNearestBoundBeyondItsRange) {
  EXPECT_EQ(wholeNumber(9223372036854775808.0), kMax);
  EXPECT_EQ(wholeNumber(9223372036854774784.0), 9223372036854774784);
  EXPECT_EQ(wholeNumber(-9223372036854775808.0), kMin);
  EXPECT_EQ(wholeNumber(-9223372036854777856.0), kMin);
  EXPECT_EQ(wholeNumber(1e300), kMax);
  EXPECT_EQ(wholeNumber(std::numeric_limits<double>::infinity()), kMax);
  EXPECT_EQ(wholeNumber(-std::numeric_limits<double>::infinity()), kMin);
}

TEST(WholeNumber, IsZeroForWhatIsNoNumber) { EXPECT_EQ(wholeNumber(std::nan("")), 0); }

}  // namespace
}  // namespace brindle
