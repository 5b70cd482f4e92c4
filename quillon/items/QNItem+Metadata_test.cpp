#include <gmock/gmock.h>

#include "quillon/items/QNMetadataConstants.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/templates/internal/QNTestCategories.h"

namespace quillon {
namespace {

using testing::ElementsAre;

// What an index of the system is told

std::vector<std::string> keysOf(const JsonObject& object) {
  std::vector<std::string> keys;
  for (const auto& member : object) keys.emplace_back(member.key());
  return keys;
}

std::string textOf(const JsonObject& object) {
  return mr_JSONStringWithError(object).value_or("(no form)");
}

std::shared_ptr<QNTestServerProfile> vaultOfLogins() {
  auto vault = accountVault();
  vault->setUuid(sharedString("VAULT"));
  vault->setProfileName("Family");
  auto category = std::make_shared<QNTestCategory>("001", "Login");
  category->itsPluralName = "Logins";
  vault->addCategory(category);
  return vault;
}

QNSampleItemRef loginIn(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = newItem(vault);
  item->setUuid(sharedString("ITEM"));
  item->setCategoryUUID("001");
  item->setTitle("Library");
  item->setCreatedAt(1'700'000'000);
  item->setUpdatedAt(1'700'000'001);
  return item;
}

TEST(QNItemSpotlight, TellsItsKeysInOrder) {
  const QNScopedLanguage language("en");
  const auto vault = vaultOfLogins();
  vault->setAccountName("The Smiths");
  const auto item = loginIn(vault);
  item->addURLString("https://b.example/x");
  item->addURLString("a.example");

  EXPECT_EQ(textOf(item->spotlightMetadata()),
            R"({"uuid":"ITEM","profileUUID":"VAULT","vaultUUID":"VAULT","vaultName":"Family",)"
            R"("categorySingularName":"Login","categoryPluralName":"Logins",)"
            R"("categoryUUID":"001","itemTitle":"Library","itemDescription":"Login from Family",)"
            R"("createdAt":1700000000,"modifiedAt":1700000001,)"
            R"("websiteURLs":["https://b.example/x","a.example"],"accountName":"The Smiths"})");
}

TEST(QNItemSpotlight, HasAConstantForEachKey) {
  const auto vault = vaultOfLogins();
  vault->setAccountName("The Smiths");
  const auto item = loginIn(vault);
  item->addURLString("a.example");

  EXPECT_THAT(
      keysOf(item->spotlightMetadata()),
      ElementsAre(QNMetadataItemUUID, QNMetadataItemProfileUUID, QNMetadataItemVaultUUID,
                  QNMetadataItemVaultName, QNMetadataItemCategorySingularName,
                  QNMetadataItemCategoryPluralName, QNMetadataItemCategoryUUID, QNMetadataItemTitle,
                  QNMetadataItemDescription, QNMetadataItemCreatedAt, QNMetadataItemModifiedAt,
                  QNMetadataItemWebsiteURLs, QNMetadataItemAccountName));
}

TEST(QNItemSpotlight, WithoutAddressesHasNoListOfThem) {
  const auto metadata = loginIn(vaultOfLogins())->spotlightMetadata();

  EXPECT_FALSE(metadata.contains("websiteURLs"));
  EXPECT_TRUE(metadata.contains("modifiedAt"));
}

TEST(QNItemSpotlight, LeavesOutAddressesThatDoNotOpen) {
  const auto item = loginIn(vaultOfLogins());
  const auto damaged = std::make_shared<QNItemURL>(QNExisting{3});
  damaged->setProfile(item->profile());
  damaged->setOverviewData(Bytes(64, 1));
  item->addURL(damaged);
  const MRCapturingSink sink;

  EXPECT_FALSE(item->spotlightMetadata().contains("websiteURLs"));
  item->addURLString("a.example");

  EXPECT_EQ(jsonText(item->spotlightMetadata().if_contains("websiteURLs")), R"(["a.example"])");
}

TEST(QNItemSpotlight, WithoutLoadedDetailsHasNoAddressesAndSaysSo) {
  const auto vault = vaultOfLogins();
  const auto row = loginIn(vault);
  row->addURLString("a.example");
  save(*row);
  const auto item = listed(*row, vault);
  const MRCapturingSink sink;

  const auto metadata = item->spotlightMetadata();

  EXPECT_FALSE(metadata.contains("websiteURLs"));
  EXPECT_EQ(metadata.at("itemTitle"), Json("Library"));
  EXPECT_THAT(assertions(sink), ElementsAre("Item URLs must be loaded"));
}

TEST(QNItemSpotlight, NamesNoAccountThatHasNoName) {
  const auto vault = vaultOfLogins();
  const auto item = loginIn(vault);

  EXPECT_FALSE(item->spotlightMetadata().contains("accountName"));
  vault->setAccountName("");

  EXPECT_FALSE(item->spotlightMetadata().contains("accountName"));
}

TEST(QNItemSpotlight, NamesTheAccountOfAnAccountVaultAlone) {
  const auto vault = vaultOfLogins();
  vault->setAccountName("The Smiths");
  vault->setProfileType(kProfileTypeMasterUnlock);
  const auto item = std::make_shared<QNSampleItem>(initNew);
  item->setProfile(vault);

  EXPECT_FALSE(item->spotlightMetadata().contains("accountName"));
  EXPECT_FALSE(loginIn(localVault())->spotlightMetadata().contains("accountName"));
}

TEST(QNItemSpotlight, ShowsALocalVaultsNameToPeople) {
  const QNScopedLanguage language("de");
  const auto vault = localVault();
  vault->setProfileName("default");
  vault->addCategory(std::make_shared<QNTestCategory>("001", "Login"));

  const auto metadata = loginIn(vault)->spotlightMetadata();

  EXPECT_EQ(metadata.at("vaultName"), Json("Primär"));
  EXPECT_EQ(metadata.at("itemDescription"), Json("Login aus Primär"));
}

TEST(QNItemSpotlight, IsEmptyTextsWhereNothingIsKnown) {
  const QNScopedLanguage language("en");
  const QNScopedClock clock(5);
  const auto item = std::make_shared<QNSampleItem>(initNew);

  EXPECT_EQ(textOf(item->spotlightMetadata()),
            R"({"uuid":"","profileUUID":"","vaultUUID":"","vaultName":"",)"
            R"("categorySingularName":"","categoryPluralName":"","categoryUUID":"",)"
            R"("itemTitle":"Unnamed","itemDescription":" from ","createdAt":5,"modifiedAt":0})");
}

// Expiry

using Date = std::optional<std::int64_t>;

Date expiryOf(std::string_view category, std::string_view field, const char* zone = "UTC") {
  const QNScopedTimeZone scopedZone(zone);
  const auto item = newItem(localVault());
  item->setCategoryUUID(std::string(category));
  item->setDetailsObject(jsonValue(R"([{"fields":[)" + std::string(field) + "]}]"),
                         kDetailsSections);
  const auto date = item->expirationDate();
  return date ? Date(date->time_since_epoch().count()) : Date();
}

constexpr std::int64_t kFirstOfFebruary2024 = 1706745600;  // GNU date, UTC
constexpr std::int64_t kLastOfFebruary2024 = 1709164800;

TEST(QNItemExpiry, OfACardIsTheLastDayOfItsMonth) {
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":202402})"), kLastOfFebruary2024);
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":202302})"), 1677542400);
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":202412})"), 1735603200);
}

