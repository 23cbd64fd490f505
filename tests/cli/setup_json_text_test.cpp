#include "cli/setup_json_text.h"

#include <gtest/gtest.h>

#include "base/json_reader.h"

namespace brindle {
namespace {

JsonPlace root(std::string_view json) {
  const auto places = placesOf(json);
  EXPECT_TRUE(places.has_value()) << json;
  return places.value_or(JsonPlace{});
}

std::string textOfPlace(std::string_view json, const JsonPlace& place) {
  return std::string(json.substr(place.begin, place.end - place.begin));
}

TEST(SetupJsonText, FindsEveryValueInItsText) {
  const std::string json = "\xEF\xBB\xBF { \"a\" : [1, \"x\\\"]\" , {}] ,\"b\":null, \"\\u0063\": true }\n";
  const JsonPlace places = root(json);
  ASSERT_EQ(places.children.size(), 3u);
  EXPECT_EQ(textOfPlace(json, places.children[0]), "[1, \"x\\\"]\" , {}]");
  EXPECT_EQ(textOfPlace(json, places.children[0].children[1]), "\"x\\\"]\"");
  EXPECT_EQ(stringAt(json, places.children[0].children[1]), "x\"]");
  EXPECT_EQ(textOfPlace(json, *places.find("b")), "null");
  EXPECT_EQ(textOfPlace(json, *places.find("c")), "true");
  EXPECT_EQ(places.find("d"), nullptr);
  EXPECT_EQ(places.children[0].find("a"), nullptr);
}

TEST(SetupJsonText, FindsTheLastOfDuplicateKeysBecauseThatOneCounts) {
  const std::string json = R"({"a":1,"a":2})";
  EXPECT_EQ(textOfPlace(json, *root(json).find("a")), "2");
}

TEST(SetupJsonText, HasNoPlacesForWhatIsNoJson) {
  for (const char* text : {"", " ", "{", "{\"a\":1,}", "// c\n{}", "{} {}", "nul"}) {
    EXPECT_FALSE(placesOf(text).has_value()) << text;
  }
}

TEST(SetupJsonText, FindsThePlacesOfADocumentAtTheLimitOfDepth) {
  const std::string deep = std::string(kJsonDepthLimit, '[') + std::string(kJsonDepthLimit, ']');
  EXPECT_EQ(root(deep).end, deep.size());
  EXPECT_FALSE(placesOf("[" + deep + "]").has_value());
}

TEST(SetupJsonText, AddsAMemberInTheLayoutOfTheDocument) {
  const JsonMember member{"n", JsonObject{{"x", JsonArray{"/y"}}}};
  const auto added = [&](std::string_view json) { return withMember(json, root(json), member); };
  EXPECT_EQ(added("{\n    \"a\": 1\n}\n"),
            "{\n    \"a\": 1,\n    \"n\": {\n        \"x\": [\n            \"/y\"\n        ]\n    }\n}\n");
  EXPECT_EQ(added("{\r\n\t\"a\": 1\r\n}"),
            "{\r\n\t\"a\": 1,\r\n\t\"n\": {\r\n\t\t\"x\": [\r\n\t\t\t\"/y\"\r\n\t\t]\r\n\t}\r\n}");
  EXPECT_EQ(added("{\"a\":1}"), "{\"a\":1,\"n\":{\"x\":[\"/y\"]}}");
  EXPECT_EQ(added("{}"), "{\n  \"n\": {\n    \"x\": [\n      \"/y\"\n    ]\n  }\n}");
  EXPECT_EQ(added("\n\n{\"a\":1}\n"), "\n\n{\"a\":1,\"n\":{\"x\":[\"/y\"]}}\n");
}

TEST(SetupJsonText, KeepsAContainerOfOneLineOnItsLine) {
  const std::string json = "{\n  \"a\": [1, 2],\n  \"b\": []\n}";
  EXPECT_EQ(withElement(json, *root(json).find("a"), JsonObject{{"x", JsonArray{3}}}),
            "{\n  \"a\": [1, 2,{\"x\":[3]}],\n  \"b\": []\n}");
  EXPECT_EQ(withElement(json, *root(json).find("b"), 3), "{\n  \"a\": [1, 2],\n  \"b\": [\n    3\n  ]\n}");
}

TEST(SetupJsonText, ReplacesOnlyTheValue) {
  const std::string json = "{ \"a\" : \"old\" , \"b\":2}";
  EXPECT_EQ(withValue(json, *root(json).find("a"), "/new"), "{ \"a\" : \"/new\" , \"b\":2}");
}

TEST(SetupJsonText, TakesAChildAwayWithItsComma) {
  const std::string json = "{ \"a\": 1 , \"b\": 2,\n \"c\": 3 }";
  EXPECT_EQ(withoutChild(json, root(json), 0), "{ \"b\": 2,\n \"c\": 3 }");
  EXPECT_EQ(withoutChild(json, root(json), 1), "{ \"a\": 1,\n \"c\": 3 }");
  EXPECT_EQ(withoutChild(json, root(json), 2), "{ \"a\": 1 , \"b\": 2 }");
  EXPECT_EQ(withoutChild("[ 1 ]", root("[ 1 ]"), 0), "[]");
}

}  // namespace
}  // namespace brindle
