#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

TEST(QNItemOverview, AnItemWithoutATitleIsUnnamed) {
  EXPECT_EQ(newItem(localVault())->title(), "Unnamed");
}

TEST(QNItemOverview, UnnamedIsSaidInTheUsersLanguage) {
  auto& localization = QNLocalization::sharedLocalization();
  const std::string before = localization.language();
  const auto item = newItem(localVault());

  localization.setLanguage("de");
  const std::string german = item->title();
  localization.setLanguage(before);

  EXPECT_EQ(german, "Unbenannt");
}

TEST(QNItemOverview, ATitleThatIsNoTextIsUnnamed) {
  const auto item = newItem(localVault());

  item->setOverviewObject(Json(5), kOverviewTitle);

  EXPECT_EQ(item->title(), "Unnamed");
}

TEST(QNItemOverview, AnEmptyTitleIsATitle) {
  const auto item = newItem(localVault());

  item->setTitle("");

  EXPECT_EQ(item->title(), "");
}

TEST(QNItemOverview, AnEqualTitleDirtiesNothing) {
  const auto item = newItem(localVault());
  item->setTitle("T");
  item->didSave();

  item->setTitle("T");
  EXPECT_FALSE(item->dirtyRow());
  item->setTitle(std::nullopt);

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(item->overviewObjectForKey(kOverviewTitle), nullptr);
}

TEST(QNItemOverview, TheTitleOfAListedItemOpensTheOverviewAlone) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTitle("T");
  save(*row);
  const auto item = opened(*row, vault);
  const auto unwrapped = vault->numberOfItemKeysUnwrapped();

  EXPECT_EQ(item->title(), "T");

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), unwrapped);
}

TEST(QNItemOverview, TheSubtitleStandsAsItIs) {
  const auto item = newItem(localVault());
  EXPECT_EQ(item->additionalInformation(), std::nullopt);

  item->setAdditionalInformation("S");

  EXPECT_EQ(item->additionalInformation(), "S");
  EXPECT_EQ(item->overviewTextForKey("ainfo"), "S");
}

TEST(QNItemOverview, TheBaseKeepsItsSubtitleOrShowsAnEmptyOne) {
  const auto item = newItem(localVault());
  EXPECT_EQ(item->_additionalInformation(), "");

  item->setAdditionalInformation("S");

  EXPECT_EQ(item->_additionalInformation(), "S");
}

TEST(QNItemOverview, AnItemWithoutFieldsHasNoMailAlias) {
  EXPECT_EQ(newItem(localVault())->fastmailAlias(), std::nullopt);
}

TEST(QNItemOverview, TheSectionIsTheFirstLetterOfTheTitle) {
  for (const auto& [title, letter] : std::vector<std::pair<const char*, const char*>>{
           {"bank", "B"}, {"7eleven", "#"}, {"€uro", "#"}, {"", "#"}, {"élan", "É"}}) {
    const auto item = newItem(localVault());
    item->setTitle(title);

    EXPECT_EQ(item->sectionName(), letter) << title;
  }
}

TEST(QNItemOverview, TheSectionStaysUntilASaveMakesItAnew) {
  const auto item = newItem(localVault());
  item->setTitle("bank");
  EXPECT_EQ(item->sectionName(), "B");

  item->setTitle("shop");
  EXPECT_EQ(item->sectionName(), "B");
  item->willSave();

  EXPECT_EQ(item->sectionName(), "S");
}

TEST(QNItemOverview, ASectionThatWasSetStands) {
  const auto item = newItem(localVault());
  item->setTitle("bank");

  item->setSectionName("Z");

  EXPECT_EQ(item->sectionName(), "Z");
}

TEST(QNItemOverview, TheSectionOfATitleThatDoesNotOpenIsNotKept) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTitle("bank");
  save(*row);
  const auto item = listed(*row, vault);
  item->setOverviewData(Bytes(60, 1));
  const MRCapturingSink sink;
  EXPECT_EQ(item->sectionName(), "U");

  item->setOverviewData(row->overviewData());

  EXPECT_EQ(item->sectionName(), "B");
}

TEST(QNItemOverview, KnowsTheOwningUser) {
  const auto item = newItem(accountVault());
  EXPECT_EQ(item->h9UserUUID(), std::nullopt);

  item->setH9UserUUID("U");

  EXPECT_EQ(item->h9UserUUID(), "U");
  EXPECT_EQ(item->overviewTextForKey("h9UserUUID"), "U");
}

