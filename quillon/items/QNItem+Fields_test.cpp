#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

using testing::ElementsAre;

constexpr std::string_view kFields =
    R"([{"name":"s1","fields":[{"k":"string","n":"1","t":"one","v":"x"},)"
    R"({"k":"concealed","n":"TOTP_1","v":"u"},{"k":"concealed","n":"password","v":""}]},)"
    R"({"name":"s2","fields":[{"k":"string","n":"1","t":"two","v":"y"},)"
    R"({"k":"concealed","n":"pin","v":"1234"},{"k":"address","n":"address","v":{"city":"c"}},)"
    R"({"k":"reference","n":"r1","v":"i"},{"k":"reference","n":"r2","v":"i"}]}])";

/// An item of no class of its own, whose password is that of its sections.
class QNBareItem final : public QNItem {
 public:
  using QNItem::QNItem;
};

std::shared_ptr<QNBareItem> itemWith(std::string_view sections) {
  auto item = std::make_shared<QNBareItem>(initNew);
  item->setProfile(localVault());
  item->setDetailsObject(jsonValue(sections), kDetailsSections);
  item->didSave();
  return item;
}
std::string textIn(const std::shared_ptr<QNItemField>& field) {
  const auto text = field == nullptr ? std::nullopt : field->stringValue();
  return text ? std::string(text->reveal()) : "(none)";
}

TEST(QNItemFields, AreFoundInOrderOfTheSections) {
  const auto item = itemWith(kFields);

  EXPECT_EQ(item->findFieldWithIdentifier("1")->title(), "one");
  EXPECT_EQ(item->findFieldWithValue("y")->title(), "two");
  EXPECT_EQ(item->findFieldEqualToField(*item->findFieldWithValue("y"))->title(), "two");
  EXPECT_EQ(item->findNonEmptyConcealedField()->identifier(), "pin");
  EXPECT_EQ(item->findFieldWithIdentifier("2"), nullptr);
  EXPECT_EQ(item->findFieldWithIdentifier(std::nullopt), nullptr);
  EXPECT_EQ(item->findFieldWithValue("z"), nullptr);
  EXPECT_EQ(item->findNonEmptyPasswordField(), nullptr);
  EXPECT_EQ(item->findFastmailAliasField(), nullptr);
}

TEST(QNItemFields, AreToldByPrefixAndKind) {
  const auto item = itemWith(kFields);

  EXPECT_TRUE(item->hasFieldWithIdentifierPrefix("TOTP_"));
  EXPECT_FALSE(item->hasFieldWithIdentifierPrefix("totp_"));
  EXPECT_TRUE(item->hasReferenceFields());
  EXPECT_FALSE(item->hasFileFields());
}

TEST(QNItemFields, TakeAValueOfTheirClassAlone) {
  const auto item = itemWith(kFields);
  QNAddressValue address;
  address.setCity("other");

  item->setStringFieldValue("new", "1");
  item->setStringFieldValue("new", "address");
  item->setStringFieldValue("new", "absent");
  const Json untouched(item->findFieldWithIdentifier("address")->storedForm());
  EXPECT_EQ(jsonText(&untouched), R"({"k":"address","n":"address","v":{"city":"c"},"t":""})");
  item->setAddressFieldValue(address, "address");
  item->setAddressFieldValue(address, "pin");

  EXPECT_EQ(textIn(item->findFieldWithIdentifier("1")), "new");
  EXPECT_EQ(textIn(item->findFieldWithIdentifier("pin")), "1234");
  const auto changed =
      std::dynamic_pointer_cast<QNItemAddressField>(item->findFieldWithIdentifier("address"));
  EXPECT_EQ(changed->value().city(), "other");
}

TEST(QNItemFields, OfTheStringClassesTakeATextAndNothing) {
  const auto item = itemWith(kFields);

  item->setStringFieldValue("5678", "pin");
  EXPECT_EQ(textIn(item->findFieldWithIdentifier("pin")), "5678");
  item->setStringFieldValue(std::nullopt, "pin");

  EXPECT_EQ(textIn(item->findFieldWithIdentifier("pin")), "(none)");
  EXPECT_FALSE(item->findFieldWithIdentifier("pin")->storedForm().contains("v"));
}

TEST(QNItemFields, MoveWithinASectionAndMarkTheRow) {
  const auto item = itemWith(kFields);
  const auto section = item->fieldSectionAtIndex(0);

  item->moveField(section->fieldAtIndex(0), section, section, 99);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(section->fieldAtIndex(2)->title(), "one");
}

TEST(QNItemFields, MoveToAnotherSectionAndMarkTheRow) {
  const auto item = itemWith(kFields);
  const auto from = item->fieldSectionAtIndex(0);
  const auto to = item->fieldSectionAtIndex(1);
  const auto moved = from->fieldAtIndex(0);

  item->moveField(moved, from, to, 1);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(from->numberOfFields(), 2u);
  EXPECT_EQ(to->fieldAtIndex(1), moved);
}