TEST(QNItemExpiry, OfAnotherMonthIsItsFirstDay) {
  const std::pair<std::string_view, std::string> kinds[] = {
      {"106", "expiry_date"}, {"103", "expiry_date"}, {"104", "expires"}, {"105", "expiry_date"}};
  for (const auto& [category, identifier] : kinds) {
    EXPECT_EQ(expiryOf(category, R"({"k":"monthYear","n":")" + identifier + R"(","v":202402})"),
              kFirstOfFebruary2024)
        << category;
  }
}

TEST(QNItemExpiry, IsADayOfTheUsersTimeZone) {
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":202402})", "America/Los_Angeles"),
            kLastOfFebruary2024 + 8 * 3600);
  EXPECT_EQ(expiryOf("106", R"({"k":"monthYear","n":"expiry_date","v":202402})", "Asia/Tokyo"),
            kFirstOfFebruary2024 - 9 * 3600);
}

TEST(QNItemExpiry, OfAYearOfTwoDigitsIsInTheYearThatTheFieldShows) {
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":2402})"), kLastOfFebruary2024);
}

TEST(QNItemExpiry, IsThatOfADateField) {
  EXPECT_EQ(expiryOf("106", R"({"k":"date","n":"expiry_date","v":1700000000})"), 1'700'000'000);
  EXPECT_EQ(expiryOf("002", R"({"k":"date","n":"expiry","v":1})"), 1);
}

TEST(QNItemExpiry, IsNothingForADateThatIsNotAbove0) {
  EXPECT_EQ(expiryOf("106", R"({"k":"date","n":"expiry_date","v":0})"), std::nullopt);
  EXPECT_EQ(expiryOf("106", R"({"k":"date","n":"expiry_date","v":-1})"), std::nullopt);
  EXPECT_EQ(expiryOf("106", R"({"k":"date","n":"expiry_date"})"), std::nullopt);
}

TEST(QNItemExpiry, IsNothingWithoutAMonthOrAYear) {
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":202400})"), std::nullopt);
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":2})"), std::nullopt);
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry","v":-202402})"), std::nullopt);
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expiry"})"), std::nullopt);
}

