#include "inventory/toml_table.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

std::string nested(int depth) { return "a = " + std::string(depth, '[') + std::string(depth, ']'); }

TEST(TomlTable, IsReadOrNone) {
  const auto table = parseToml("name = \"shop\"\n[package]\nversion = 2\n");
  ASSERT_TRUE(table);
  EXPECT_EQ(table->at_path("name").value<std::string>(), "shop");
  EXPECT_EQ(table->at_path("package.version").value<int>(), 2);
  EXPECT_TRUE(parseToml(""));
  for (const char* text : {"name", "name = ", "= 1", "a = 1\na = 2", "\xff = 1", "{}"})
    EXPECT_FALSE(parseToml(text)) << text;
}

TEST(TomlTable, NestsUpToItsLimitAndNoDeeper) {
  EXPECT_TRUE(parseToml(nested(kTomlDepthLimit)));
  EXPECT_FALSE(parseToml(nested(kTomlDepthLimit + 1)));
  EXPECT_FALSE(parseToml(nested(1'000'000)));
}

}  // namespace
}  // namespace brindle
