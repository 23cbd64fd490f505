#include "base/json_record.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {

enum class Mood { calm, wild };
template <>
inline constexpr auto kEnumTexts<Mood> = std::to_array<EnumText<Mood>>({{Mood::calm, "calm"}, {Mood::wild, "wild"}});

namespace {

const JsonObject& everyType() {
  static const JsonObject object{{"null", nullptr},
                                 {"bool", true},
                                 {"int", 7},
                                 {"real", 2.5},
                                 {"text", "calm"},
                                 {"array", JsonArray{1}},
                                 {"object", JsonObject{}},
                                 {"date", "1970-01-01T00:01:00Z"}};
  return object;
}

template <typename Read>
std::vector<std::string> keysReadBy(Read read) {
  std::vector<std::string> keys;
  for (const JsonMember& member : everyType().members()) {
    if (read(everyType(), member.key)) keys.push_back(member.key);
  }
  EXPECT_FALSE(read(everyType(), "absent"));
  return keys;
}

using Keys = std::vector<std::string>;

TEST(JsonRecord, TreatsAMemberOfAnotherTypeAsAbsent) {
  EXPECT_EQ(keysReadBy(stringMember), (Keys{"text", "date"}));
  EXPECT_EQ(keysReadBy(booleanMember), (Keys{"bool"}));
  EXPECT_EQ(keysReadBy(integerMember), (Keys{"int"}));
  EXPECT_EQ(keysReadBy(int32Member), (Keys{"int"}));
  EXPECT_EQ(keysReadBy(realMember), (Keys{"int", "real"}));
  EXPECT_EQ(keysReadBy(secondsDateMember), (Keys{"int", "real"}));
  EXPECT_EQ(keysReadBy(isoDateMember), (Keys{"date"}));
  EXPECT_EQ(keysReadBy(enumMember<Mood>), (Keys{"text"}));
  EXPECT_EQ(keysReadBy([](const auto& o, const auto& k) { return arrayMember(o, k) != nullptr; }), (Keys{"array"}));
  EXPECT_EQ(keysReadBy([](const auto& o, const auto& k) { return objectMember(o, k) != nullptr; }), (Keys{"object"}));
}

TEST(JsonRecord, ReadsTheValues) {
  EXPECT_EQ(stringMember(everyType(), "text"), "calm");
  EXPECT_EQ(booleanMember(everyType(), "bool"), true);
  EXPECT_EQ(integerMember(everyType(), "int"), 7);
  EXPECT_EQ(realMember(everyType(), "real"), 2.5);
  EXPECT_EQ(secondsDateMember(everyType(), "real"), dateFromSeconds(2.5));
  EXPECT_EQ(isoDateMember(everyType(), "date"), dateFromSeconds(60));
  EXPECT_EQ(enumMember<Mood>(everyType(), "text"), Mood::calm);
}

TEST(JsonRecord, BoundsA32BitIntegerExactly) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(int32Member(JsonObject{{"a", kMost}}, "a"), kMost);
  EXPECT_FALSE(int32Member(JsonObject{{"a", kMost + 1}}, "a"));
  EXPECT_EQ(int32Member(JsonObject{{"a", kLeast}}, "a"), kLeast);
  EXPECT_FALSE(int32Member(JsonObject{{"a", kLeast - 1}}, "a"));
}

TEST(JsonRecord, RefusesARawTextThatNoCaseHas) { EXPECT_FALSE(enumMember<Mood>(JsonObject{{"a", "Calm"}}, "a")); }

TEST(JsonRecord, LeavesOutAbsentFields) {
  JsonObject object;
  appendIfPresent(object, "a", std::optional<std::string>("x"));
  appendIfPresent(object, "b", std::optional<std::int64_t>());
  appendIfPresent(object, "c", std::optional<bool>(false));
  EXPECT_EQ(object, (JsonObject{{"a", "x"}, {"c", false}}));
}

}  // namespace
}  // namespace brindle
