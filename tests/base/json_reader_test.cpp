#include "base/json_reader.h"

#include <gtest/gtest.h>

#include <clocale>
#include <map>

#include "base/json_writer.h"
#include "tests/base/golden.h"

namespace brindle {
namespace {

std::string bytesOf(const std::string& hex) {
  std::string bytes;
  for (std::size_t index = 0; index + 1 < hex.size(); index += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(index, 2), nullptr, 16));
  }
  return bytes;
}

/// The document of a row; the longest ones are named by their depth.
std::string documentOf(const JsonObject& row) {
  const std::string name = textIn(row, "document");
  if (name.starts_with("depth ")) {
    const auto depth = static_cast<std::size_t>(std::stoul(name.substr(6)));
    const bool closed = depth < 100000;
    return std::string(depth, '[') + (closed ? std::string(depth, ']') : "");
  }
  return bytesOf(textIn(row, "hex"));
}

// Documents that the reference accepts or refuses otherwise, with why.
struct Difference {
  bool accepted;
  std::string why;
};
const std::map<std::string, Difference> kDifferences = {
    {"{\"a\":1,}", {false, "a trailing comma is no JSON, and newer versions of the platform refuse it"}},
    {"[1,]", {false, "as above"}},
    {"utf16le", {false, "files and protocols are UTF-8"}},
    {"utf16le bom", {false, "as above"}},
    {"utf16be", {false, "as above"}},
    {"null", {true, "the reader takes any value; who needs an object asks for one"}},
    {"1", {true, "as above"}},
    {"\"a\"", {true, "as above"}},
    {"true", {true, "as above"}},
};

TEST(JsonReader, AcceptsExactlyTheReferenceRowsThatThePlatformAccepts) {
  std::size_t different = 0;
  for (const JsonObject& row : goldenRows("json-reading.json")) {
    const std::string name = textIn(row, "document");
    const auto difference = kDifferences.find(name);
    const bool differs = difference != kDifferences.end();
    const auto expected = differs ? std::optional(difference->second.accepted) : booleanMember(row, "accepted");
    const auto value = parseJson(documentOf(row));
    EXPECT_EQ(value.has_value(), expected) << name;
    if (differs) {
      EXPECT_NE(difference->second.accepted, booleanMember(row, "accepted")) << name;
      ++different;
      continue;
    }
    if (!value) continue;
    EXPECT_EQ(textIn(row, "top"), value->object() != nullptr ? "object" : "array");
    if (const auto text = stringMember(row, "a string")) {
      EXPECT_EQ(stringMember(*value->object(), "a"), text);
    }
    if (const auto number = stringMember(row, "a number")) {
      const auto expectedNumber = parseJson(*number);
      ASSERT_TRUE(expectedNumber);
      EXPECT_EQ(realMember(*value->object(), "a"), expectedNumber->number()->real()) << name;
    }
  }
  EXPECT_EQ(different, kDifferences.size());
}

TEST(JsonReader, KeepsTheTextOfEveryNumber) {
  for (const char* text : {"0", "-0", "-0.0", "1", "-1", "1.0", "1e5", "1E+5", "0.10", "9223372036854775807",
                           "-9223372036854775808", "18446744073709551615", "18446744073709551616",
                           "123456789012345678901234567890", "1e-400", "3.141592653589793238462643383279"}) {
    const auto value = parseJson(text);
    ASSERT_TRUE(value) << text;
    ASSERT_NE(value->number(), nullptr) << text;
    EXPECT_EQ(value->number()->text(), text);
  }
}

TEST(JsonReader, KeepsTheTextOfNumbersUnderALocaleWithADecimalComma) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  const bool changed = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
  const auto value = parseJson("[1.5,2.25e3]");
  std::setlocale(LC_NUMERIC, before.c_str());
  ASSERT_TRUE(value);
  EXPECT_EQ(writeJson(*value), "[1.5,2.25e3]");
  if (!changed) GTEST_SKIP() << "this machine has no locale de_DE.UTF-8";
}

TEST(JsonReader, RefusesNumbersThatNoDoubleCanHold) {
  EXPECT_TRUE(parseJson("1e308"));
  EXPECT_FALSE(parseJson("1e309"));
  EXPECT_FALSE(parseJson("-1e400"));
}

TEST(JsonReader, LetsTheLastOfDuplicateKeysWin) {
  const auto value = parseJson(R"({"a":1,"b":2,"a":{"c":3,"c":4}})");
  ASSERT_TRUE(value);
  EXPECT_EQ(writeJson(*value), R"({"a":{"c":4},"b":2})");
}

