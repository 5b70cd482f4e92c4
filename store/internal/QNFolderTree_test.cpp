#include "store/internal/QNFolderTree.h"

#include <gmock/gmock.h>

#include <random>

namespace quillon {
namespace {

using ::testing::ElementsAre;
using Parents = std::vector<std::optional<std::size_t>>;
constexpr std::size_t kManyLevels = 1000;

TEST(QNFolderTree, HangsEachUnderItsParentWhateverTheirOrder) {
  const std::vector<QNFolderPlace> places = {
      {"child", "parent"}, {"parent", std::nullopt}, {"grandchild", "child"}};

  const QNFolderTree tree = folderTree(places, kManyLevels);

  EXPECT_EQ(tree.parents, (Parents{1, std::nullopt, 0}));
  EXPECT_THAT(tree.misplaced, ElementsAre(false, false, false));
}

TEST(QNFolderTree, PutsAnOrphanAtTheTopWithWhatHangsUnderIt) {
  const std::vector<QNFolderPlace> places = {{"orphan", "nobody"}, {"child", "orphan"}};

  const QNFolderTree tree = folderTree(places, kManyLevels);

  EXPECT_EQ(tree.parents, (Parents{std::nullopt, 0}));
  EXPECT_THAT(tree.misplaced, ElementsAre(true, false));
}

TEST(QNFolderTree, PutsAllOfACircleAtTheTopAndLeavesWhatHangsUnderIt) {
  const std::vector<QNFolderPlace> places = {
      {"below", "a"}, {"a", "b"}, {"b", "c"}, {"c", "a"}, {"self", "self"}};

  const QNFolderTree tree = folderTree(places, kManyLevels);

  EXPECT_EQ(tree.parents, (Parents{1, std::nullopt, std::nullopt, std::nullopt, std::nullopt}));
  EXPECT_THAT(tree.misplaced, ElementsAre(false, true, true, true, true));
}

TEST(QNFolderTree, OfTwoOfOneNameTheFirstHoldsTheOthers) {
  const std::vector<QNFolderPlace> places = {
      {"twin", std::nullopt}, {"twin", "twin"}, {"child", "twin"}};

  EXPECT_EQ(folderTree(places, kManyLevels).parents, (Parents{std::nullopt, 0, 0}));
}

TEST(QNFolderTree, BeginsAnewBelowTheLastLevel) {
  std::vector<QNFolderPlace> places = {{"0", std::nullopt}};
  for (int i = 1; i < 8; ++i) places.push_back({std::to_string(i), std::to_string(i - 1)});

  const QNFolderTree tree = folderTree(places, 3);

  EXPECT_EQ(tree.parents, (Parents{std::nullopt, 0, 1, std::nullopt, 3, 4, std::nullopt, 6}));
  EXPECT_THAT(tree.misplaced, ElementsAre(false, false, false, true, false, false, true, false));
}

TEST(QNFolderTree, SettlesAMillionLevelsWithoutAStackOfThem) {
  constexpr std::size_t kCount = 1'000'000;
  std::vector<QNFolderPlace> places;
  for (std::size_t i = 0; i < kCount; ++i) {
    places.push_back({std::to_string(i), std::to_string(i + 1)});
  }

  const QNFolderTree tree = folderTree(places, kCount);

  EXPECT_EQ(tree.parents[0], 1u);
  EXPECT_EQ(tree.parents[kCount - 1], std::nullopt);
  EXPECT_TRUE(tree.misplaced[kCount - 1]);
}

/// The same by going up from each folder: back at itself, it lies in a circle.
QNFolderTree naiveTree(const std::vector<std::size_t>& parentOf, std::size_t none) {
  const std::size_t count = parentOf.size();
  QNFolderTree tree;
  for (std::size_t i = 0; i < count; ++i) {
    bool isInCircle = false;
    std::size_t at = i;
    for (std::size_t steps = 0; steps < count && at < count && !isInCircle; ++steps) {
      at = parentOf[at];
      isInCircle = at == i;
    }
    const bool isOrphan = parentOf[i] > none;
    const bool isTop = isInCircle || parentOf[i] >= none;
    tree.parents.push_back(isTop ? std::nullopt : std::optional(parentOf[i]));
    tree.misplaced.push_back(isInCircle || isOrphan);
  }
  return tree;
}

TEST(QNFolderTree, AgreesWithANaiveOneOnRandomGraphs) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    const std::size_t count = 1 + random() % 12;
    std::vector<std::size_t> parentOf;  // `count`: none; more: one that isn't there
    std::vector<QNFolderPlace> places;
    for (std::size_t i = 0; i < count; ++i) {
      parentOf.push_back(random() % (count + 2));
      const bool hasParent = parentOf[i] != count;
      places.push_back({std::to_string(i),
                        hasParent ? std::optional(std::to_string(parentOf[i])) : std::nullopt});
    }

    const QNFolderTree tree = folderTree(places, kManyLevels);

    const QNFolderTree expected = naiveTree(parentOf, count);
    ASSERT_EQ(tree.parents, expected.parents) << round;
    ASSERT_EQ(tree.misplaced, expected.misplaced) << round;
  }
}

}  // namespace
}  // namespace quillon
