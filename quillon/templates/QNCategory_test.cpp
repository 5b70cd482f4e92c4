#include "quillon/templates/QNCategory.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/templates/H9Category.h"
#include "quillon/templates/QNPlaceholderCategory.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

TEST(QNCategory, ShowsTheDefaultNamesAfterTheLoadOfACategoryThatTheLibraryNames) {
  const std::pair<const char*, const char*> cases[] = {{"001", "Login"},
                                                       {"002", "Credit Card"},
                                                       {"003", "Secure Note"},
                                                       {"004", "Identity"},
                                                       {"005", "Password"}};
  for (const auto& [uuid, name] : cases) {
    QNCategory category(QNExisting{4});
    category.setUuid(uuid);
    category.setSingularName("Stored under another name");

    category.didLoad();

    EXPECT_EQ(category.singularName(), name);
  }
}

TEST(QNCategory, RefreshesAllFourNamesAtALoad) {
  QNCategory category(QNExisting{4});
  category.setUuid("001");

  category.didLoad();

  EXPECT_EQ(category.singularName(), "Login");
  EXPECT_EQ(category.pluralName(), "Logins");
  EXPECT_EQ(category.listIconName(), "type-login-list");
  EXPECT_EQ(category.detailIconName(), "type-login-details");
}

TEST(QNCategory, PrefersTheDefaultNamesToThoseOfATemplateAtALoad) {
  const QNScopedTemplates login{
      R"({"uuid":"001","localizedStrings":{"__title__":"Other","__pluralTitle__":"Others"}})"};
  QNCategory category(QNExisting{4});
  category.setUuid("001");

  category.didLoad();

  EXPECT_EQ(category.singularName(), "Login");
}

TEST(QNCategory, TakesTheNamesOfItsTemplateAtALoad) {
  const QNScopedTemplates bank{
      R"({"uuid":"101","icons":{"list":"list","detail":"detail"},"localizedStrings":)"
      R"({"__title__":"Bank Account","__pluralTitle__":"Bank Accounts"}})"};
  QNCategory category(QNExisting{4});
  category.setUuid("101");
  category.setSingularName("Stored");

  category.didLoad();

  EXPECT_EQ(category.singularName(), "Bank Account");
  EXPECT_EQ(category.pluralName(), "Bank Accounts");
  EXPECT_EQ(category.listIconName(), "list");
  EXPECT_EQ(category.detailIconName(), "detail");
}

TEST(QNCategory, KeepsTheStoredNamesAtALoadWithoutATemplate) {
  const QNScopedTemplates none;
  QNCategory category(QNExisting{4});
  category.setUuid("109");  // the library knows its name, but doesn't force it
  category.setSingularName("Stored");

  category.didLoad();

  EXPECT_EQ(category.singularName(), "Stored");
  EXPECT_EQ(category.listIconName(), std::nullopt);
}

TEST(QNCategory, IsCleanAfterALoad) {
  QNCategory category(initNew);
  category.markDisplayOrderDirty();

  category.didLoad();

  EXPECT_FALSE(category.dirtyRow());
  EXPECT_FALSE(category.dirtyDisplayOrder());
}

TEST(QNCategory, HidesTombstonesWithoutATemplate) {
  QNCategory tombstones(initNew);
  tombstones.setUuid("099");
  QNCategory logins(initNew);
  logins.setUuid("001");

  EXPECT_TRUE(tombstones.isHidden());
  EXPECT_FALSE(logins.isHidden());
}

TEST(QNCategory, HidesWhatItsTemplateSays) {
  const QNScopedTemplates templates{R"({"uuid":"099"})", R"({"uuid":"001","hidden":"yes"})"};
  QNCategory tombstones(initNew);
  tombstones.setUuid("099");
  QNCategory logins(initNew);
  logins.setUuid("001");

  EXPECT_FALSE(tombstones.isHidden());
  EXPECT_TRUE(logins.isHidden());
}

TEST(QNCategory, DoesNotDirtyTheOrderForTheFirstOne) {
  QNCategory category(QNExisting{4});

  category.setDisplayOrder(5);

  EXPECT_EQ(category.displayOrder(), 5u);
  EXPECT_EQ(category.ownDisplayOrder(), 5u);
  EXPECT_FALSE(category.dirtyDisplayOrder());
}

TEST(QNCategory, DirtiesOnlyTheOrderForAnotherOne) {
  QNCategory category(QNExisting{4});
  category.setDisplayOrder(5);

  category.setDisplayOrder(6);

  EXPECT_EQ(category.displayOrder(), 6u);
  EXPECT_TRUE(category.dirtyDisplayOrder());
  EXPECT_FALSE(category.dirtyRow());
}

TEST(QNCategory, DoesNothingForAnEqualOrder) {
  QNCategory category(QNExisting{4});
  category.setDisplayOrder(6);

  category.setDisplayOrder(6);

  EXPECT_FALSE(category.dirtyDisplayOrder());
}

