#include "quillon/lists/QNItemListSection.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/lists/internal/QNListTesting.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Items = QNItemListSection::Items;

TEST(QNItemListSection, KeepsACopyOfItsItems) {
  const auto a = listedItem("a");
  const auto b = listedItem("b");
  Items items{a, nullptr, b};

  const QNItemListSection section(items, "A");
  items.clear();

  EXPECT_EQ(section.sectionName(), "A");
  EXPECT_EQ(section.numberOfItems(), 2u);
  EXPECT_THAT(section.items(), ElementsAre(a, b));
}

TEST(QNItemListSection, GivesNoItemBeyondTheLast) {
  const auto a = listedItem("a");
  const QNItemListSection section({a}, "A");

  EXPECT_EQ(section.itemAtIndex(0), a);
  EXPECT_EQ(section.itemAtIndex(1), nullptr);
  EXPECT_EQ(section.itemAtIndex(std::numeric_limits<std::size_t>::max()), nullptr);
}

TEST(QNItemListSection, FindsAnItemBySpecifier) {
  const QNItemListSection section({listedItem("a"), listedItem("b")}, "A");

  EXPECT_EQ(section.indexOfItemWithSpecifier(specifierOf("b")), 1);
  EXPECT_EQ(section.indexOfItemWithSpecifier(specifierOf("c")), 9223372036854775807);
  EXPECT_EQ(section.indexOfItemWithSpecifier(nullptr), kNotFound);
}

TEST(QNItemListSection, FindsTheLastOfEqualItems) {
  const QNItemListSection section({listedItem("a"), listedItem("b"), listedItem("a")}, "A");

  EXPECT_EQ(section.indexOfItemWithSpecifier(specifierOf("a")), 2);
}

TEST(QNItemListSection, FindsWhatWasAddedAfterAQuestion) {
  QNItemListSection section({listedItem("a")}, "A");
  ASSERT_EQ(section.indexOfItemWithSpecifier(specifierOf("b")), kNotFound);

  section.addItem(listedItem("b"));

  EXPECT_EQ(section.indexOfItemWithSpecifier(specifierOf("b")), 1);
}

TEST(QNItemListSection, FindsItemsAtTheirNewPlacesAfterARemoval) {
  QNItemListSection section({listedItem("a"), listedItem("b")}, "A");
  ASSERT_EQ(section.indexOfItemWithSpecifier(specifierOf("b")), 1);

  section.removeItemAtIndex(0);

  EXPECT_EQ(section.indexOfItemWithSpecifier(specifierOf("b")), 0);
  EXPECT_EQ(section.indexOfItemWithSpecifier(specifierOf("a")), kNotFound);
}

TEST(QNItemListSection, AddsAnItemAgainUnlessAskedForUniqueOnes) {
  const auto a = listedItem("a");
  const auto equal = listedItem("a");
  QNItemListSection section({a}, "A");

  section.addUniqueItem(equal);
  EXPECT_THAT(section.items(), ElementsAre(a));
  section.addItem(equal);
  EXPECT_THAT(section.items(), ElementsAre(a, equal));
}

TEST(QNItemListSection, AddsNothingForNull) {
  QNItemListSection section({}, "A");

  section.addItem(nullptr);
  section.addUniqueItem(nullptr);

  EXPECT_THAT(section.items(), IsEmpty());
}

TEST(QNItemListSection, AddsEveryItemThatHasNoSpecifier) {
  const MRCapturingSink log;
  QNItemListSection section({}, "A");

  section.addUniqueItem(std::make_shared<QNItem>(initNew));
  section.addUniqueItem(std::make_shared<QNItem>(initNew));

  EXPECT_EQ(section.numberOfItems(), 2u);
}

TEST(QNItemListSection, IsCopiedWithItsNameAndOrder) {
  const auto a = listedItem("a");
  QNItemListSection section({a}, "A");

  const auto copy = section.mutableCopy();
  section.addItem(listedItem("b"));

  EXPECT_EQ(copy->sectionName(), "A");
  EXPECT_THAT(copy->items(), ElementsAre(a));
}

TEST(QNItemListSection, DescribesItself) {
  const QNItemListSection section({listedItem("a"), listedItem("b")}, "A");

  EXPECT_EQ(section.description(),
            fmt::format("<QNItemListSection {} (A): 2 items>", fmt::ptr(&section)));
}

TEST(QNItemListSectionDeathTest, EndsTheProcessForARemovalBeyondTheLast) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  QNItemListSection section({listedItem("a")}, "A");

  EXPECT_DEATH(section.removeItemAtIndex(1), "index 1 beyond the last of 1");
}

}  // namespace
}  // namespace quillon
