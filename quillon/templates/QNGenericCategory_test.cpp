#include "quillon/templates/QNGenericCategory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "quillon/items/QNItem.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;

constexpr std::string_view kBank = R"({"uuid":"101","contents":[]})";

// One row of the table that stored vaults depend on.
struct Row {
  std::string_view constant;
  std::string_view uuid;
  const char* itemClass;  // null for a category that only a template serves
  std::uint64_t displayOrder;
};

const Row kTable[] = {
    {QNCategoryUUIDLogin, "001", "QNLogin", 10000},
    {QNCategoryUUIDCreditCard, "002", "QNCreditCard", 30000},
    {QNCategoryUUIDSecureNote, "003", "QNSecureNote", 20000},
    {QNCategoryUUIDIdentity, "004", "QNIdentity", 40000},
    {QNCategoryUUIDPassword, "005", "QNPassword", 50000},
    {QNCategoryUUIDDocument, "006", "H9Document", 60000},
    {QNCategoryUUIDTombstone, "099", "QNTombstone", 2147483647},
    {QNCategoryUUIDSoftwareLicense, "100", nullptr, 95000},
    {QNCategoryUUIDBankAccount, "101", nullptr, 95000},
    {QNCategoryUUIDDatabase, "102", nullptr, 95000},
    {QNCategoryUUIDDriverLicense, "103", nullptr, 95000},
    {QNCategoryUUIDOutdoorLicense, "104", nullptr, 95000},
    {QNCategoryUUIDMembership, "105", nullptr, 95000},
    {QNCategoryUUIDPassport, "106", nullptr, 95000},
    {QNCategoryUUIDRewards, "107", nullptr, 95000},
    {QNCategoryUUIDSocialSecurityNumber, "108", nullptr, 95000},
    {QNCategoryUUIDRouter, "109", nullptr, 95000},
    {QNCategoryUUIDServer, "110", nullptr, 95000},
    {QNCategoryUUIDEmail, "111", nullptr, 95000},
    {QNCategoryUUIDAPICredential, "112", nullptr, 95000},
    {QNCategoryUUIDMedicalRecord, "113", "QNMedicalRecord", 95000},
    {QNCategoryUUIDSSHKey, "114", nullptr, 95000},
    {QNCategoryUUIDCryptoWallet, "115", "QNCryptoWallet", 95000},
    {QNCategoryUUIDPrivacyComLogin, "800", "QNPrivacyComLogin", 95000},
    {QNCategoryUUIDPlaceholder, "0??", nullptr, 95000},
};

class CategoryTable : public testing::TestWithParam<Row> {};

TEST_P(CategoryTable, NamesTheStoredIdentifier) {
  EXPECT_EQ(GetParam().constant, GetParam().uuid);
}

TEST_P(CategoryTable, GivesTheDisplayOrder) {
  EXPECT_EQ(QNGenericCategoryDefaultDisplayOrder(GetParam().uuid), GetParam().displayOrder);
}

TEST_P(CategoryTable, GivesTheItemClass) {
  const QNScopedTemplates none;
  const QNItemClass* const itemClass = QNGenericCategoryItemClassForCategoryUUID(GetParam().uuid);

  ASSERT_EQ(itemClass != nullptr, GetParam().itemClass != nullptr);
  if (itemClass != nullptr) {
    EXPECT_EQ(itemClass->name, GetParam().itemClass);
  }
}

TEST_P(CategoryTable, MakesItemsOfThatClass) {
  const QNScopedTemplates none;
  const QNItemClass* const itemClass = QNGenericCategoryItemClassForCategoryUUID(GetParam().uuid);
  if (GetParam().itemClass == nullptr) {
    ASSERT_EQ(itemClass, nullptr);
    return;
  }
  ASSERT_NE(itemClass, nullptr);

  const auto fresh = itemClass->initNewWithTemplate == nullptr
                         ? itemClass->initNew()
                         : itemClass->initNewWithTemplate(templateOf(kBank));
  const auto existing = itemClass->initExistingWithID(12);

  EXPECT_EQ(fresh->className(), GetParam().itemClass);
  EXPECT_EQ(existing->className(), GetParam().itemClass);
  EXPECT_EQ(existing->oid(), 12u);
}

