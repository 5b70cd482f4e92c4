#include "quillon/kinds/QNTemplateItem.h"

#include <gmock/gmock.h>

#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

constexpr std::string_view kBank =
    R"({"uuid":"101","subtitle":"bank","contents":[{"set":"s","title":"S","fields":)"
    R"([{"type":"string","name":"bank"},{"type":"string","name":"owner"}]}]})";

TEST(QNTemplateItem, TakesTheCategoryAndTheSectionsOfItsTemplate) {
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(kBank));

  EXPECT_EQ(item->className(), "QNTemplateItem");
  EXPECT_EQ(item->categoryUUID(), "101");
  EXPECT_EQ(item->numberOfFieldSections(), 1u);
  EXPECT_NE(item->findFieldWithIdentifier("owner"), nullptr);
}

TEST(QNTemplateItem, OfNoTemplateIsNotMade) {
  EXPECT_EQ(QNTemplateItem::initNewWithTemplate(nullptr), nullptr);
}

TEST(QNTemplateItem, OfATemplateWithoutContentsHasNoSections) {
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(R"({"uuid":"101"})"));

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->numberOfFieldSections(), 0u);
}

std::optional<std::string> subtitleWithBank(std::optional<std::string_view> bank) {
  const QNScopedTemplates templates{kBank};
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(kBank));
  item->setProfile(localVault());
  item->setStringFieldValue(bank, "bank");
  return item->_additionalInformation();
}

TEST(QNTemplateItem, ShowsTheFieldThatItsTemplateNames) {
  EXPECT_EQ(subtitleWithBank("First Bank"), "First Bank");
  EXPECT_EQ(subtitleWithBank(""), "");
}

TEST(QNTemplateItem, ShowsTheFirstLineOfEightyCharacters) {
  EXPECT_EQ(subtitleWithBank("ab\ncd"), "ab");
  EXPECT_EQ(subtitleWithBank(std::string(80, 'x')), std::string(80, 'x'));
  EXPECT_EQ(subtitleWithBank(std::string(100, 'x')), std::string(80, 'x'));
}

TEST(QNTemplateItem, WithoutAValueShowsWhatTheBaseDoes) {
  const QNScopedTemplates templates{kBank};
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(kBank));
  item->setProfile(localVault());
  item->setAdditionalInformation("from before");

  EXPECT_EQ(item->_additionalInformation(), "from before");
}

TEST(QNTemplateItem, OfATemplateThatNamesNoFieldShowsNothing) {
  const QNScopedTemplates templates{R"({"uuid":"101"})"};
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(kBank));
  item->setProfile(localVault());
  item->setAdditionalInformation("from before");
  item->setStringFieldValue("First Bank", "bank");

  EXPECT_EQ(item->_additionalInformation(), "");
}

TEST(QNTemplateItem, OfAnAccountAsksItsVaultFirstAndThenTheSharedTemplates) {
  const QNScopedTemplates templates{kBank};  // the double's vault has none
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(kBank));
  item->setProfile(accountVault());
  item->setStringFieldValue("First Bank", "bank");

  EXPECT_EQ(item->_additionalInformation(), "First Bank");
}

TEST(QNTemplateItem, OfAnAccountGoesByTheTemplateOfItsVault) {
  const QNScopedTemplates templates{kBank};
  const auto vault = accountVault();
  vault->setTemplate(templateOf(R"({"uuid":"101","subtitle":"owner"})"));
  const auto item = QNTemplateItem::initNewWithTemplate(templateOf(kBank));
  item->setProfile(vault);
  item->setStringFieldValue("First Bank", "bank");
  item->setStringFieldValue("Ann", "owner");

  EXPECT_EQ(item->_additionalInformation(), "Ann");
}

TEST(QNTemplateItem, OnlyALicenseShowsItsIconWithoutAnOverlay) {
  const auto license =
      QNTemplateItem::initNewWithTemplate(templateOf(R"({"uuid":"100","contents":[]})"));
  const auto bank = QNTemplateItem::initNewWithTemplate(templateOf(kBank));

  EXPECT_TRUE(license->isSoftwareLicense());
  EXPECT_FALSE(static_cast<const QNItem&>(*license).useOverlayInCustomIcon());
  EXPECT_FALSE(bank->isSoftwareLicense());
  EXPECT_TRUE(bank->useOverlayInCustomIcon());
}

TEST(QNTemplateItem, KeepsItsFieldsOverASave) {
  const auto vault = localVault();
  const auto row = QNTemplateItem::initNewWithTemplate(templateOf(kBank));
  row->setProfile(vault);
  row->setStringFieldValue("First Bank", "bank");
  save(*row);

  const auto read = opened(*row, vault);

  ASSERT_NE(read->findFieldWithIdentifier("bank"), nullptr);
  EXPECT_TRUE(read->findFieldWithIdentifier("bank")->stringValue()->equals("First Bank"));
  EXPECT_FALSE(read->findFieldWithIdentifier("owner")->stringValue());
}

}  // namespace
}  // namespace quillon
