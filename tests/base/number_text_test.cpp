#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brindle {
namespace {

TEST(DoubleText, WritesWholeValuesWithoutFraction) {
  EXPECT_EQ(doubleText(0), "0");
  EXPECT_EQ(doubleText(-0.0), "-0");
  EXPECT_EQ(doubleText(14400), "14400");
  EXPECT_EQ(doubleText(-5), "-5");
  EXPECT_EQ(doubleText(1e15), "1000000000000000");
}

TEST(DoubleText, WritesAnExponentBelowOneTenThousandth) {
  EXPECT_EQ(doubleText(0.0001), "0.0001");
  EXPECT_EQ(doubleText(std::nextafter(0.0001, 0)), "9.999999999999999e-05");
  EXPECT_EQ(doubleText(-0.00001), "-1e-05");
  EXPECT_EQ(doubleText(5e-324), "5e-324");
}

TEST(DoubleText, WritesAnExponentAboveTheLastExactInteger) {
  EXPECT_EQ(doubleText(9007199254740991), "9007199254740991");
  EXPECT_EQ(doubleText(9007199254740992), "9007199254740992");
  EXPECT_EQ(doubleText(9007199254740994), "9.007199254740994e+15");
  EXPECT_EQ(doubleText(1e16), "1e+16");
  EXPECT_EQ(doubleText(std::numeric_limits<double>::max()), "1.7976931348623157e+308");
}

TEST(FixedText, RoundsHalvesOfTheBinaryValueToEven) {
  EXPECT_EQ(fixedText(0.5, 0), "0");
  EXPECT_EQ(fixedText(1.5, 0), "2");
  EXPECT_EQ(fixedText(2.5, 0), "2");
  EXPECT_EQ(fixedText(0.125, 2), "0.12");
  EXPECT_EQ(fixedText(0.375, 2), "0.38");
  EXPECT_EQ(fixedText(2.675, 2), "2.67");  // the double lies just below
}

TEST(FixedText, WritesExactlyTheDecimalsThatAreAsked) {
  EXPECT_EQ(fixedText(1, 0), "1");
  EXPECT_EQ(fixedText(1, 3), "1.000");
  EXPECT_EQ(fixedText(0.1, 17), "0.10000000000000001");
  EXPECT_EQ(fixedText(-1234.5, 1), "-1234.5");
  EXPECT_EQ(fixedText(std::numeric_limits<double>::max(), 17).size(), 309U + 1 + 17);
}

TEST(IntegerFromText, TakesTheWholeRangeAndNothingBeyond) {
  EXPECT_EQ(integerFromText("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_FALSE(integerFromText("9223372036854775808"));
  EXPECT_EQ(integerFromText("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_FALSE(integerFromText("-9223372036854775809"));
}

TEST(IntegerFromText, RefusesWhatIsNotAllDigits) {
  for (const char* text : {"", "-", "+1", " 1", "1 ", "1.0", "1e3", "0x1", "--1", "1-"}) {
    EXPECT_FALSE(integerFromText(text)) << text;
  }
  EXPECT_EQ(integerFromText("-0"), 0);
  EXPECT_EQ(integerFromText("007"), 7);
}

TEST(DoubleFromText, FollowsTheGrammarOfDocuments) {
  EXPECT_EQ(doubleFromText("-12.5e-1"), -1.25);
  EXPECT_EQ(doubleFromText("0"), 0);
  EXPECT_EQ(doubleFromText("1E+2"), 100);
  for (const char* text : {"", "-", ".5", "5.", "01", "-01", "+1", "1e", "1e+", "inf", "nan", "0x1p3", " 1", "1 ",
                           "1,5", "1.5.5", "1e5.5"}) {
    EXPECT_FALSE(doubleFromText(text)) << text;
  }
}

TEST(WholeFromText, TakesWhatFitsTheTypeAndNothingElse) {
  EXPECT_EQ(wholeFromText<std::uint16_t>("65535"), 65535);
  EXPECT_FALSE(wholeFromText<std::uint16_t>("65536"));
  EXPECT_FALSE(wholeFromText<std::uint16_t>("-1"));
  EXPECT_EQ(wholeFromText<std::int32_t>("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_FALSE(wholeFromText<std::int32_t>("2147483648"));
  EXPECT_EQ(wholeFromText<std::uint64_t>("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(wholeFromText<std::uint16_t>("1F90", 16), 8080);
  EXPECT_FALSE(wholeFromText<std::uint16_t>("1F90"));
  for (const char* text : {"", " 1", "1 ", "+1", "1.0", "x"}) EXPECT_FALSE(wholeFromText<std::int32_t>(text)) << text;
}

TEST(DoubleFromText, IsNoneOnlyBeyondTheLargestDouble) {
  EXPECT_EQ(doubleFromText("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_FALSE(doubleFromText("1.8e308"));
  EXPECT_FALSE(doubleFromText("-1e400"));
  EXPECT_EQ(doubleFromText("1e-400"), 0);
  EXPECT_EQ(doubleFromText("5e-324"), 5e-324);
}

TEST(DoubleFromText, ReadsBackWhatWasWritten) {
  for (const double value : {0.1, 1.0 / 3, 1e22, 1e-7, 123456789.123, -2.2250738585072014e-308}) {
    EXPECT_EQ(doubleFromText(doubleText(value)), value);
  }
}

}  // namespace
}  // namespace brindle