TEST_P(CategoryTable, GivesTheTemplateItemOnlyWhereNoClassIsFixed) {
  const QNScopedTemplates any{R"({"uuid":")" + std::string(GetParam().uuid) +
                              R"(","contents":[]})"};

  const QNItemClass* const itemClass = QNGenericCategoryItemClassForCategoryUUID(GetParam().uuid);

  ASSERT_NE(itemClass, nullptr);
  EXPECT_EQ(itemClass->name,
            GetParam().itemClass != nullptr ? GetParam().itemClass : "QNTemplateItem");
}

INSTANTIATE_TEST_SUITE_P(Rows, CategoryTable, testing::ValuesIn(kTable), [](const auto& tested) {
  return tested.param.uuid == "0??" ? std::string("placeholder") : std::string(tested.param.uuid);
});

TEST(QNGenericCategoryIsSystemCategory, TakesThreeCharactersThatBeginWithTwoZeros) {
  EXPECT_TRUE(QNGenericCategoryIsSystemCategory("001"));
  EXPECT_TRUE(QNGenericCategoryIsSystemCategory("00z"));
}

TEST(QNGenericCategoryIsSystemCategory, RefusesAnyOtherLength) {
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory(""));
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory("00"));
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory("0011"));
}

TEST(QNGenericCategoryIsSystemCategory, CountsCharactersAndNotBytes) {
  EXPECT_TRUE(QNGenericCategoryIsSystemCategory("00é"));
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory("00\U0001F511"));
}

TEST(QNGenericCategoryIsSystemCategory, RefusesTombstonesAndNothing) {
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory("099"));
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory("100"));
  EXPECT_FALSE(QNGenericCategoryIsSystemCategory(std::nullopt));
}

TEST(QNGenericCategoryIsItemEditable, RefusesSSHKeysAndTombstones) {
  EXPECT_FALSE(QNGenericCategoryIsItemEditable("114"));
  EXPECT_FALSE(QNGenericCategoryIsItemEditable("099"));
}

TEST(QNGenericCategoryIsItemEditable, AllowsAnythingElse) {
  EXPECT_TRUE(QNGenericCategoryIsItemEditable("001"));
  EXPECT_TRUE(QNGenericCategoryIsItemEditable("nonsense"));
  EXPECT_TRUE(QNGenericCategoryIsItemEditable(std::nullopt));
}

TEST(QNGenericCategoryStandardCategoryUUIDs, AreFive) {
  EXPECT_THAT(QNGenericCategoryStandardCategoryUUIDs(),
              ElementsAre("001", "002", "003", "004", "099"));
}

TEST(QNGenericCategoryStandardCategoryUUIDs, AreBuiltOnce) {
  EXPECT_EQ(&QNGenericCategoryStandardCategoryUUIDs(), &QNGenericCategoryStandardCategoryUUIDs());
}

TEST(QNGenericCategoryAvailableWatchCategories, KeepTheirOrder) {
  EXPECT_THAT(QNGenericCategoryAvailableWatchCategories(),
              ElementsAre("001", "005", "002", "003", "106", "108", "103", "109", "101"));
}

TEST(QNGenericCategoryAvailableWatchCategories, AreBuiltOnce) {
  EXPECT_EQ(&QNGenericCategoryAvailableWatchCategories(),
            &QNGenericCategoryAvailableWatchCategories());
}

TEST(QNGenericCategoryDefaultDisplayOrder, IsZeroForNothing) {
  EXPECT_EQ(QNGenericCategoryDefaultDisplayOrder(std::nullopt), 0u);
}

TEST(QNGenericCategoryDefaultDisplayOrder, IsThatOfTheOthersForAnUnknownIdentifier) {
  EXPECT_EQ(QNGenericCategoryDefaultDisplayOrder("zzz"), 95000u);
  EXPECT_EQ(QNGenericCategoryDefaultDisplayOrder(""), 95000u);
}

TEST(QNGenericCategoryItemClass, IsNullForNothing) {
  EXPECT_EQ(QNGenericCategoryItemClassForCategoryUUID(std::nullopt), nullptr);
}

TEST(QNGenericCategoryItemClass, IsNullForAnUnknownIdentifierWithoutATemplate) {
  EXPECT_EQ(QNGenericCategoryItemClassForCategoryUUID("zzz"), nullptr);
}