TEST(QNItemOverview, RemovesEachIconByItsKey) {
  const auto item = newItem(localVault());
  for (const auto key : {kCustomIcon, kCustomIconAttributes, kPendingCustomIcon}) {
    item->setOverviewObject(Json("x"), key);
  }

  item->removeQN4CustomIconData();
  EXPECT_EQ(item->overviewObjectForKey("icon"), nullptr);
  item->removeH9CustomIconData();
  EXPECT_EQ(item->overviewObjectForKey("icons"), nullptr);
  ASSERT_NE(item->overviewObjectForKey("pendingCustomIcon"), nullptr);
  item->removeH9PendingCustomIconData();

  EXPECT_EQ(item->overviewObjectForKey("pendingCustomIcon"), nullptr);
}

TEST(QNItemOverview, AChangeIsSeenByADomainThatWasAskedBefore) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setOverviewText("https://www.a.example/x", kOverviewURLString);
  save(*row);
  const auto item = listed(*row, vault);
  ASSERT_EQ(item->derivedDomain(), "www.a.example");
  ASSERT_EQ(item->nakedDomain(), "a.example");

  item->setOverviewText("https://www.b.example/x", kOverviewURLString);
  EXPECT_EQ(item->derivedDomain(), "www.a.example");
  item->setAdditionalInformation("S");

  EXPECT_EQ(item->derivedDomain(), "www.b.example");
  EXPECT_EQ(item->nakedDomain(), "b.example");
}

// The grouping letter

TEST(QNItemOverview, GroupsByTheFirstLetterInUpperCase) {
  EXPECT_EQ(QNItem::firstLetterOfString("apple"), "A");
  EXPECT_EQ(QNItem::firstLetterOfString("Zoo"), "Z");
  EXPECT_EQ(QNItem::firstLetterOfString("\xC3\xA9t\xC3\xA9"), "\xC3\x89");  // été
  EXPECT_EQ(QNItem::firstLetterOfString("e\xCC\x81t"), "E\xCC\x81");        // e and a mark
  EXPECT_EQ(QNItem::firstLetterOfString("\xE4\xB8\xAD\xE6\x96\x87"), "\xE4\xB8\xAD");
}

TEST(QNItemOverview, GroupsEverythingElseUnderTheNumberSign) {
  for (const char* const title : {"", "1 title", "#", " a", "\xF0\x9F\x98\x80", "\xFF", "-a"}) {
    EXPECT_EQ(QNItem::firstLetterOfString(title), "#") << title;
  }
}

TEST(QNItemOverview, UpperCaseFollowsTheUsersLocale) {
  const QNScopedLocale turkish("tr-TR");

  EXPECT_EQ(QNItem::firstLetterOfString("izmir"), "\xC4\xB0");  // İ
}

TEST(QNItemOverview, WhatAListShowsOpensNoKey) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTags({"a"});
  row->setURLString("https://a.example");
  save(*row);
  const auto item = opened(*row, vault);
  const auto before = vault->numberOfItemKeysUnwrapped();

  EXPECT_EQ(item->tags(), std::set<std::string>{"a"});
  EXPECT_EQ(item->h9UserUUID(), std::nullopt);
  EXPECT_EQ(item->passwordStrength(), 0);

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before);
}

TEST(QNItemOverview, ClearingTheTagsStoresAnEmptyList) {
  const auto item = newItem(localVault());
  item->setTags({"a"});
  item->didSave();

  item->setTags({});

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_TRUE(item->tags().empty());
  EXPECT_EQ(jsonText(item->overviewObjectForKey("tags")), "[]");
}

// Mail alias

constexpr std::string_view kAlias =
    R"([{"fields":[{"k":"email","n":"e","v":"me@example.com"},)"
    R"({"k":"email","n":"a","v":"alias@example.com","a":{"provider":"f"}}]}])";

TEST(QNItemOverview, WithoutAUsernameShowsTheMailAlias) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(kAlias), kDetailsSections);

  EXPECT_EQ(item->fastmailAlias(), "alias@example.com");
  EXPECT_EQ(item->_additionalInformation(), "alias@example.com");
  item->name = "";
  EXPECT_EQ(item->fastmailAlias(), "alias@example.com");
  item->name = "ann";

  EXPECT_EQ(item->fastmailAlias(), std::nullopt);
  EXPECT_EQ(item->_additionalInformation(), "");
}

TEST(QNItemOverview, WithoutAFieldOfAnAliasHasNone) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(R"([{"fields":[{"k":"email","n":"a","v":"x"}]}])"),
                         kDetailsSections);

  EXPECT_EQ(item->fastmailAlias(), std::nullopt);
}

}  // namespace
}  // namespace quillon
