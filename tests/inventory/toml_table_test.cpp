#include "inventory/toml_table.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

std::string nested(std::size_t depth) { return "a = " + std::string(depth, '[') + std::string(depth, ']'); }

TEST(TomlTable, IsReadOrNone) {
  const auto table = parseToml("name = \"shop\"\n[package]\nversion = 2\n");
  ASSERT_TRUE(table);
  EXPECT_EQ(tomlText(table->get("name")), "shop");
  EXPECT_EQ(tomlText(table->get("package")), std::nullopt);
  EXPECT_EQ(tomlText(table->get("none")), std::nullopt);
  EXPECT_EQ(table->at_path("package.version").value<int>(), 2);
  EXPECT_TRUE(parseToml(""));
  for (const char* text : {"name", "name = ", "= 1", "a = 1\na = 2", "\xff = 1", "{}"})
    EXPECT_FALSE(parseToml(text)) << text;
}

TEST(TomlTable, TextsOfAnyScriptComeBackAsTheyAre) {
  const std::string text = "\xC3\xA9 \xD0\xB6 \xE6\x97\xA5 \xEF\xBA\xBF \xC2\xA0 \xF0\x9F\x98\x80";
  for (const std::string quote : {"\"", "'", "\"\"\"", "'''"}) {
    const auto table = parseToml("\xEF\xBB\xBF# " + text + "\na = " + quote + text + quote + " # " + text + "\n");
    ASSERT_TRUE(table) << quote;
    EXPECT_EQ(tomlText(table->get("a")), text) << quote;
  }
  EXPECT_EQ(tomlText(parseToml("a = \"\\u00e9\"")->get("a")), "\xC3\xA9");
  // Behind a line end that is escaped, where the parser looks for blanks.
  EXPECT_EQ(tomlText(parseToml("a = \"\"\"x\\\n  \xC3\xA9\"\"\"")->get("a")), "x\xC3\xA9");
}

TEST(TomlTable, CharactersOfAnyScriptOutsideOfTextsAreNoToml) {
  for (const std::string each : {"\xC3\xA9", "\xEF\xBA\xBF", "\xE3\x80\x81", "\xC2\xA0", "\xE3\x80\x80"}) {
    for (const std::string& text : {each, each + "a = 1", "a = 1 " + each, "a = [1" + each + "]", "a" + each + "= 1"}) {
      EXPECT_FALSE(parseToml(text)) << text;
    }
  }
}

TEST(TomlTable, NestsUpToItsLimitAndNoDeeper) {
  EXPECT_TRUE(parseToml(nested(kTomlDepthLimit)));
  EXPECT_FALSE(parseToml(nested(kTomlDepthLimit + 1)));
  EXPECT_FALSE(parseToml(nested(1'000'000)));
}

}  // namespace
}  // namespace brindle