TEST(QNGenericCategoryItemClass, IsTheTemplateItemWhereATemplateWasLoaded) {
  const QNScopedTemplates bank{kBank};

  const QNItemClass* const itemClass = QNGenericCategoryItemClassForCategoryUUID("101");

  ASSERT_NE(itemClass, nullptr);
  EXPECT_EQ(itemClass->name, "QNTemplateItem");
  EXPECT_EQ(QNGenericCategoryItemClassForCategoryUUID("102"), nullptr);
}

TEST(QNGenericCategoryItemClass, IsTheFixedOneEvenWhereATemplateExists) {
  const QNScopedTemplates login{R"({"uuid":"001"})"};

  EXPECT_EQ(QNGenericCategoryItemClassForCategoryUUID("001")->name, "QNLogin");
}

TEST(QNGenericCategoryItemClass, OfTemplateItemsMakesNewOnesFromTheTemplateOnly) {
  const QNScopedTemplates bank{kBank};
  const QNItemClass* const itemClass = QNGenericCategoryItemClassForCategoryUUID("101");
  ASSERT_NE(itemClass, nullptr);

  const auto fresh = itemClass->initNewWithTemplate(templateOf(kBank));

  EXPECT_EQ(itemClass->initNew, nullptr);
  ASSERT_NE(fresh, nullptr);
  EXPECT_EQ(fresh->className(), "QNTemplateItem");
  EXPECT_EQ(fresh->categoryUUID(), "101");
  EXPECT_EQ(itemClass->initNewWithTemplate(nullptr), nullptr);
}

TEST(QNGenericCategoryItemClass, OfTemplateItemsLeavesTheCategoryOfStoredOnesToTheirRow) {
  const QNScopedTemplates bank{kBank};

  const auto existing = QNGenericCategoryItemClassForCategoryUUID("101")->initExistingWithID(3);

  EXPECT_EQ(existing->className(), "QNTemplateItem");
  EXPECT_EQ(existing->categoryUUID(), std::nullopt);
}

TEST(QNGenericCategoryCompare, GoesByTheDefaultOrderOfCategoriesWithoutTheirOwn) {
  const QNTestCategory login("001", "z");
  const QNTestCategory card("002", "a");

  EXPECT_EQ(QNGenericCategoryCompare(login, card), std::strong_ordering::less);
  EXPECT_EQ(QNGenericCategoryCompare(card, login), std::strong_ordering::greater);
}

TEST(QNGenericCategoryCompare, PutsACategoryWithoutAnIdentifierFirst) {
  const QNTestCategory login("001", "Login");

  EXPECT_EQ(QNGenericCategoryCompare(QNTestCategory(), login), std::strong_ordering::less);
}

TEST(QNGenericCategoryCompare, PrefersAnOrderThatTheCategoryKeepsItself) {
  QNCategory card(initNew);
  card.setUuid("002");
  card.setDisplayOrder(1);
  const QNTestCategory login("001", "Login");

  EXPECT_EQ(QNGenericCategoryCompare(card, login), std::strong_ordering::less);
}

TEST(QNGenericCategoryCompare, TakesAnOwnOrderOfZeroAsItStands) {
  const QNCategory unordered(initNew);
  const QNTestCategory login("001", "Login");

  EXPECT_EQ(QNGenericCategoryCompare(unordered, login), std::strong_ordering::less);
}

TEST(QNGenericCategoryCompare, ComparesOrdersAsUnsignedNumbers) {
  QNTestCategory huge("001", "a");
  huge.itsOrder = ~std::uint64_t{0};
  const QNTestCategory tombstone("099", "b");

  EXPECT_EQ(QNGenericCategoryCompare(huge, tombstone), std::strong_ordering::greater);
}

TEST(QNGenericCategoryCompare, BreaksATieBySingularNameCharacterByCharacter) {
  const QNTestCategory capital("100", "Zebra");
  const QNTestCategory small("101", "apple");

  EXPECT_EQ(QNGenericCategoryCompare(capital, small), std::strong_ordering::less);
  EXPECT_EQ(QNGenericCategoryCompare(small, small), std::strong_ordering::equal);
}

