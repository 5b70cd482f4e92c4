// What the kinds of items have in common: a class name, a category where it is fixed, and what a
// new one starts with.

#include <gmock/gmock.h>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/kinds/QNCreditCard.h"
#include "quillon/kinds/QNCryptoWallet.h"
#include "quillon/kinds/QNIdentity.h"
#include "quillon/kinds/QNMedicalRecord.h"
#include "quillon/kinds/QNSecureNote.h"
#include "quillon/kinds/QNTemplateItem.h"
#include "quillon/kinds/QNUnknownItem.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;

constexpr std::string_view kOther =
    R"({"uuid":"107","contents":[{"set":"s","title":"S","fields":[{"type":"string","name":"n"}]}]})";

template <class Item>
struct Expected;
template <>
struct Expected<QNCreditCard> {
  static constexpr const char *name = "QNCreditCard", *category = "002";
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
class TemplateKind : public testing::Test {};
using TemplateKinds = testing::Types<QNCreditCard, QNIdentity, QNMedicalRecord, QNCryptoWallet>;
TYPED_TEST_SUITE(TemplateKind, TemplateKinds);

TYPED_TEST(TemplateKind, KeepsItsCategoryAndTakesTheSectionsOfAnyTemplate) {
  const auto item = TypeParam::initNewWithTemplate(templateOf(kOther));

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->className(), Expected<TypeParam>::name);
  EXPECT_EQ(item->categoryUUID(), Expected<TypeParam>::category);
  EXPECT_FALSE(item->hasOid());
  ASSERT_EQ(item->numberOfFieldSections(), 1u);
  EXPECT_NE(item->findFieldWithIdentifier("n"), nullptr);
}

TYPED_TEST(TemplateKind, IsAShellWithItsRow) {
  const auto item = std::make_shared<TypeParam>(QNExisting{21});

  EXPECT_EQ(item->className(), Expected<TypeParam>::name);
  EXPECT_EQ(item->oid(), 21u);
  EXPECT_FALSE(item->detailsLoaded());
  EXPECT_FALSE(item->isTombstone());
}

TEST(QNCreditCard, AndIdentitiesHaveTheirCategoryAsShells) {
  EXPECT_EQ(QNCreditCard(QNExisting{21}).categoryUUID(), "002");
  EXPECT_EQ(QNIdentity(QNExisting{21}).categoryUUID(), "004");
}

TEST(QNCryptoWallet, AndMedicalRecordsLeaveTheCategoryOfShellsToTheirRow) {
  EXPECT_EQ(QNCryptoWallet(QNExisting{21}).categoryUUID(), std::nullopt);
  EXPECT_EQ(QNMedicalRecord(QNExisting{21}).categoryUUID(), std::nullopt);
}

TEST(QNCryptoWallet, AndMedicalRecordsWithoutATemplateHaveNoSectionsAndSayNothing) {
  const MRCapturingSink sink;

  const auto wallet = QNCryptoWallet::initNewWithTemplate(nullptr);
  const auto record = QNMedicalRecord::initNewWithTemplate(nullptr);

  EXPECT_EQ(wallet->categoryUUID(), "115");
  EXPECT_EQ(wallet->numberOfFieldSections(), 0u);
  EXPECT_EQ(record->categoryUUID(), "113");
  EXPECT_EQ(record->numberOfFieldSections(), 0u);
  EXPECT_TRUE(sink.records().empty());
}

// There is no plain way to make one: it doesn't compile.
static_assert(!std::is_constructible_v<QNCryptoWallet, QNNew>);
static_assert(!std::is_constructible_v<QNMedicalRecord, QNNew>);
static_assert(!std::is_constructible_v<QNTemplateItem, QNNew>);

TEST(QNCreditCard, AndIdentitiesWithoutATemplateAreNotMadeAndReported) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNCreditCard::initNewWithTemplate(nullptr), nullptr);
  EXPECT_EQ(QNIdentity::initNewWithTemplate(nullptr), nullptr);

  EXPECT_THAT(sink.texts(MRLogKind::assertion), ElementsAre("Failed to obtain Credit Card template",
                                                            "Failed to obtain Identity template"));
}

TEST(QNCreditCard, AndIdentitiesComeFromTheSharedTemplates) {
  const QNScopedTemplates templates{
      R"({"uuid":"002","contents":[{"set":"c","fields":[{"type":"string","name":"ccnum"}]}]})",
      R"({"uuid":"004","contents":[{"set":"i","fields":[{"type":"string","name":"firstname"}]}]})"};

  EXPECT_NE(QNCreditCard::initNewCard()->findFieldWithIdentifier("ccnum"), nullptr);
  EXPECT_NE(QNIdentity::initNewIdentity()->findFieldWithIdentifier("firstname"), nullptr);
}

TEST(QNCreditCard, AndIdentitiesAreNotMadeWithoutSharedTemplates) {
  const QNScopedTemplates none;
  const MRCapturingSink sink;

  EXPECT_EQ(QNCreditCard::initNewCard(), nullptr);
  EXPECT_EQ(QNIdentity::initNewIdentity(), nullptr);

  EXPECT_EQ(sink.texts(MRLogKind::assertion).size(), 2u);
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
