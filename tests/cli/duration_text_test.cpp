#include "cli/duration_text.h"

#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>
#include <limits>

namespace brindle {
namespace {

TEST(DurationText, ReadsWhatPeopleType) {
  EXPECT_EQ(parseDuration("90s"), Seconds{90});
  EXPECT_EQ(parseDuration("45m"), Seconds{2700});
  EXPECT_EQ(parseDuration("4h"), Seconds{14400});
  EXPECT_EQ(parseDuration("1h30m"), Seconds{5400});
  EXPECT_EQ(parseDuration("2d"), Seconds{172800});
  EXPECT_EQ(parseDuration("1d2h3m4s"), Seconds{93784});
  EXPECT_EQ(parseDuration("1h5s"), Seconds{3605});
  EXPECT_EQ(parseDuration("0s"), Seconds{0});
  EXPECT_EQ(parseDuration("007m"), Seconds{420});
}

TEST(DurationText, RefusesEverythingElse) {
  for (const char* text : {"",     "4",     "h",    "4H",  "4 h",  " 4h",        "4h ",  "-4h",  "+4h", "1.5h",
                           "1,5h", "30m1h", "1h1h", "4hs", "1h30", "four hours", "4h\n", "1e3s", "4w",  "\xd9\xa4h"}) {
    EXPECT_EQ(parseDuration(text), std::nullopt) << '"' << text << '"';
  }
}

TEST(DurationText, TakesNineDigitsAndRefusesTen) {
  EXPECT_EQ(parseDuration("999999999s"), Seconds{999999999});
  EXPECT_EQ(parseDuration("1000000000s"), std::nullopt);
  EXPECT_EQ(parseDuration("999999999d999999999h999999999m999999999s"), Seconds{999999999.0 * (86400 + 3600 + 60 + 1)});
}

TEST(DurationText, WritesTheShortestUnits) {
  EXPECT_EQ(durationText(Seconds{14400}), "4h");
  EXPECT_EQ(durationText(Seconds{5400}), "1h30m");
  EXPECT_EQ(durationText(Seconds{90}), "1m30s");
  EXPECT_EQ(durationText(Seconds{59.999}), "59s");
  EXPECT_EQ(durationText(Seconds{172800}), "48h");
  EXPECT_EQ(durationText(Seconds{3605}), "1h5s");
}

TEST(DurationText, WritesZeroForWhatIsNoSpan) {
  EXPECT_EQ(durationText(Seconds{0.999}), "0s");
  EXPECT_EQ(durationText(Seconds{1}), "1s");
  EXPECT_EQ(durationText(Seconds{-5}), "0s");
  EXPECT_EQ(durationText(Seconds{std::numeric_limits<double>::quiet_NaN()}), "0s");
}

TEST(DurationText, WritesSomethingReadableForEndlessSpans) {
  EXPECT_EQ(durationText(Seconds{std::numeric_limits<double>::infinity()}), durationText(Seconds{1e15}));
}

RC_GTEST_PROP(DurationText, ReadsBackWhatItWrites, ()) {
  const auto seconds = *rc::gen::inRange<std::int64_t>(0, 999'999'999);
  RC_ASSERT(parseDuration(durationText(Seconds{static_cast<double>(seconds)})) ==
            Seconds{static_cast<double>(seconds)});
}

RC_GTEST_PROP(DurationText, NeverThrowsForAnyText, (const std::string& text)) {
  const auto parsed = parseDuration(text);
  RC_ASSERT(!parsed || parsed->count() >= 0);
}

TEST(AgeText, HasTheLargestUnitThatIsFilledAndTheNext) {
  const auto text = [](double seconds) { return ageText(Seconds{seconds}); };
  EXPECT_EQ(text(-1), "0s");
  EXPECT_EQ(text(0.9), "0s");
  EXPECT_EQ(text(59.9), "59s");
  EXPECT_EQ(text(60), "1m");
  EXPECT_EQ(text(3599), "59m59s");
  EXPECT_EQ(text(3600), "1h");
  EXPECT_EQ(text(3605), "1h") << "the next unit is empty, and the one after it is not told";
  EXPECT_EQ(text(86399), "23h59m");
  EXPECT_EQ(text(86400), "1d");
  EXPECT_EQ(text(45 * 86400 + 13 * 3600 + 59), "45d13h");
  EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "0s");
}

TEST(AgeText, ReadsBack) {
  for (const double seconds : {1.0, 61.0, 3660.0, 90000.0}) {
    EXPECT_EQ(parseDuration(ageText(Seconds{seconds})), Seconds{seconds});
  }
}

}  // namespace
}  // namespace brindle