TEST(QNItemExpiry, IsNothingForAnyOtherField) {
  EXPECT_EQ(expiryOf("002", R"({"k":"string","n":"expiry","v":"202402"})"), std::nullopt);
  EXPECT_EQ(expiryOf("002", R"({"k":"monthYear","n":"expires","v":202402})"), std::nullopt);
  EXPECT_EQ(expiryOf("104", R"({"k":"monthYear","n":"expiry_date","v":202402})"), std::nullopt);
}

TEST(QNItemExpiry, IsNothingInAnyOtherCategory) {
  for (const std::string_view category : {"001", "004", "100", "107", "777", ""}) {
    EXPECT_EQ(expiryOf(category, R"({"k":"date","n":"expiry_date","v":1700000000},)"
                                 R"({"k":"date","n":"expiry","v":1700000000},)"
                                 R"({"k":"date","n":"expires","v":1700000000})"),
              std::nullopt)
        << category;
  }
}

TEST(QNItemExpiry, IsNothingWithoutACategory) {
  EXPECT_EQ(newItem(localVault())->expirationDate(), std::nullopt);
}

// Filling

QNSampleItemRef itemWithAlias() {
  auto item = newItem(localVault());
  item->setDetailsObject(
      jsonValue(
          R"([{"fields":[{"k":"email","n":"a","v":"alias@example.com","a":{"provider":"f"}}]}])"),
      kDetailsSections);
  return item;
}

TEST(QNItemFilling, UsesTheUsername) {
  const auto item = itemWithAlias();
  item->name = "ann";

  EXPECT_EQ(item->fillableUsername(), "ann");
}

TEST(QNItemFilling, WithoutAUsernameUsesTheAlias) {
  const auto item = itemWithAlias();
  EXPECT_EQ(item->fillableUsername(), "alias@example.com");

  item->name = "";

  EXPECT_EQ(item->fillableUsername(), "alias@example.com");
}

TEST(QNItemFilling, WithNeitherHasNoUsername) {
  EXPECT_EQ(newItem(localVault())->fillableUsername(), std::nullopt);
}

}  // namespace
}  // namespace quillon
