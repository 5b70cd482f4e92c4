#include "quillon/templates/H9Category.h"

#include <gtest/gtest.h>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

JsonObject definition(std::string_view text) {
  return *mr_objectFromJSONStringWithError(text);
}

constexpr std::string_view kBank =
    R"({"uuid":"101","hidden":"no","icons":{"detail":"d","source":"s"},)"
    R"("localizedStrings":{"__title__":"Bank","__pluralTitle__":"Banks"}})";

TEST(H9Category, IsMadeOfATemplate) {
  const auto json = definition(kBank);

  const auto category = H9Category::categoryWithTemplate(templateOf(kBank), 0, 7, &json);

  ASSERT_NE(category, nullptr);
  EXPECT_FALSE(category->hasOid());
  EXPECT_EQ(category->uuid(), "101");
  EXPECT_EQ(category->accountId(), 7u);
  EXPECT_EQ(category->singularName(), "Bank");
  EXPECT_EQ(category->pluralName(), "Banks");
  EXPECT_EQ(category->localizedSingularName(), "Bank");
  EXPECT_EQ(category->localizedPluralName(), "Banks");
  EXPECT_EQ(category->newItemTitle(), "Bank");
  EXPECT_EQ(category->detailIconName(), "d");
  EXPECT_EQ(category->sourceIconName(), "s");
  EXPECT_FALSE(category->isAdHoc());
  EXPECT_FALSE(category->isSystemCategory());
  ASSERT_NE(category->jsonDictionary(), nullptr);
  EXPECT_EQ(category->jsonDictionary()->at("uuid"), "101");
}

TEST(H9Category, TakesARowsId) {
  EXPECT_EQ(H9Category::categoryWithTemplate(templateOf(kBank), 12, 7, nullptr)->oid(), 12u);
}

TEST(H9Category, IsNotMadeWithoutATemplateOrAnAccount) {
  EXPECT_EQ(H9Category::categoryWithTemplate(nullptr, 0, 7, nullptr), nullptr);
  EXPECT_EQ(H9Category::categoryWithTemplate(templateOf(kBank), 0, 0, nullptr), nullptr);
}

TEST(H9Category, TakesTheServersWordsOverTheLocalOnes) {
  const auto json = definition(kBank);
  const auto server =
      definition(R"({"singularName":"Account","pluralName":"Accounts","uuid":"x01","state":"A"})");
  const auto made = std::make_shared<QNTemplate>(&json, &server);

  const auto category = H9Category::categoryWithTemplate(made, 0, 7, &json);

  EXPECT_EQ(category->singularName(), "Account");
  EXPECT_EQ(category->pluralName(), "Accounts");
  EXPECT_EQ(category->uuid(), "x01");
  EXPECT_EQ(category->detailIconName(), "d");
}

TEST(H9Category, TakesNamesAndIconsFromItsDefinition) {
  H9Category category(initNew);
  const auto json = definition(kBank);

  category.setJsonDictionary(&json);

  EXPECT_EQ(category.singularName(), "Bank");
  EXPECT_EQ(category.pluralName(), "Banks");
  EXPECT_EQ(category.detailIconName(), "d");
  EXPECT_EQ(category.sourceIconName(), "s");
  EXPECT_EQ(category.uuid(), std::nullopt);
}

TEST(H9Category, AnEmptyDefinitionChangesNoName) {
  H9Category category(initNew);
  const auto json = definition(kBank);
  category.setJsonDictionary(&json);
  const JsonObject empty;

  category.setJsonDictionary(&empty);

  EXPECT_EQ(category.singularName(), "Bank");
  category.setJsonDictionary(nullptr);
  EXPECT_EQ(category.jsonDictionary(), nullptr);
  EXPECT_EQ(category.singularName(), "Bank");
}

TEST(H9Category, IsHiddenAsItsDefinitionSays) {
  const auto hidden = definition(R"({"uuid":"001","hidden":"yes"})");
  const auto shown = definition(R"({"uuid":"099"})");
  const auto tombstones = H9Category::initAdHocWithUUID("099");

  EXPECT_TRUE(tombstones->isHidden());
  tombstones->setJsonDictionary(&shown);
  EXPECT_FALSE(tombstones->isHidden());
  const auto logins = H9Category::initAdHocWithUUID("001");
  EXPECT_FALSE(logins->isHidden());
  logins->setJsonDictionary(&hidden);

  EXPECT_TRUE(logins->isHidden());
}

