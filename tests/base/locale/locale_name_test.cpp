#include "base/locale/locale_name.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(LocaleName, DropsTheEncodingAndTheModifier) {
  EXPECT_EQ(localeName("de_DE.UTF-8"), "de_DE");
  EXPECT_EQ(localeName("de_DE@euro"), "de_DE");
  EXPECT_EQ(localeName("ca_ES.UTF-8@valencia"), "ca_ES");
  EXPECT_EQ(localeName("sv"), "sv");
}

TEST(LocaleName, IsNeutralForTheProgrammersLocales) {
  EXPECT_EQ(localeName("C"), "en_US_POSIX");
  EXPECT_EQ(localeName("POSIX"), "en_US_POSIX");
  EXPECT_EQ(localeName("C.UTF-8"), "en_US_POSIX");
  EXPECT_EQ(localeName(""), "en_US_POSIX");
  EXPECT_EQ(localeName(".UTF-8"), "en_US_POSIX");
}

TEST(LocaleName, IsNeutralForCharactersThatNoNameHas) {
  EXPECT_EQ(localeName("de/../DE"), "en_US_POSIX");
  EXPECT_EQ(localeName("d\xC3\xA9"), "en_US_POSIX");
  EXPECT_EQ(localeName("Cx"), "Cx");
}

}  // namespace
}  // namespace brindle