TEST(JsonReader, ReadsAnObjectOfManyKeysInReasonableTime) {
  // Pairwise comparison of these keys would take minutes.
  std::string text = "{";
  for (int index = 0; index < 200000; ++index) text += "\"k" + std::to_string(index % 150000) + "\":1,";
  text.back() = '}';
  const auto value = parseJson(text);
  ASSERT_TRUE(value);
  EXPECT_EQ(value->object()->size(), 150000U);
}

TEST(JsonReader, AcceptsOneByteOrderMarkAtTheStartOnly) {
  EXPECT_TRUE(parseJson("\xEF\xBB\xBF{}"));
  EXPECT_FALSE(parseJson("\xEF\xBB\xBF\xEF\xBB\xBF{}"));
  EXPECT_FALSE(parseJson("{}\xEF\xBB\xBF"));
  EXPECT_FALSE(parseJson("\xEF\xBB{}"));
  EXPECT_FALSE(parseJson("\xEF\xBB\xBF"));
}

TEST(JsonReader, RefusesANulByteAnywhereOutsideAnEscape) {
  for (const std::string& text : {std::string("{}\0", 3), std::string("{}\0junk", 7), std::string("\0{}", 3),
                                  std::string("[1\0]", 4), std::string("\"a\0b\"", 5)}) {
    EXPECT_FALSE(parseJson(text));
  }
  EXPECT_TRUE(parseJson(R"("\u0000")"));
}

TEST(JsonReader, NestsExactlyToItsDepthLimit) {
  const auto nested = [](std::size_t depth, const std::string& open, const std::string& inner, char close) {
    std::string text;
    for (std::size_t level = 0; level < depth; ++level) text += open;
    return text + inner + std::string(depth, close);
  };
  EXPECT_TRUE(parseJson(nested(kJsonDepthLimit - 1, "[", "", ']')));
  EXPECT_TRUE(parseJson(nested(kJsonDepthLimit, "[", "", ']')));
  EXPECT_FALSE(parseJson(nested(kJsonDepthLimit + 1, "[", "", ']')));
  EXPECT_TRUE(parseJson(nested(kJsonDepthLimit, "{\"a\":", "1", '}')));
  EXPECT_FALSE(parseJson(nested(kJsonDepthLimit + 1, "{\"a\":", "1", '}')));
}

TEST(JsonReader, RefusesAHundredThousandLevelsWithoutCrashing) {
  EXPECT_FALSE(parseJson(std::string(100000, '[') + std::string(100000, ']')));
  std::string objects;
  for (int level = 0; level < 100000; ++level) objects += "{\"a\":";
  EXPECT_FALSE(parseJson(objects));
}

TEST(JsonReader, ReadsExactlyToItsByteLimit) {
  const std::string atLimit = "\"" + std::string(kJsonByteLimit - 2, 'x') + "\"";
  EXPECT_TRUE(parseJson(atLimit));
  EXPECT_FALSE(parseJson(atLimit + " "));
}

TEST(JsonReader, HoldsExactlyItsLimitOfValues) {
  const auto arrayOf = [](std::size_t elements) {
    std::string text = "[";
    for (std::size_t index = 0; index < elements; ++index) text += "1,";
    text.back() = ']';
    return text;
  };
  EXPECT_TRUE(parseJson(arrayOf(kJsonNodeLimit - 1)));  // the array is a value too
  EXPECT_FALSE(parseJson(arrayOf(kJsonNodeLimit)));
}

TEST(JsonReader, RefusesEveryPrefixOfADocument) {
  const std::string text = R"({"a":[1,-2.5e3,true,false,null,"x\u00e9\ud83d\ude00é"],"b":{"c":""}})";
  ASSERT_TRUE(parseJson(text));
  for (std::size_t length = 0; length < text.size(); ++length) EXPECT_FALSE(parseJson(text.substr(0, length)));
}

TEST(JsonReader, SurvivesEveryByteChangedAndWritesBackWhatItRead) {
  const std::string text = R"({"a":[1,-2.5e3,true,"x\u00e9\ud83d\ude00é"],"b":{}})";
  std::size_t accepted = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = text;
      changed[index] = static_cast<char>(byte);
      const auto value = parseJson(changed);
      if (!value) continue;
      ++accepted;
      EXPECT_EQ(parseJson(writeJson(*value)), value);
    }
  }
  EXPECT_GT(accepted, text.size());
}

}  // namespace
}  // namespace brindle
