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
