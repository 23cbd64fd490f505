#include "base/json_value.h"

#include <gtest/gtest.h>

#include <limits>

namespace brindle {
namespace {

std::optional<std::int64_t> integerOf(const char* text) { return JsonNumber::fromText(text).integer(); }

TEST(JsonNumber, IsAnIntegerHoweverTheWholeValueIsWritten) {
  EXPECT_EQ(integerOf("3"), 3);
  EXPECT_EQ(integerOf("3.0"), 3);
  EXPECT_EQ(integerOf("3e0"), 3);
  EXPECT_EQ(integerOf("30E-1"), 3);
  EXPECT_EQ(integerOf("0.03e+2"), 3);
  EXPECT_EQ(integerOf("-12.00"), -12);
  EXPECT_EQ(integerOf("-0"), 0);
  EXPECT_EQ(integerOf("0.000e99999999999999999999"), 0);
}

TEST(JsonNumber, IsNoIntegerWithAFraction) {
  EXPECT_FALSE(integerOf("2.5"));
  EXPECT_FALSE(integerOf("3e-1"));
  EXPECT_FALSE(integerOf("1e-99999999999999999999"));
  EXPECT_FALSE(integerOf("0.1"));
}

TEST(JsonNumber, FitsExactly64SignedBits) {
  EXPECT_EQ(integerOf("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(integerOf("9223372036854775807.0"), std::numeric_limits<std::int64_t>::max());
  EXPECT_FALSE(integerOf("9223372036854775808"));
  EXPECT_FALSE(integerOf("9223372036854775808.0"));
  EXPECT_EQ(integerOf("-9223372036854775808.0"), std::numeric_limits<std::int64_t>::min());
  EXPECT_FALSE(integerOf("-9223372036854775809.0"));
  EXPECT_EQ(integerOf("1e18"), 1000000000000000000);
  EXPECT_FALSE(integerOf("1e19"));
  EXPECT_FALSE(integerOf("12e18"));
  EXPECT_FALSE(integerOf("1e99999999999999999999"));
}

TEST(JsonNumber, AnswersTheNearestDoubleUnlessTooLarge) {
  EXPECT_EQ(JsonNumber::fromText("0.1").real(), 0.1);
  EXPECT_EQ(JsonNumber::fromText("18446744073709551616").real(), 18446744073709551616.0);
  EXPECT_FALSE(JsonNumber::fromText("1e400").real());
}

TEST(JsonNumber, WritesWhatItWasMadeOf) {
  EXPECT_EQ(JsonNumber(std::int64_t{-7}).text(), "-7");
  EXPECT_EQ(JsonNumber(7.0).text(), "7");
  EXPECT_EQ(JsonNumber(0.5).text(), "0.5");
  EXPECT_EQ(JsonNumber::fromText("1E+5").text(), "1E+5");
}

TEST(JsonObject, KeepsMembersInTheOrderOfTheirFirstAppearance) {
  JsonObject object;
  object.set("b", 1);
  object.set("a", 2);
  object.set("b", 3);
  EXPECT_EQ(object, (JsonObject{{"b", 3}, {"a", 2}}));
  EXPECT_NE(object, (JsonObject{{"a", 2}, {"b", 3}}));
  EXPECT_EQ(object.size(), 2U);
}

TEST(JsonObject, FindsOnlyKeysThatItHas) {
  const JsonObject object{{"a", nullptr}};
  ASSERT_NE(object.find("a"), nullptr);
  EXPECT_TRUE(object.find("a")->isNull());
  EXPECT_EQ(object.find("A"), nullptr);
  EXPECT_EQ(object.find(""), nullptr);
}

TEST(JsonObject, ErasesAMemberOnce) {
  JsonObject object{{"a", 1}, {"b", 2}, {"c", 3}};
  EXPECT_TRUE(object.erase("b"));
  EXPECT_FALSE(object.erase("b"));
  EXPECT_EQ(object, (JsonObject{{"a", 1}, {"c", 3}}));
  EXPECT_FALSE(object.empty());
}

TEST(JsonObject, LetsTheLastOfDuplicateKeysWinInThePlaceOfTheFirst) {
  // 12 members are searched pair by pair, 13 by sorting: both ways must agree.
  for (int others = 0; others < 30; ++others) {
    std::vector<JsonMember> members = {{"x", 1}, {"y", 2}, {"x", 3}};
    JsonObject expected{{"x", 4}, {"y", 2}};
    for (int index = 0; index < others; ++index) {
      const std::string key = "k" + std::to_string(index % 7);
      members.push_back({key, index});
      expected.set(key, index);
    }
    members.push_back({"x", 4});
    EXPECT_EQ(JsonObject::fromMembers(std::move(members)), expected) << others;
  }
}

TEST(JsonValue, AnswersOnlyForItsOwnType) {
  const JsonValue boolean(true);
  EXPECT_EQ(boolean.boolean(), true);
  EXPECT_EQ(boolean.number(), nullptr);
  const JsonValue number(1);
  EXPECT_FALSE(number.boolean());
  EXPECT_EQ(number.string(), nullptr);
  const JsonValue text("1");
  EXPECT_EQ(text.number(), nullptr);
  EXPECT_EQ(*text.string(), "1");
  EXPECT_EQ(text.array(), nullptr);
  EXPECT_EQ(text.object(), nullptr);
  EXPECT_TRUE(JsonValue().isNull());
  EXPECT_FALSE(number.isNull());
}

TEST(JsonValue, ComparesTypesBeforeValues) {
  EXPECT_NE(JsonValue(1), JsonValue(true));
  EXPECT_NE(JsonValue("1"), JsonValue(1));
  EXPECT_NE(JsonValue(JsonArray{}), JsonValue(JsonObject{}));
  EXPECT_EQ(JsonValue(JsonArray{1, "a"}), JsonValue(JsonArray{1, "a"}));
}

}  // namespace
}  // namespace brindle
