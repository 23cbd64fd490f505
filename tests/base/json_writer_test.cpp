#include "base/json_writer.h"

#include <gtest/gtest.h>

#include "tests/base/golden.h"

namespace brindle {
namespace {

constexpr JsonStyle kCompactSorted{.pretty = false, .sortedKeys = true, .escapeSlashes = true};
constexpr JsonStyle kCompactSortedSlashes{.pretty = false, .sortedKeys = true, .escapeSlashes = false};
constexpr JsonStyle kPrettySorted{.pretty = true, .sortedKeys = true, .escapeSlashes = true};
constexpr JsonStyle kPrettySortedSlashes{.pretty = true, .sortedKeys = true, .escapeSlashes = false};

struct NamedStyle {
  std::string_view name;
  JsonStyle style;
};

constexpr auto kStyles = std::to_array<NamedStyle>({{"compact sorted", kCompactSorted},
                                                    {"compact sorted slashes", kCompactSortedSlashes},
                                                    {"pretty sorted", kPrettySorted},
                                                    {"pretty sorted slashes", kPrettySortedSlashes}});

/// Compares the value, written in each style for which the row has a text.
std::size_t compareWithRow(const JsonValue& value, const JsonObject& row) {
  std::size_t compared = 0;
  for (const NamedStyle& named : kStyles) {
    if (row.find(named.name) == nullptr) continue;
    EXPECT_EQ(writeJson(value, named.style), textIn(row, named.name)) << textIn(row, "case");
    ++compared;
  }
  return compared;
}

TEST(JsonWriter, MatchesEveryReferenceRowOfBothEncoders) {
  std::size_t compared = 0;
  for (const char* file : {"encoder-text.json", "serialization-text.json"}) {
    for (const JsonObject& row : goldenRows(file)) {
      const auto value = parseJson(textIn(row, "compact sorted"));
      ASSERT_TRUE(value);
      compared += compareWithRow(*value, row);
    }
  }
  EXPECT_EQ(compared, 10U * 4 + 7U * 2);
}

TEST(JsonWriter, WritesDoublesAsTheEncoderDoes) {
  JsonArray values;
  for (const double value : {0.0,
                             -0.0,
                             1.0,
                             0.1,
                             600.0,
                             14400.0,
                             5.0,
                             99.7,
                             1e15,
                             1e16,
                             123456789012345678.0,
                             1e20,
                             1e21,
                             1e22,
                             1e-4,
                             1e-5,
                             1e-7,
                             1.5e300,
                             5e-324,
                             1761234567.123456,
                             0.1 + 0.2,
                             100.0 / 3}) {
    values.emplace_back(value);
  }
  std::size_t found = 0;
  for (const JsonObject& row : goldenRows("encoder-text.json")) {
    if (textIn(row, "case") == "doubles") found += compareWithRow(JsonValue(values), row);
  }
  EXPECT_EQ(found, 4U);
}

TEST(JsonWriter, SortsKeysByTheirBytes) {
  const JsonObject object{{"b", 1}, {"a", 2}, {"B", 3}, {"a10", 4}, {"a2", 5}, {"é", 6}, {"_", 7}};
  std::size_t found = 0;
  for (const JsonObject& row : goldenRows("encoder-text.json")) {
    if (textIn(row, "case") == "key order") found += compareWithRow(JsonValue(object), row);
  }
  EXPECT_EQ(found, 4U);
  EXPECT_EQ(writeJson(object), "{\"b\":1,\"a\":2,\"B\":3,\"a10\":4,\"a2\":5,\"é\":6,\"_\":7}");
}

TEST(JsonWriter, EscapesExactlyWhatTheEncoderEscapes) {
  EXPECT_EQ(writeJsonString(std::string_view("\0\x01\x1f\x20\x7f", 5)), "\"\\u0000\\u0001\\u001f \x7f\"");
  EXPECT_EQ(writeJsonString("\b\t\n\v\f\r"), "\"\\b\\t\\n\\u000b\\f\\r\"");
  EXPECT_EQ(writeJsonString("a/b\\\"'"), "\"a\\/b\\\\\\\"'\"");
  EXPECT_EQ(writeJsonString("a/b", {.escapeSlashes = false}), "\"a/b\"");
  EXPECT_EQ(writeJsonString("\xE2\x80\xA8é😀"), "\"\xE2\x80\xA8é😀\"");
  EXPECT_EQ(writeJsonString(""), "\"\"");
}

TEST(JsonWriter, ReplacesEachByteThatIsNoTextSoThatDocumentsStayValid) {
  const std::string text = writeJson(JsonObject{{"a\xFF", "\xC3(\x80"}});
  EXPECT_EQ(text, "{\"a\xEF\xBF\xBD\":\"\xEF\xBF\xBD(\xEF\xBF\xBD\"}");
  EXPECT_TRUE(parseJson(text));
}

TEST(JsonWriter, EscapesSlashesInKeysToo) {
  EXPECT_EQ(writeJson(JsonObject{{"a/b", 1}}), "{\"a\\/b\":1}");
  EXPECT_EQ(writeJson(JsonObject{{"a/b", 1}}, kCompactSortedSlashes), "{\"a/b\":1}");
}

TEST(JsonWriter, WritesTheDeepestDocumentThatIsRead) {
  const std::string text = std::string(kJsonDepthLimit, '[') + std::string(kJsonDepthLimit, ']');
  const auto value = parseJson(text);
  ASSERT_TRUE(value);
  EXPECT_EQ(writeJson(*value), text);
}

}  // namespace
}  // namespace brindle