TEST(QNItemFields, MoveToTheLastPlaceOfAnotherSectionForAnIndexBeyondIt) {
  const auto item = itemWith(kFields);
  const auto from = item->fieldSectionAtIndex(0);
  const auto to = item->fieldSectionAtIndex(1);
  const auto moved = from->fieldAtIndex(0);

  item->moveField(moved, from, to, 99);

  EXPECT_EQ(to->numberOfFields(), 6u);
  EXPECT_EQ(to->fieldAtIndex(5), moved);
}

TEST(QNItemFields, ThatAreNullOrLackASectionDontMove) {
  const auto item = itemWith(kFields);
  const auto from = item->fieldSectionAtIndex(0);
  const auto to = item->fieldSectionAtIndex(1);
  const auto field = from->fieldAtIndex(0);

  item->moveField(nullptr, from, to, 0);
  item->moveField(field, nullptr, to, 0);
  item->moveField(field, from, nullptr, 0);

  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(from->numberOfFields(), 3u);
  EXPECT_EQ(to->numberOfFields(), 5u);
}

TEST(QNItemFields, ThatTheirSectionDoesntHaveEnterAnotherAlone) {
  const auto item = itemWith(kFields);
  const auto from = item->fieldSectionAtIndex(0);
  const auto to = item->fieldSectionAtIndex(1);
  const auto stranger = QNItemStringField::fieldWithIdentifier("stranger");

  item->moveField(stranger, from, from, 0);
  EXPECT_EQ(from->numberOfFields(), 3u);
  EXPECT_EQ(from->indexOfField(stranger), kNotFound);
  item->moveField(stranger, from, to, 0);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(from->numberOfFields(), 3u);
  EXPECT_EQ(to->fieldAtIndex(0), stranger);
}

TEST(QNItemFields, ThatReferToItemsAreStripped) {
  const auto item = itemWith(kFields);

  item->stripReferenceFields();

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_FALSE(item->hasReferenceFields());
  EXPECT_EQ(item->fieldSectionAtIndex(1)->numberOfFields(), 3u);
  item->didSave();
  item->stripReferenceFields();
  EXPECT_FALSE(item->dirtyRow());
}

// Password

TEST(QNItemFields, ThePasswordIsThatOfTheFirstPasswordFieldWithOne) {
  const auto item = itemWith(
      R"([{"fields":[{"k":"concealed","n":"password","v":""},{"k":"string","n":"pop_password",)"
      R"("v":"p"},{"k":"concealed","n":"password","v":"q"}]}])");

  EXPECT_EQ(item->password()->reveal(), "p");
  EXPECT_TRUE(item->hasPassword());
  EXPECT_TRUE(item->hasRevealableFields());
}

TEST(QNItemFields, WithoutAPasswordAConcealedFieldIsRevealable) {
  const auto item = itemWith(kFields);

  EXPECT_EQ(item->password(), std::nullopt);
  EXPECT_TRUE(item->hasRevealableFields());
  EXPECT_FALSE(
      itemWith(R"([{"fields":[{"k":"concealed","n":"TOTP_1","v":"u"}]}])")->hasRevealableFields());
}

TEST(QNItemFields, ThePasswordAsAFieldIsMadeAfreshAndNoPartOfTheItem) {
  QNLocalization::sharedLocalization().setLanguage("de");
  const auto item = itemWith(R"([{"fields":[{"k":"string","n":"password","t":"x","v":"p"}]}])");

  const auto field = item->itemFieldForPassword();
  QNLocalization::sharedLocalization().setLanguage("en");

  ASSERT_NE(field, nullptr);
  EXPECT_EQ(field->className(), "QNItemConcealedField");
  EXPECT_EQ(field->identifier(), "password");
  EXPECT_EQ(field->title(), "Passwort");
  EXPECT_EQ(textIn(field), "p");
  EXPECT_NE(field, item->itemFieldForPassword());
  EXPECT_EQ(item->fieldSectionAtIndex(0)->numberOfFields(), 1u);
}

TEST(QNItemFields, WithoutAPasswordThereIsNoFieldForIt) {
  EXPECT_EQ(itemWith(kFields)->itemFieldForPassword(), nullptr);
}

TEST(QNItemFields, AReplacedPasswordEntersTheHistoryAtTheNextSave) {
  const auto vault = localVault();
  const auto row = std::make_shared<QNBareItem>(initNew);
  row->setProfile(vault);
  row->setDetailsObject(
      jsonValue(R"([{"fields":[{"k":"concealed","n":"password","t":"","v":"old"}]}])"),
      kDetailsSections);
  save(*row);
  const auto item = std::make_shared<QNBareItem>(QNExisting{row->oid()});
  item->setProfile(vault);
  item->markLoadingDetails();
  item->setOverviewData(row->overviewData());
  item->setEncryptedKey(row->encryptedKey());
  item->setDetailsData(row->detailsData());
  item->markDetailsLoaded();
  item->didLoad();

  item->setStringFieldValue("new", "password");
  save(*item);

  EXPECT_EQ(item->password()->reveal(), "new");
  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_NE(item->previouslyUsedPasswordWithValue("old"), nullptr);
}

}  // namespace
}  // namespace quillon
