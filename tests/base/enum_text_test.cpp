#include "base/enum_text.h"

#include <gtest/gtest.h>

namespace brindle {

enum class Fruit { apple, quince };

template <>
inline constexpr auto kEnumTexts<Fruit> = std::to_array<EnumText<Fruit>>({{Fruit::apple, "apple"},
                                                                          {Fruit::quince, "the quince"}});

namespace {

TEST(EnumText, GivesEveryCaseItsTextAndBack) {
  std::size_t cases = 0;
  for (const auto& row : allCases<Fruit>()) {
    EXPECT_EQ(textOf(row.value), row.text);
    EXPECT_EQ(enumFrom<Fruit>(row.text), row.value);
    ++cases;
  }
  EXPECT_EQ(cases, 2U);
}

TEST(EnumText, KnowsNoTextThatDiffersInOneByte) {
  EXPECT_FALSE(enumFrom<Fruit>("Apple"));
  EXPECT_FALSE(enumFrom<Fruit>("appl"));
  EXPECT_FALSE(enumFrom<Fruit>("apple "));
  EXPECT_FALSE(enumFrom<Fruit>(""));
}

TEST(EnumText, HasNoTextForAValueThatIsNoCase) { EXPECT_EQ(textOf(static_cast<Fruit>(7)), ""); }

}  // namespace
}  // namespace brindle
