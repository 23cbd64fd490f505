#include "logic/widget/menu_bar_insertion.h"

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MenuBarInsertionTest : public testing::Test {
 protected:
  MenuBarInsertion::Store store() {
    return [this](bool shown) { stored_.push_back(shown); };
  }
  std::vector<bool> stored_;
};

TEST_F(MenuBarInsertionTest, StoresAChangeOnceAndSaysSo) {
  MenuBarInsertion insertion(false, store());
  EXPECT_TRUE(insertion.setShown(true));
  EXPECT_TRUE(insertion.shown());
  EXPECT_FALSE(insertion.setShown(true));
  EXPECT_THAT(stored_, ElementsAre(true));
}

TEST_F(MenuBarInsertionTest, NeverStoresTheValueItAlreadyHolds) {
  MenuBarInsertion insertion(true, store());
  for (int repeat = 0; repeat < 3; ++repeat) EXPECT_FALSE(insertion.setShown(true));
  EXPECT_TRUE(insertion.shown());
  EXPECT_THAT(stored_, IsEmpty());
}

TEST_F(MenuBarInsertionTest, StoresEachChangeInTurn) {
  MenuBarInsertion insertion(true, store());
  EXPECT_TRUE(insertion.setShown(false));
  EXPECT_TRUE(insertion.setShown(true));
  EXPECT_THAT(stored_, ElementsAre(false, true));
}

TEST_F(MenuBarInsertionTest, StoresNothingWhenMade) {
  const MenuBarInsertion shown(true, store());
  const MenuBarInsertion hidden(false, store());
  EXPECT_TRUE(shown.shown());
  EXPECT_FALSE(hidden.shown());
  EXPECT_THAT(stored_, IsEmpty());
}

TEST_F(MenuBarInsertionTest, HoldsTheNewValueWhileItIsStored) {
  std::unique_ptr<MenuBarInsertion> insertion;
  bool seen = false;
  insertion = std::make_unique<MenuBarInsertion>(false, [&](bool) { seen = insertion->shown(); });
  EXPECT_TRUE(insertion->setShown(true));
  EXPECT_TRUE(seen);
}

TEST_F(MenuBarInsertionTest, ReleasesItsStoreWithItself) {
  const auto owned = std::make_shared<int>(0);
  {
    const MenuBarInsertion insertion(false, [owned](bool) {});
    EXPECT_EQ(owned.use_count(), 2);
  }
  EXPECT_EQ(owned.use_count(), 1);
}

TEST_F(MenuBarInsertionTest, ChangesWithoutAStoreToo) {
  MenuBarInsertion insertion(false, nullptr);
  EXPECT_TRUE(insertion.setShown(true));
}

}  // namespace
}  // namespace brindle