TEST(QNCategory, TellsSystemCategoriesFromOthers) {
  QNCategory category(initNew);
  EXPECT_FALSE(category.isSystemCategory());

  category.setUuid("004");
  EXPECT_TRUE(category.isSystemCategory());

  category.setUuid("099");
  EXPECT_FALSE(category.isSystemCategory());
}

TEST(QNCategory, IsAModifiedCopyOfOneWithOtherNamesOrAnotherCount) {
  QNCategory category(initNew);
  category.setSingularName("Login");
  category.setPluralName("Logins");
  category.setNumberOfItems(3);
  QNTestCategory twin("of another class", "Login");
  twin.itsPluralName = "Logins";
  twin.itsNumberOfItems = 3;
  ASSERT_FALSE(category.isModifiedCopyOf(twin));

  QNTestCategory counted = twin;
  counted.itsNumberOfItems = 4;
  QNTestCategory renamed = twin;
  renamed.itsSingularName = "Sign-in";
  QNTestCategory pluralized = twin;
  pluralized.itsPluralName = std::nullopt;

  EXPECT_TRUE(category.isModifiedCopyOf(counted));
  EXPECT_TRUE(category.isModifiedCopyOf(renamed));
  EXPECT_TRUE(category.isModifiedCopyOf(pluralized));
}

TEST(QNCategory, EqualsAnyCategoryOfTheSameIdentifier) {
  QNCategory category(initNew);
  category.setUuid("001");

  EXPECT_TRUE(category.isEqual(QNTestCategory("001", "whatever")));
  EXPECT_FALSE(category.isEqual(QNTestCategory("002", "whatever")));
}

TEST(QNCategory, WithoutAnIdentifierEqualsOnlyItsLike) {
  const QNCategory nameless(initNew);

  EXPECT_TRUE(nameless.isEqual(QNTestCategory()));
  EXPECT_FALSE(nameless.isEqual(QNTestCategory("001", "Login")));
  EXPECT_FALSE(QNTestCategory("001", "Login").uuid() == nameless.uuid());
}

TEST(QNCategory, HashesItsIdentifierAlone) {
  QNCategory a(initNew);
  a.setUuid("001");
  a.setSingularName("a");
  QNCategory b(initNew);
  b.setUuid("001");

  EXPECT_EQ(a.hash(), b.hash());
  EXPECT_EQ(a.hash(), std::hash<std::string>{}("001"));
  EXPECT_EQ(QNCategory(initNew).hash(), 0u);
}

TEST(QNCategory, ComparesAsEveryCategoryDoes) {
  QNCategory first(initNew);
  first.setDisplayOrder(1);
  QNCategory second(initNew);
  second.setDisplayOrder(2);

  EXPECT_EQ(first.compare(second), std::strong_ordering::less);
}

TEST(QNCategory, ShowsItsNamesAsTheyStand) {
  QNCategory category(initNew);
  category.setSingularName("Login");
  category.setPluralName("Logins");

  EXPECT_EQ(category.localizedSingularName(), "Login");
  EXPECT_EQ(category.localizedPluralName(), "Logins");
  EXPECT_EQ(category.newItemTitle(), "Login");
  EXPECT_FALSE(category.isAdHoc());
}

TEST(QNCategory, DescribesItselfByAddressAndPluralName) {
  QNCategory category(initNew);
  category.setPluralName("Logins");

  EXPECT_EQ(category.description(),
            fmt::format("<QNCategory: {}> 'Logins'", static_cast<const void*>(&category)));
}

TEST(QNCategory, WritesItsRowUnderTheStoredKeys) {
  QNCategory category(initNew);
  category.setUuid("001");
  category.setSingularName("Login");
  category.setPluralName("Logins");
  category.setListIconName("list");
  category.setDetailIconName("detail");

  const JsonObject row = category.allAttributes();

  EXPECT_EQ(mr_JSONStringWithError(row),
            R"({"uuid":"001","singularName":"Login","pluralName":"Logins",)"
            R"("listIconName":"list","detaiIconName":"detail"})");
}

TEST(QNCategory, WritesNoMemberForAnAbsentName) {
  QNCategory category(initNew);
  category.setUuid("001");

  EXPECT_EQ(mr_JSONStringWithError(category.allAttributes()), R"({"uuid":"001"})");
}

TEST(QNCategory, ReadsItsRowBack) {
  const auto row = mr_objectFromJSONStringWithError(
      R"({"uuid":"110","singularName":"Server","pluralName":"Servers",)"
      R"("listIconName":"list","detaiIconName":"detail"})");
  ASSERT_TRUE(row);
  QNCategory category(QNExisting{1});

  category.setAllAttributes(*row);

  EXPECT_EQ(category.uuid(), "110");
  EXPECT_EQ(category.singularName(), "Server");
  EXPECT_EQ(category.pluralName(), "Servers");
  EXPECT_EQ(category.listIconName(), "list");
  EXPECT_EQ(category.detailIconName(), "detail");
}

