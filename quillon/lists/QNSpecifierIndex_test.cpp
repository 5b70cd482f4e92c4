#include "quillon/lists/internal/QNSpecifierIndex.h"

#include <gtest/gtest.h>

#include "quillon/lists/internal/QNListTesting.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

using Items = std::vector<std::shared_ptr<QNItem>>;

std::int64_t positionOf(const QNSpecifierIndex& index, const QNItemSpecifier::Ref& specifier) {
  return index.positionOf(*specifier, specifier->hash());
}

TEST(QNSpecifierIndex, FindsEachOfManyItemsAndNoOther) {
  constexpr std::size_t kItems = 5000;
  Items items;
  for (std::size_t i = 0; i < kItems; ++i) items.push_back(listedItem(std::to_string(i)));

  const QNSpecifierIndex index(items);

  for (std::size_t i = 0; i < kItems; ++i) {
    ASSERT_EQ(positionOf(index, items[i]->itemSpecifier()), static_cast<std::int64_t>(i));
    ASSERT_EQ(positionOf(index, specifierOf(std::to_string(kItems + i))), kNotFound);
  }
}

TEST(QNSpecifierIndex, FindsTheLastOfEqualSpecifiers) {
  const QNSpecifierIndex index({listedItem("a"), listedItem("b"), listedItem("a")});

  EXPECT_EQ(positionOf(index, specifierOf("a")), 2);
  EXPECT_EQ(positionOf(index, specifierOf("b")), 1);
}

TEST(QNSpecifierIndex, TellsSpecifiersOfOneHashApart) {
  const QNSpecifierIndex index({listedItem("a"), listedItem("b")});
  const auto other = specifierOf("c");

  EXPECT_EQ(index.positionOf(*other, specifierOf("a")->hash()), kNotFound);
  EXPECT_EQ(index.positionOf(*specifierOf("a"), specifierOf("a")->hash()), 0);
}

TEST(QNSpecifierIndex, TellsTheVaultsOfEqualItemsApart) {
  const QNSpecifierIndex index({listedItem("a")});

  EXPECT_EQ(positionOf(index, QNItemSpecifier::specifierWithItemUUID("a", "other")), kNotFound);
}

TEST(QNSpecifierIndex, FindsNothingAmongNoItems) {
  EXPECT_EQ(positionOf(QNSpecifierIndex({}), specifierOf("a")), kNotFound);
}

TEST(QNSpecifierIndex, PassesOverAnItemWithoutAUuid) {
  const MRCapturingSink log;
  const QNSpecifierIndex index({std::make_shared<QNItem>(initNew), listedItem("a")});

  EXPECT_EQ(positionOf(index, specifierOf("a")), 1);
}

}  // namespace
}  // namespace quillon