TEST(H9Category, WithoutATemplateIsAdHocWithDefaultNames) {
  const QNScopedLanguage language("en");
  const auto server = H9Category::initAdHocWithUUID("110");
  const auto unknown = H9Category::initAdHocWithUUID("zzz");

  EXPECT_TRUE(server->isAdHoc());
  EXPECT_EQ(server->uuid(), "110");
  EXPECT_EQ(server->singularName(), "Server");
  EXPECT_EQ(server->pluralName(), "Servers");
  EXPECT_TRUE(unknown->isAdHoc());
  EXPECT_EQ(unknown->singularName(), "Other");
  EXPECT_EQ(unknown->pluralName(), "Other");
}

TEST(H9Category, IsNoModifiedCopyOfAnotherClass) {
  const auto one = H9Category::initAdHocWithUUID("110");
  const auto two = H9Category::initAdHocWithUUID("110");
  QNCategory local(initNew);

  EXPECT_FALSE(one->isModifiedCopyOf(local));
  EXPECT_FALSE(one->isModifiedCopyOf(*two));
  two->setNumberOfItems(1);

  EXPECT_TRUE(one->isModifiedCopyOf(*two));
  EXPECT_FALSE(one->isModifiedCopyOf(local));
}

TEST(H9Category, IsEqualByItsIdentifierToAnyClass) {
  const auto server = H9Category::initAdHocWithUUID("110");
  QNCategory local(initNew);
  const H9Category nameless(initNew);

  EXPECT_FALSE(server->isEqual(local));
  EXPECT_TRUE(nameless.isEqual(local));
  local.setUuid("110");
  EXPECT_TRUE(server->isEqual(local));
  EXPECT_EQ(server->hash(), local.hash());
  EXPECT_FALSE(nameless.isEqual(local));
}

TEST(H9Category, SortsByTheDefaultOrderOfItsIdentifier) {
  const auto login = H9Category::initAdHocWithUUID("001");
  const auto server = H9Category::initAdHocWithUUID("110");

  EXPECT_EQ(login->compare(*server), std::strong_ordering::less);
}

TEST(H9Category, DescribesItself) {
  const auto server = H9Category::initAdHocWithUUID("110");
  server->setOid(12);
  const QNScopedLanguage language("en");

  EXPECT_EQ(server->description(),
            formatted("<H9Category: {}-12> uuid:'110', pluralName'{}' adHoc:YES",
                      static_cast<const void*>(server.get()), *server->pluralName()));
}

TEST(H9Category, IsArchivedWhole) {
  const auto json = definition(kBank);
  const auto category = H9Category::categoryWithTemplate(templateOf(kBank), 12, 7, &json);
  category->setNumberOfItems(3);
  const auto archive = QNKeyedArchiver::archivedDataWithRootObject(*category);
  ASSERT_TRUE(archive.ok());
  const QNDecodableClass known[] = {
      {"H9Category", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
         return std::make_shared<H9Category>(coder);
       }}};

  const auto read = QNKeyedUnarchiver::unarchivedObjectOfClasses(known, archive.value());

  ASSERT_TRUE(read.ok());
  const auto decoded = std::dynamic_pointer_cast<H9Category>(read.value());
  ASSERT_NE(decoded, nullptr);
  EXPECT_EQ(decoded->oid(), 12u);
  EXPECT_EQ(decoded->uuid(), "101");
  EXPECT_EQ(decoded->singularName(), "Bank");
  EXPECT_EQ(decoded->pluralName(), "Banks");
  EXPECT_EQ(decoded->detailIconName(), "d");
  EXPECT_EQ(decoded->sourceIconName(), "s");
  EXPECT_EQ(decoded->numberOfItems(), 3u);
  EXPECT_EQ(decoded->accountId(), 7u);
  EXPECT_FALSE(decoded->isAdHoc());
  ASSERT_NE(decoded->jsonDictionary(), nullptr);
  EXPECT_EQ(*decoded->jsonDictionary(), json);
  for (const std::string_view key : {"uuid", "sName", "pName", "sourceIconName", "detaiIconName",
                                     "numberOfItems", "json", "accountId", "adHoc"}) {
    EXPECT_NE(textOf(archive.value()).find("\"" + std::string(key) + "\""), std::string_view::npos)
        << key;
  }
}

}  // namespace
}  // namespace quillon
