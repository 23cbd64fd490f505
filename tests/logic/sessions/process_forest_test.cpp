#include "logic/sessions/process_forest.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Index = ProcessForest::Index;
using Links = std::vector<ProcessForest::Link>;

std::vector<Index> below(const ProcessForest& forest, Index root) {
  std::vector<std::uint32_t> seen(forest.size(), 0);
  std::vector<Index> found;
  seen[root] = 1;
  forest.appendDescendants(root, 1, seen, found);
  return found;
}

TEST(ProcessForest, ListsChildrenInListOrder) {
  const ProcessForest forest(Links{{30, 10}, {10, 1}, {20, 10}, {40, 20}});
  EXPECT_THAT(forest.childrenOf(1), ElementsAre(0, 2));
  EXPECT_THAT(forest.childrenOf(2), ElementsAre(3));
  EXPECT_THAT(forest.childrenOf(0), IsEmpty());
}

TEST(ProcessForest, FindsParentsOnlyInTheList) {
  const ProcessForest forest(Links{{10, 1}, {20, 10}, {30, 30}});
  EXPECT_EQ(forest.parentOf(0), std::nullopt);
  EXPECT_EQ(forest.parentOf(1), 0U);
  EXPECT_EQ(forest.parentOf(2), 2U);
  EXPECT_EQ(forest.find(99), std::nullopt);
}

TEST(ProcessForest, IgnoresLaterEntriesWithOnePid) {
  const ProcessForest forest(Links{{10, 1}, {20, 10}, {20, 30}, {30, 1}});
  EXPECT_EQ(forest.find(20), 1U);
  EXPECT_TRUE(forest.exists(1));
  EXPECT_FALSE(forest.exists(2));
  EXPECT_THAT(forest.childrenOf(3), IsEmpty());
}

TEST(ProcessForest, WalksBreadthFirst) {
  const ProcessForest forest(Links{{1, 0}, {2, 1}, {4, 2}, {3, 1}, {5, 3}, {6, 4}});
  EXPECT_THAT(below(forest, 0), ElementsAre(1, 3, 2, 4, 5));
}

TEST(ProcessForest, FollowsACycleOnce) {
  const ProcessForest forest(Links{{10, 30}, {20, 10}, {30, 20}, {40, 40}});
  EXPECT_THAT(below(forest, 0), ElementsAre(1, 2));
  EXPECT_THAT(below(forest, 3), IsEmpty());
}

TEST(ProcessForest, LeavesOutWhatIsMarkedWithAllBelowIt) {
  const ProcessForest forest(Links{{1, 0}, {2, 1}, {3, 2}, {4, 1}});
  std::vector<std::uint32_t> seen = {0, 7, 0, 0};
  std::vector<Index> found = {0};
  forest.appendDescendants(0, 7, seen, found);
  EXPECT_THAT(found, ElementsAre(0, 3));
}

TEST(ProcessForest, MayBeEmpty) {
  const ProcessForest forest(Links{});
  EXPECT_EQ(forest.size(), 0U);
  EXPECT_EQ(forest.find(1), std::nullopt);
}

}  // namespace
}  // namespace brindle
