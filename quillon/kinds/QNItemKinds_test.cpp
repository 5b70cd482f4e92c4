// What the thin kinds of items have in common: a class name, and a category where it is fixed.

#include <gtest/gtest.h>

#include "quillon/kinds/QNCreditCard.h"
#include "quillon/kinds/QNCryptoWallet.h"
#include "quillon/kinds/QNIdentity.h"
#include "quillon/kinds/QNMedicalRecord.h"
#include "quillon/kinds/QNSecureNote.h"
#include "quillon/kinds/QNTemplateItem.h"
#include "quillon/kinds/QNUnknownItem.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

template <class Item>
struct Expected;
template <>
struct Expected<QNCreditCard> {
  static constexpr const char *name = "QNCreditCard", *category = "002";
};
template <>
struct Expected<QNSecureNote> {
  static constexpr const char *name = "QNSecureNote", *category = "003";
};
template <>
struct Expected<QNIdentity> {
  static constexpr const char *name = "QNIdentity", *category = "004";
};
template <>
struct Expected<QNMedicalRecord> {
  static constexpr const char *name = "QNMedicalRecord", *category = "113";
};
template <>
struct Expected<QNCryptoWallet> {
  static constexpr const char *name = "QNCryptoWallet", *category = "115";
};

template <class Item>
class FixedKind : public testing::Test {};
using FixedKinds =
    testing::Types<QNCreditCard, QNSecureNote, QNIdentity, QNMedicalRecord, QNCryptoWallet>;
TYPED_TEST_SUITE(FixedKind, FixedKinds);

TYPED_TEST(FixedKind, HasItsCategoryFromItsCreation) {
  const auto item = std::make_shared<TypeParam>(initNew);

  EXPECT_EQ(item->className(), Expected<TypeParam>::name);
  EXPECT_EQ(item->categoryUUID(), Expected<TypeParam>::category);
  EXPECT_FALSE(item->hasOid());
}

TYPED_TEST(FixedKind, HasItsCategoryAsAShell) {
  const auto item = std::make_shared<TypeParam>(QNExisting{21});

  EXPECT_EQ(item->className(), Expected<TypeParam>::name);
  EXPECT_EQ(item->categoryUUID(), Expected<TypeParam>::category);
  EXPECT_EQ(item->oid(), 21u);
  EXPECT_FALSE(item->detailsLoaded());
}

TYPED_TEST(FixedKind, IsNoTombstone) {
  const auto item = std::make_shared<TypeParam>(initNew);

  EXPECT_FALSE(item->isTombstone());
  EXPECT_FALSE(item->trashed());
}

TEST(QNTemplateItem, TakesTheCategoryOfItsTemplate) {
  const auto item = std::make_shared<QNTemplateItem>(initNew, QNTemplate("107"));

  EXPECT_EQ(item->className(), "QNTemplateItem");
  EXPECT_EQ(item->categoryUUID(), "107");
}

TEST(QNTemplateItem, HasNoCategoryAsAShell) {
  const auto item = std::make_shared<QNTemplateItem>(QNExisting{21});

  EXPECT_EQ(item->categoryUUID(), std::nullopt);
  EXPECT_EQ(item->oid(), 21u);
}

TEST(QNUnknownItem, KeepsTheCategoryThatItIsGiven) {
  const auto item = std::make_shared<QNUnknownItem>(initNew);
  ASSERT_EQ(item->categoryUUID(), std::nullopt);

  item->setCategoryUUID("777");

  EXPECT_EQ(item->className(), "QNUnknownItem");
  EXPECT_EQ(item->categoryUUID(), "777");
}

TEST(QNUnknownItem, IsAShellWithItsRow) {
  const auto item = std::make_shared<QNUnknownItem>(QNExisting{21});

  EXPECT_EQ(item->oid(), 21u);
  EXPECT_FALSE(item->detailsLoaded());
}

}  // namespace
}  // namespace quillon
