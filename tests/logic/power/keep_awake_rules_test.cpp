#include "logic/power/keep_awake_rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/json_reader.h"
#include "base/json_writer.h"

namespace brindle {
namespace {

KeepAwakeRules decoded(std::string_view text) {
  const auto document = parseJson(text);
  EXPECT_TRUE(document && document->object() != nullptr) << text;
  return document && document->object() != nullptr ? decodeKeepAwakeRules(*document->object())
                                                   : KeepAwakeRules{.enabled = true, .batteryFloor = -1};
}

TEST(KeepAwakeRules, TakesTheDefaultsForAnEmptyObject) {
  EXPECT_EQ(decoded("{}"), KeepAwakeRules::defaults());
  EXPECT_EQ(KeepAwakeRules::defaults(), (KeepAwakeRules{.enabled = false,
                                                        .batteryFloor = 20,
                                                        .thermalLimit = ThermalLevel::serious,
                                                        .idleRelease = Seconds{600},
                                                        .lidClosedOnBattery = false,
                                                        .maxDuration = Seconds{14400}}));
}

TEST(KeepAwakeRules, WritesAllSixKeysInTheirOrder) {
  EXPECT_EQ(writeJson(encode(KeepAwakeRules{})),
            R"({"enabled":false,"batteryFloor":20,"thermalLimit":2,"idleRelease":600,"lidClosedOnBattery":false,)"
            R"("maxDuration":14400})");
}

TEST(KeepAwakeRules, ReadsBackWhatItWrote) {
  const KeepAwakeRules rules{.enabled = true,
                             .batteryFloor = 55,
                             .thermalLimit = ThermalLevel::critical,
                             .idleRelease = Seconds{120.5},
                             .lidClosedOnBattery = true,
                             .maxDuration = Seconds{28800}};
  EXPECT_EQ(decoded(writeJson(encode(rules))), rules);
}

TEST(KeepAwakeRules, ReadsEachKeyByItself) {
  EXPECT_EQ(decoded(R"({"enabled":true})"), (KeepAwakeRules{.enabled = true}));
  EXPECT_EQ(decoded(R"({"batteryFloor":30})"), (KeepAwakeRules{.batteryFloor = 30}));
  EXPECT_EQ(decoded(R"({"thermalLimit":3})"), (KeepAwakeRules{.thermalLimit = ThermalLevel::critical}));
  EXPECT_EQ(decoded(R"({"idleRelease":-1.5})"), (KeepAwakeRules{.idleRelease = Seconds{-1.5}}));
  EXPECT_EQ(decoded(R"({"lidClosedOnBattery":true})"), (KeepAwakeRules{.lidClosedOnBattery = true}));
  EXPECT_EQ(decoded(R"({"maxDuration":3600})"), (KeepAwakeRules{.maxDuration = Seconds{3600}}));
}

TEST(KeepAwakeRules, ClampsTheBatteryFloor) {
  const std::vector<std::pair<std::string, std::int64_t>> cases{{"2", 5},
                                                                {"4", 5},
                                                                {"5", 5},
                                                                {"6", 6},
                                                                {"89", 89},
                                                                {"90", 90},
                                                                {"91", 90},
                                                                {"95", 90},
                                                                {"-9223372036854775808", 5},
                                                                {"9223372036854775807", 90}};
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(decoded(R"({"batteryFloor":)" + text + "}").batteryFloor, expected) << text;
  }
}

TEST(KeepAwakeRules, ClampsTheMaximumDuration) {
  const std::vector<std::pair<std::string, double>> cases{{"10", 60},       {"59.9", 60},     {"60", 60},
                                                          {"60.5", 60.5},   {"43200", 43200}, {"43200.5", 43200},
                                                          {"1e300", 43200}, {"-1e300", 60}};
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(decoded(R"({"maxDuration":)" + text + "}").maxDuration, Seconds{expected}) << text;
  }
}

TEST(KeepAwakeRules, TakesTheDefaultForAWrongTypeAtEveryKey) {
  for (const std::string key :
       {"enabled", "batteryFloor", "thermalLimit", "idleRelease", "lidClosedOnBattery", "maxDuration"}) {
    for (const std::string wrong : {"null", "\"1\"", "[]", "{}"}) {
      EXPECT_EQ(decoded("{\"" + key + "\":" + wrong + "}"), KeepAwakeRules::defaults()) << key << " " << wrong;
    }
  }
}

TEST(KeepAwakeRules, TakesNoBooleanForANumberAndNoNumberForABoolean) {
  for (const std::string key : {"batteryFloor", "thermalLimit", "idleRelease", "maxDuration"}) {
    EXPECT_EQ(decoded("{\"" + key + "\":true}"), KeepAwakeRules::defaults()) << key;
  }
  for (const std::string key : {"enabled", "lidClosedOnBattery"}) {
    EXPECT_EQ(decoded("{\"" + key + "\":1}"), KeepAwakeRules::defaults()) << key;
  }
}

TEST(KeepAwakeRules, TakesTheDefaultForNumbersThatAreNotWholeOrNoLevel) {
  EXPECT_EQ(decoded(R"({"batteryFloor":30.5})"), KeepAwakeRules::defaults());
  EXPECT_EQ(decoded(R"({"batteryFloor":1e30})"), KeepAwakeRules::defaults());
  for (const std::string raw : {"-1", "4", "1.5"}) {
    EXPECT_EQ(decoded(R"({"thermalLimit":)" + raw + "}"), KeepAwakeRules::defaults()) << raw;
  }
}

TEST(KeepAwakeRules, IgnoresOtherKeys) { EXPECT_EQ(decoded(R"({"x":1,"Enabled":true})"), KeepAwakeRules::defaults()); }

TEST(KeepAwakeChoices, OffersWhatASettingsScreenShows) {
  EXPECT_EQ(KeepAwakeChoices::kMinBatteryFloor, 5);
  EXPECT_EQ(KeepAwakeChoices::kMaxBatteryFloor, 90);
  EXPECT_EQ(KeepAwakeChoices::kBatteryFloorStep, 5);
  EXPECT_EQ(KeepAwakeChoices::thermalLimits, (std::array{ThermalLevel::serious, ThermalLevel::critical}));
  EXPECT_EQ(KeepAwakeChoices::idleReleases, (std::array{Seconds{120}, Seconds{300}, Seconds{600}, Seconds{1800}}));
}

}  // namespace
}  // namespace brindle