TEST(QNGenericCategoryH9Compare, NeverAsksForAnOwnOrder) {
  QNTestCategory card("002", "Card");
  card.itsOrder = 1;
  const QNTestCategory login("001", "Login");

  EXPECT_EQ(QNGenericCategoryH9Compare(card, login), std::weak_ordering::greater);
}

TEST(QNGenericCategoryH9Compare, BreaksATieAsTheLanguageSortsCaseApart) {
  const QNScopedLocale english("en-US");
  const QNTestCategory capital("100", "Zebra");
  const QNTestCategory small("101", "apple");

  EXPECT_EQ(QNGenericCategoryH9Compare(capital, small), std::weak_ordering::greater);
  EXPECT_EQ(QNGenericCategoryH9Compare(small, QNTestCategory("102", "APPLE")),
            std::weak_ordering::equivalent);
}

TEST(QNGenericCategoryH9Compare, BreaksATieAsTheUsersLanguageSorts) {
  const QNTestCategory umlaut("100", "Ärzte");
  const QNTestCategory last("101", "Zeitungen");

  {
    const QNScopedLocale german("de");
    EXPECT_EQ(QNGenericCategoryH9Compare(umlaut, last), std::weak_ordering::less);
    EXPECT_EQ(QNGenericCategoryH9Compare(last, umlaut), std::weak_ordering::greater);
  }
  {
    const QNScopedLocale swedish("sv");  // where Ä comes behind Z
    EXPECT_EQ(QNGenericCategoryH9Compare(umlaut, last), std::weak_ordering::greater);
    EXPECT_EQ(QNGenericCategoryH9Compare(last, umlaut), std::weak_ordering::less);
  }
}

// One of each order and, among the others, names that languages and bytes sort differently.
std::vector<QNTestCategory> unsortedCategories() {
  std::vector<QNTestCategory> all;
  for (const auto& [uuid, name] :
       std::initializer_list<std::pair<const char*, const char*>>{{"099", "Tombstone"},
                                                                  {"110", "Server"},
                                                                  {"006", "Document"},
                                                                  {"111", "Ärzte"},
                                                                  {"005", "Password"},
                                                                  {"109", "Router"},
                                                                  {"004", "Identity"},
                                                                  {"112", "api"},
                                                                  {"002", "Credit Card"},
                                                                  {"003", "Secure Note"},
                                                                  {"001", "Login"}}) {
    all.emplace_back(uuid, name);
  }
  return all;
}

std::vector<std::string> namesOf(const std::vector<QNTestCategory>& categories) {
  std::vector<std::string> names;
  for (const auto& category : categories) names.push_back(*category.itsSingularName);
  return names;
}

TEST(QNGenericCategoryCompare, SortsAllCategoriesAlikeInEveryLanguage) {
  for (const char* const tag : {"en-US", "sv"}) {
    const QNScopedLocale locale(tag);
    auto all = unsortedCategories();

    std::sort(all.begin(), all.end(),
              [](const auto& a, const auto& b) { return QNGenericCategoryCompare(a, b) < 0; });

    EXPECT_THAT(namesOf(all),
                ElementsAre("Login", "Secure Note", "Credit Card", "Identity", "Password",
                            "Document", "Router", "Server", "api", "Ärzte", "Tombstone"))
        << tag;
  }
}

TEST(QNGenericCategoryH9Compare, SortsAllCategoriesAsAPersonSeesThem) {
  const QNScopedLocale english("en-US");
  auto all = unsortedCategories();

  std::sort(all.begin(), all.end(),
            [](const auto& a, const auto& b) { return QNGenericCategoryH9Compare(a, b) < 0; });

  EXPECT_THAT(namesOf(all),
              ElementsAre("Login", "Secure Note", "Credit Card", "Identity", "Password", "Document",
                          "api", "Ärzte", "Router", "Server", "Tombstone"));
}

TEST(QNGenericCategoryDisplayOrder, IsTheCategorysOwnOrElseTheDefault) {
  QNTestCategory card("002", "Card");

  EXPECT_EQ(QNGenericCategoryDisplayOrder(card), 30000u);
  card.itsOrder = 0;
  EXPECT_EQ(QNGenericCategoryDisplayOrder(card), 0u);
}

}  // namespace
}  // namespace quillon
