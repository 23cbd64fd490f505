#include "base/uuid.h"

#include <gtest/gtest.h>

#include <set>

namespace brindle {
namespace {

TEST(UuidText, IsUpperCaseHexadecimalInFiveGroups) {
  const std::array<std::uint8_t, 16> bytes = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                              0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
  EXPECT_EQ(uuidText(bytes), "00112233-4455-6677-8899-AABBCCDDEEFF");
}

TEST(IsUuidText, HoldsForWhatIsWrittenAndNothingNearIt) {
  const std::string text = "00112233-4455-6677-8899-AABBCCDDEEFF";
  EXPECT_TRUE(isUuidText(text));
  EXPECT_TRUE(isUuidText(randomUuidText()));
  EXPECT_FALSE(isUuidText(""));
  EXPECT_FALSE(isUuidText(text + "0"));
  EXPECT_FALSE(isUuidText(text.substr(1)));
  for (std::size_t index = 0; index < text.size(); ++index) {
    for (const char wrong : {text[index] == '-' ? '0' : '-', 'G', 'a', '/', ':', '@', '\0'}) {
      std::string changed = text;
      changed[index] = wrong;
      EXPECT_FALSE(isUuidText(changed)) << changed;
    }
  }
}

TEST(RandomUuidText, IsOfVersion4AndItsVariant) {
  for (int round = 0; round < 200; ++round) {
    const std::string text = randomUuidText();
    ASSERT_EQ(text.size(), 36U);
    EXPECT_EQ(text[14], '4');
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
  }
}

TEST(RandomUuidText, DiffersEachTime) {
  std::set<std::string> seen;
  for (int round = 0; round < 1000; ++round) seen.insert(randomUuidText());
  EXPECT_EQ(seen.size(), 1000U);
}

}  // namespace
}  // namespace brindle
