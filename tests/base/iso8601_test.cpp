#include "base/iso8601.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

#include "tests/base/golden.h"

namespace brindle {
namespace {

std::optional<double> plain(std::string_view text) {
  const auto date = readIso8601(text);
  return date ? std::optional<double>(secondsSince1970(*date)) : std::nullopt;
}

std::optional<double> fractional(std::string_view text) {
  const auto date = readIso8601WithFraction(text);
  return date ? std::optional<double>(secondsSince1970(*date)) : std::nullopt;
}

// Texts that some version of the platform reads and another does not, and that this reader refuses, with why.
const std::map<std::string, std::string> kRefusedHere = {
    {"2025-01-01T10:00:00GMT", "a zone is Z or an offset"},
    {"2025-01-01T10:00:00UTC", "a zone is Z or an offset"},
    {"2025-01-01T10:00:00z", "the zone letter is upper case"},
    {"2025-01-01T10:00:00+02", "an offset has minutes"},
    {"2025-01-01T10:00:00 Z", "no white space"},
    {" 2025-01-01T10:00:00Z", "no white space"},
    {"2025-01-01T10:00:00Z ", "no white space"},
    {"2025-01-01T10:00:00Zjunk", "nothing may follow"},
    {"2025-01-01T10:00:00+25:00", "a zone's hours end at 23"},
    {"2025-01-01T10:00:00+02:60", "a zone's minutes end at 59"},
    {"2025-01-01T10:00:00+02:00:30", "an offset has no seconds"},
    {"2025-1-1T1:0:0Z", "fields have two digits"},
    {"2025-01-01T24:00:00Z", "hours end at 23"},
    {"2025-01-01T25:00:00Z", "hours end at 23"},
    {"2025-01-01T10:61:00Z", "minutes end at 59"},
    {"2025-01-01T23:59:60Z", "no leap second"},
    {"2025-02-30T00:00:00Z", "days do not roll over"},
    {"2025-02-29T12:00:00Z", "days do not roll over"},
    {"10000-01-01T00:00:00Z", "a year has four digits"},
    {"-001-01-01T00:00:00Z", "a year has four digits"},
    {"２０２５-01-01T10:00:00Z", "digits are ASCII"},
};
// Read here although the record decoder knows no offset beyond 18 hours: its fields are in range.
constexpr std::string_view kReadHere = "2025-01-01T10:00:00+23:59";

TEST(Iso8601, ReadsEveryReferenceRowAsThePlatformDoes) {
  std::size_t refused = 0;
  for (const JsonObject& row : goldenRows("iso8601-decode.json")) {
    const std::string text = textIn(row, "text");
    if (kRefusedHere.contains(text)) {
      EXPECT_EQ(plain(text), std::nullopt) << text;
      ++refused;
    } else if (text == kReadHere) {
      EXPECT_EQ(plain(text), realMember(row, "plain reader"));
    } else {
      EXPECT_EQ(plain(text), realMember(row, "decoder")) << text;
      EXPECT_EQ(plain(text), realMember(row, "plain reader")) << text;
    }
    EXPECT_EQ(fractional(text), realMember(row, "fractional reader")) << text;
  }
  EXPECT_EQ(refused, kRefusedHere.size());
}

TEST(Iso8601, WritesEveryReferenceRow) {
  for (const JsonObject& row : goldenRows("iso8601-encode.json")) {
    const auto seconds = realMember(row, "secondsSince1970");
    ASSERT_TRUE(seconds);
    EXPECT_EQ("{\"t\":\"" + writeIso8601(dateFromSeconds(*seconds)) + "\"}", textIn(row, "text"));
  }
}

TEST(Iso8601, AcceptsEveryFieldAtItsBoundsAndNothingBeyond) {
  EXPECT_TRUE(plain("2025-12-31T23:59:59Z"));
  EXPECT_FALSE(plain("2025-12-32T23:59:59Z"));
  EXPECT_FALSE(plain("2025-13-31T23:59:59Z"));
  EXPECT_FALSE(plain("2025-12-31T24:59:59Z"));
  EXPECT_FALSE(plain("2025-12-31T23:60:59Z"));
  EXPECT_FALSE(plain("2025-12-31T23:59:60Z"));
  EXPECT_FALSE(plain("2025-00-31T23:59:59Z"));
  EXPECT_FALSE(plain("2025-12-00T23:59:59Z"));
  EXPECT_TRUE(plain("2025-12-31T00:00:00+23:59"));
  EXPECT_FALSE(plain("2025-12-31T00:00:00+24:00"));
  EXPECT_FALSE(plain("2025-12-31T00:00:00+23:60"));
  EXPECT_FALSE(plain("0000-12-31T00:00:00Z"));
  EXPECT_TRUE(plain("0001-01-01T00:00:00Z"));
}

TEST(Iso8601, RefusesADateWithoutZone) {
  EXPECT_FALSE(plain("2025-01-01T10:00:00"));
  EXPECT_FALSE(fractional("2025-01-01T10:00:00.5"));
}

TEST(Iso8601, TakesAFractionOnlyWhereItIsAskedFor) {
  EXPECT_EQ(fractional("2025-01-01T10:00:00.5Z"), 1735725600.5);
  EXPECT_FALSE(plain("2025-01-01T10:00:00.5Z"));
  EXPECT_FALSE(fractional("2025-01-01T10:00:00Z"));
  EXPECT_FALSE(fractional("2025-01-01T10:00:00.Z"));
  EXPECT_FALSE(fractional("2025-01-01T10:00:00.+01:00"));
  EXPECT_EQ(fractional("2025-01-01T10:00:00.9999Z"), 1735725600.999);
  EXPECT_EQ(fractional("2025-01-01T10:00:00." + std::string(5000, '9') + "Z"), 1735725600.999);
}

TEST(Iso8601, KnowsLeapYearsOfBothCalendars) {
  EXPECT_TRUE(plain("2000-02-29T00:00:00Z"));
  EXPECT_FALSE(plain("1900-02-29T00:00:00Z"));
  EXPECT_TRUE(plain("1500-02-29T00:00:00Z"));
  EXPECT_EQ(plain("1582-10-04T00:00:00Z"), -12219379200.0);
  EXPECT_EQ(plain("1582-10-15T00:00:00Z"), -12219292800.0);
  EXPECT_FALSE(plain("1582-10-05T00:00:00Z"));
  EXPECT_FALSE(plain("1582-10-14T00:00:00Z"));
}

TEST(Iso8601, ReadsBackEveryDayThatItWrites) {
  constexpr double kFirst = -62135769600.0;
  constexpr double kLast = 253402300799.0;
  std::size_t days = 0;
  // A stride of 37 days and some hours visits every month and year within a few seconds of work.
  for (double seconds = kFirst; seconds <= kLast; seconds += 86400.0 * 37 + 3607) {
    const std::string text = writeIso8601(dateFromSeconds(seconds));
    ASSERT_EQ(plain(text), seconds) << text;
    ++days;
  }
  EXPECT_GT(days, 90000U);
}

TEST(Iso8601, WritesTheNearestDateWithFourDigitsForOthers) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(writeIso8601(dateFromSeconds(253402300800.0)), "9999-12-31T23:59:59Z");
  EXPECT_EQ(writeIso8601(dateFromSeconds(kInfinity)), "9999-12-31T23:59:59Z");
  EXPECT_EQ(writeIso8601(dateFromSeconds(-62135769601.0)), "0001-01-01T00:00:00Z");
  EXPECT_EQ(writeIso8601(dateFromSeconds(-kInfinity)), "0001-01-01T00:00:00Z");
  EXPECT_EQ(writeIso8601(dateFromSeconds(std::numeric_limits<double>::quiet_NaN())), "1970-01-01T00:00:00Z");
}

TEST(Iso8601, RefusesEveryPrefixAndEveryExtensionOfAText) {
  for (const std::string& text : {std::string("2025-01-01T10:00:00Z"), std::string("2025-01-01T10:00:00+02:00")}) {
    ASSERT_TRUE(plain(text));
    for (std::size_t length = 0; length < text.size(); ++length) EXPECT_FALSE(plain(text.substr(0, length))) << length;
    for (int byte = 0; byte < 256; ++byte) EXPECT_FALSE(plain(text + static_cast<char>(byte))) << byte;
  }
}

}  // namespace
}  // namespace brindle