TEST(QNCategory, ReadsAMemberOfAnotherKindAsAbsent) {
  const auto row = mr_objectFromJSONStringWithError(
      R"({"uuid":1,"singularName":null,"pluralName":["Logins"],"detailIconName":"well spelt"})");
  ASSERT_TRUE(row);
  QNCategory category(QNExisting{1});

  category.setAllAttributes(*row);

  EXPECT_EQ(category.uuid(), std::nullopt);
  EXPECT_EQ(category.singularName(), std::nullopt);
  EXPECT_EQ(category.pluralName(), std::nullopt);
  EXPECT_EQ(category.detailIconName(), std::nullopt);
}

TEST(QNCategory, AnArchiveHasOtherKeysForTheNamesThanARow) {
  QNCategory category(QNExisting{4});
  category.setUuid("110");
  category.setSingularName("Server");
  category.setPluralName("Servers");
  category.setListIconName("list");
  category.setDetailIconName("detail");
  category.setDisplayOrder(7);
  category.setNumberOfItems(12);
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(category);
  ASSERT_TRUE(archive.ok());
  const QNDecodableClass known[] = {
      {"QNCategory", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<QNCategory>(coder);
       }}};

  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(known, archive.value());

  ASSERT_TRUE(read.ok());
  const auto decoded = std::dynamic_pointer_cast<QNCategory>(read.value());
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(decoded->oid(), 4u);
  EXPECT_EQ(decoded->uuid(), "110");
  EXPECT_EQ(decoded->singularName(), "Server");
  EXPECT_EQ(decoded->pluralName(), "Servers");
  EXPECT_EQ(decoded->listIconName(), "list");
  EXPECT_EQ(decoded->detailIconName(), "detail");
  EXPECT_EQ(decoded->displayOrder(), 7u);
  EXPECT_EQ(decoded->numberOfItems(), 12u);
  const std::string_view text = textOf(archive.value());
  for (const std::string_view key : {"sName", "pName", "detaiIconName", "listIconName"}) {
    EXPECT_NE(text.find(key), std::string_view::npos) << key;
  }
  EXPECT_EQ(text.find("singularName"), std::string_view::npos);
  EXPECT_EQ(text.find("detailIconName"), std::string_view::npos);
}

TEST(QNCategory, IsNeverAModifiedCopyByItsClassAlone) {
  const auto account = H9Category::initAdHocWithUUID("110");
  QNCategory category(initNew);
  category.setSingularName(account->singularName());
  category.setPluralName(account->pluralName());

  EXPECT_FALSE(category.isModifiedCopyOf(*account));
  account->setNumberOfItems(1);

  EXPECT_TRUE(category.isModifiedCopyOf(*account));
}

TEST(QNCategory, WithAnIdentifierDiffersFromOneWithout) {
  QNCategory login(initNew);
  login.setUuid("001");
  const QNCategory nameless(initNew);

  EXPECT_FALSE(login.isEqual(nameless));
  EXPECT_FALSE(nameless.isEqual(login));
  EXPECT_TRUE(nameless.description().ends_with("'(null)'"));
}

// Placeholders

TEST(QNPlaceholderCategory, StandsBehindAllStoredCategories) {
  const auto row = QNPlaceholderCategory::placeholderCategoryWithName(
      "Row", QNPlaceholderCategory::Type::allItems);

  EXPECT_EQ(row->uuid(), "0??");
  EXPECT_EQ(row->singularName(), "Row");
  EXPECT_EQ(row->pluralName(), "Row");
  EXPECT_EQ(row->listIconName(), "");
  EXPECT_EQ(row->detailIconName(), "");
  EXPECT_EQ(row->displayOrder(), 2147483647u);
  EXPECT_EQ(row->listIcon(), nullptr);
}

struct PlaceholderRow {
  std::shared_ptr<QNPlaceholderCategory> (*make)();
  int type;
  std::string_view name, listIconName;
};

TEST(QNPlaceholderCategory, HasFourKinds) {
  const QNScopedLanguage language("en");
  const PlaceholderRow rows[] = {
      {&QNPlaceholderCategory::hintRowCategory, 0, "hint row", ""},
      {&QNPlaceholderCategory::allItemsCategory, 1, "All Items", "type-allitems-list"},
      {&QNPlaceholderCategory::trashCategory, 2, "Archive", "type-archive-list"},
      {&QNPlaceholderCategory::compromisedWebsitesCategory, 3, "Compromised Websites",
       "type-compromisedsites-list"},
  };
  for (const auto& row : rows) {
    const auto made = row.make();

    EXPECT_EQ(static_cast<int>(made->placeholderType()), row.type);
    EXPECT_EQ(made->pluralName(), row.name);
    EXPECT_EQ(made->listIconName(), row.listIconName);
    EXPECT_EQ(made->uuid(), "0??");
  }
}

TEST(QNPlaceholderCategory, IsNamedInTheUsersLanguage) {
  const QNScopedLanguage language("de");

  EXPECT_EQ(QNPlaceholderCategory::trashCategory()->pluralName(), "Archiv");
  EXPECT_EQ(QNPlaceholderCategory::hintRowCategory()->pluralName(), "hint row");
}

}  // namespace
}  // namespace quillon
