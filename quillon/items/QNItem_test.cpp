#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/touchpoints/QNItemSpecifier.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::string_view kMustBeImplemented = "Must be implemented";

// Identity

TEST(QNItem, ANewOneHasNoUuidUntilItHasAProfile) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  ASSERT_EQ(item->uuid(), nullptr);

  item->setProfile(localVault());

  ASSERT_NE(item->uuid(), nullptr);
  EXPECT_EQ(item->uuid()->size(), 36u);
}

TEST(QNItem, ANewOneIsMadeNow) {
  const QNScopedClock clock(1'700'000'000);

  const auto item = std::make_shared<QNSampleItem>(initNew);

  EXPECT_EQ(item->createdAt(), 1'700'000'000u);
  EXPECT_TRUE(item->isMutable());
  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(jsonText(item->detailsObjectForKey(kDetailsSections)), "(none)");
}

TEST(QNItem, AShellHasOnlyItsRow) {
  const auto item = std::make_shared<QNSampleItem>(QNExisting{5});

  EXPECT_EQ(item->oid(), 5u);
  EXPECT_EQ(item->createdAt(), 0u);
  EXPECT_TRUE(item->isMutable());
  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItem, IsNeitherTombstoneNorFolder) {
  const auto item = std::make_shared<QNSampleItem>(initNew);

  EXPECT_EQ(item->objectType(), QNObjectType::item);
  EXPECT_FALSE(item->isTombstone());
  EXPECT_FALSE(item->isFolder());
}

TEST(QNItem, MakesALongUuidForALocalVaultAndAShortOneForAnAccount) {
  const auto local = QNItem::uuidForProfileType(kProfileTypeLocalVault);
  const auto account = QNItem::uuidForProfileType(kProfileTypeAccountVault);

  ASSERT_NE(local, nullptr);
  ASSERT_NE(account, nullptr);
  EXPECT_EQ(local->size(), 36u);
  EXPECT_EQ(account->size(), 22u);
}

TEST(QNItem, MakesNoUuidForAnotherTypeOfProfile) {
  const MRCapturingSink sink;

  EXPECT_EQ(QNItem::uuidForProfileType(4), nullptr);
  EXPECT_EQ(QNItem::uuidForProfileType(0), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre("Unknown profile type: 4", "Unknown profile type: 0"));
}

TEST(QNItem, TakesAUuidWithoutAProfileButSaysSo) {
  const MRCapturingSink sink;
  const auto item = std::make_shared<QNSampleItem>(initNew);

  item->setUuid(sharedString("U"));

  EXPECT_EQ(*item->uuid(), "U");
  EXPECT_THAT(assertions(sink), ElementsAre("Can't set uuid without first setting profile(Type)"));
}

TEST(QNItem, AnEqualUuidChangesNothing) {
  const auto item = newItem(localVault());
  const auto before = item->uuid();

  item->setUuid(sharedString(*before));

  EXPECT_EQ(item->uuid(), before);
}

TEST(QNItem, UpdatesItsUuidOnlyIfTheProfileTypeMatches) {
  const auto item = newItem(localVault());
  const auto before = item->uuid();

  item->updateUuid(sharedString("A"), kProfileTypeAccountVault);
  EXPECT_EQ(item->uuid(), before);
  item->updateUuid(sharedString("B"), kProfileTypeLocalVault);

  EXPECT_EQ(*item->uuid(), "B");
}

TEST(QNItem, TellsARejectedUuidWhileStatusLogsAreAllowed) {
  const auto item = newItem(localVault());
  const std::string before = *item->uuid();
  const MRCapturingSink sink;

  item->updateUuid(sharedString("A"), kProfileTypeAccountVault);
  MRLogger::sharedLogger().allowStatus(DEBUG_DATABASE);
  item->updateUuid(sharedString("B"), kProfileTypeAccountVault);
  item->updateUuid(nullptr, kProfileTypeAccountVault);
  MRLogger::sharedLogger().allowStatus(0);

  EXPECT_THAT(sink.texts(MRLogKind::status),
              ElementsAre("Rejecting update of uuid from '" + before +
                              "' to 'B' as profile type (2) did not match check value of (3)",
                          "Rejecting update of uuid from '" + before +
                              "' to '(null)' as profile type (2) did not match check value of "
                              "(3)"));
}

TEST(QNItem, RegeneratesItsUuidInTheFormOfItsVault) {
  const auto item = newItem(accountVault());
  const auto before = item->uuid();

  item->regenerateUuid();

  EXPECT_NE(*item->uuid(), *before);
  EXPECT_EQ(item->uuid()->size(), 22u);
}

TEST(QNItem, IsEqualByUuid) {
  const auto vault = localVault();
  const auto a = newItem(vault);
  const auto b = newItem(vault);
  EXPECT_FALSE(a->isEqual(*b));

  b->setUuid(sharedString(*a->uuid()));

  EXPECT_TRUE(a->isEqual(*b));
  EXPECT_EQ(a->hash(), b->hash());
}

TEST(QNItem, TwoWithoutUuidAreEqual) {
  const QNItem a(initNew);
  const QNItem b(initNew);

  EXPECT_TRUE(a.isEqual(b));
  EXPECT_EQ(a.hash(), b.hash());
}

TEST(QNItem, IsEqualToTheItemWithTheSameUuidObjectAndTimeAndVault) {
  const auto vault = localVault();
  const auto a = newItem(vault);
  const auto b = listed(*a, vault);
  ASSERT_TRUE(a->isEqualToItem(*b));

  b->setUpdatedAt(a->updatedAt() + 1);

  EXPECT_FALSE(a->isEqualToItem(*b));
}

TEST(QNItem, IsNotEqualToTheItemWithAnEqualUuidInAnotherStringObject) {
  const auto vault = localVault();
  const auto a = newItem(vault);
  const auto b = listed(*a, vault);
  b->setUuid(nullptr);

  b->setUuid(sharedString(*a->uuid()));

  ASSERT_EQ(*a->uuid(), *b->uuid());
  EXPECT_FALSE(a->isEqualToItem(*b));
}

TEST(QNItem, IsNotEqualToTheItemOfAVaultWithAnEqualUuidInAnotherStringObject) {
  const auto vault = localVault();
  const auto twin = localVault();
  twin->setUuid(sharedString(*vault->uuid()));
  const auto a = newItem(vault);
  const auto b = listed(*a, twin);
  ASSERT_EQ(a->uuid(), b->uuid());

  EXPECT_FALSE(a->isEqualToItem(*b));
}

TEST(QNItem, ALocalRevisionIsTheTransactionTime) {
  const auto vault = localVault();
  const auto a = newItem(vault);
  const auto b = newItem(vault);
  EXPECT_TRUE(a->isSameRevisionAsItem(*b));

  b->setTxTimestamp(3);

  EXPECT_FALSE(a->isSameRevisionAsItem(*b));
}

TEST(QNItem, AnAccountRevisionIsTheItemVersionAndTheEditCount) {
  const auto vault = accountVault();
  const auto a = newItem(vault);
  const auto b = newItem(vault);
  b->setTxTimestamp(3);
  EXPECT_TRUE(a->isSameRevisionAsItem(*b));

  a->h9ItemProperties()->setItemVersion(2);
  EXPECT_FALSE(a->isSameRevisionAsItem(*b));
  b->h9ItemProperties()->setItemVersion(2);
  EXPECT_TRUE(a->isSameRevisionAsItem(*b));
  b->h9ItemProperties()->setLocalEditCount(1);

  EXPECT_FALSE(a->isSameRevisionAsItem(*b));
}

TEST(QNItem, RevisionsOfDifferentGenerationsDiffer) {
  EXPECT_FALSE(newItem(localVault())->isSameRevisionAsItem(*newItem(accountVault())));
}

TEST(QNItem, RevisionsOfAnyOtherCommonTypeAreTheSame) {
  const auto a = std::make_shared<QNSampleItem>(initNew);
  const auto b = std::make_shared<QNSampleItem>(initNew);
  b->setTxTimestamp(9);

  EXPECT_TRUE(a->isSameRevisionAsItem(*b));
}

TEST(QNItem, IsAModifiedCopyIfTitleOrSubtitleDiffers) {
  const auto vault = localVault();
  const auto a = newItem(vault);
  const auto b = newItem(vault);
  EXPECT_FALSE(a->isModifiedCopyOf(*b));

  b->setTitle("T");
  EXPECT_TRUE(a->isModifiedCopyOf(*b));
  a->setTitle("T");
  a->setAdditionalInformation("S");

  EXPECT_TRUE(a->isModifiedCopyOf(*b));
}

TEST(QNItem, DescribesItselfByClassUuidRowAndAddress) {
  const auto item = newItem(localVault());
  item->_setOid(7);

  EXPECT_THAT(item->description(), StartsWith("<QNSampleItem-" + *item->uuid() + "-7 0x"));
  EXPECT_EQ(item->description(), item->descriptionForLogging());
}

TEST(QNItem, JsonHoldsTheOverview) {
  const auto item = newItem(localVault());
  item->setTitle("A title");

  const auto text = item->json();

  ASSERT_TRUE(text);
  const JsonObject read = jsonObject(*text);
  EXPECT_EQ(mr_validStringValueForKey(read.at("overview").get_object(), "title"), "A title");
}

TEST(QNItem, JsonOfWhatHasNoJsonFormIsNothingAndAnError) {
  const auto item = newItem(localVault());
  item->setTitle("\xff");
  const MRCapturingSink sink;

  EXPECT_EQ(item->json(), std::nullopt);

  EXPECT_THAT(errors(sink), ElementsAre("Failed to obtain JSON from item: " + item->description()));
}

TEST(QNItem, DescribesTheSizeOfWhatItHolds) {
  const auto item = newItem(localVault());
  item->setTitle("12345678");
  item->clearBackupKeys();
  item->setNotesPlain("1234");
  item->addURLString("https://example.com");

  EXPECT_EQ(item->descriptionWithSizeInformation(),
            item->description() +
                " \n\noverview: title 10\n\ndetails: notesPlain 6\n\nURL count: 1 19\n\n");
}

TEST(QNItem, DescribesNoSizesOfDetailsThatArentLoaded) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setTitle("T");
  save(*row);

  const std::string text = listed(*row, vault)->descriptionWithSizeInformation();

  EXPECT_THAT(text, HasSubstr("overview: title 3"));
  EXPECT_THAT(text, Not(HasSubstr("details")));
}

TEST(QNItem, KeepsItsSpecifierUntilItsUuidChanges) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  const auto first = item->itemSpecifier();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->uuid(), *item->uuid());
  EXPECT_EQ(first->profileUUID(), *vault->uuid());
  EXPECT_EQ(item->itemSpecifier(), first);

  item->regenerateUuid();

  EXPECT_EQ(item->itemSpecifier()->uuid(), *item->uuid());
}

// What a subclass answers

TEST(QNItem, TheBaseTakesNeitherUsernameNorPassword) {
  QNItem item(initNew);
  const MRCapturingSink sink;

  item.setUsername("u");
  item.setPassword("p");

  EXPECT_FALSE(item.hasUsernameOrPassword());
  EXPECT_EQ(item.username(), std::nullopt);
  EXPECT_FALSE(item.password());
  EXPECT_THAT(assertions(sink), ElementsAre(kMustBeImplemented, kMustBeImplemented));
}

TEST(QNItem, TheBaseHasNothingForLoginsAndTheClipboard) {
  QNItem item(initNew);

  EXPECT_FALSE(item.isCreatedByBrowserExtension());
  EXPECT_FALSE(item.clipboardValue());
  EXPECT_FALSE(item.hasLoginFields());
  EXPECT_FALSE(item.hasRevealableFields());
}

TEST(QNItem, AnEmptyUsernameOrPasswordIsNone) {
  const auto item = newItem(localVault());
  item->name = "";
  item->setPassword("");
  EXPECT_FALSE(item->hasUsernameOrPassword());

  item->setPassword("p");
  EXPECT_TRUE(item->hasPassword());
  EXPECT_TRUE(item->hasRevealableFields());
  EXPECT_TRUE(item->hasUsernameOrPassword());
  item->setPassword(std::nullopt);
  item->name = "u";

  EXPECT_TRUE(item->hasUsername());
  EXPECT_TRUE(item->hasUsernameOrPassword());
  EXPECT_FALSE(item->hasPassword());
}

// Favourites

TEST(QNItem, SetFaveIndexCapsAndDirtiesTheRow) {
  const auto item = newItem(localVault());
  item->didSave();

  item->setFaveIndex(3'000'000'000);

  EXPECT_EQ(item->faveIndex(), 2147483647u);
  EXPECT_TRUE(item->dirtyRow());
  EXPECT_FALSE(item->dirtyDisplayOrder());
}

TEST(QNItem, AnEqualFaveIndexDirtiesNothing) {
  const auto item = newItem(localVault());
  item->setFaveIndex(3'000'000'000);
  item->didSave();

  item->setFaveIndex(4'000'000'000);

  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItem, SetDisplayOrderStoresWithoutACapAndLeavesTheRowClean) {
  const auto item = newItem(localVault());
  item->didSave();

  item->setDisplayOrder(3'000'000'000);

  EXPECT_EQ(item->faveIndex(), 3'000'000'000u);
  EXPECT_EQ(item->displayOrder(), 3'000'000'000u);
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_TRUE(item->dirtyDisplayOrder());
}

TEST(QNItem, AnEqualDisplayOrderDirtiesNothing) {
  const auto item = newItem(localVault());
  item->setDisplayOrder(5);
  item->didSave();

  item->setDisplayOrder(5);

  EXPECT_FALSE(item->dirtyDisplayOrder());
}

TEST(QNItem, SortsBehindEveryFavouriteIfItIsNone) {
  const auto item = newItem(localVault());
  EXPECT_FALSE(item->isFavorite());
  EXPECT_EQ(item->favoriteSortDescriptorOrder(), 18446744073709551615u);

  item->setFaveIndex(QNItem::newItemFaveIndex());

  EXPECT_TRUE(item->isFavorite());
  EXPECT_EQ(item->favoriteSortDescriptorOrder(), 2147483647u);
}

// Scope

TEST(QNItem, OnlyTheScopeNeverIsNotRegular) {
  const auto item = newItem(localVault());
  EXPECT_TRUE(item->hasRegularScope());

  for (const std::string_view scope :
       {QNItemScopeAlways, QNItemScopeBasicAuth, QNItemScopeRegular}) {
    item->setScope(std::string(scope));
    EXPECT_TRUE(item->hasRegularScope()) << scope;
    EXPECT_TRUE(item->isShownInBrowser()) << scope;
  }
  item->setScope(std::string(QNItemScopeNever));

  EXPECT_TRUE(item->hasNeverScope());
  EXPECT_FALSE(item->isShownInBrowser());
}

TEST(QNItem, ShowingInTheBrowserSetsTheScope) {
  const auto item = newItem(localVault());

  item->setShownInBrowser(true);
  EXPECT_EQ(item->scope(), "Always");
  item->setShownInBrowser(false);

  EXPECT_EQ(item->scope(), "Never");
}

TEST(QNItem, TellsItsScopeInTheUsersLanguage) {
  const auto item = newItem(localVault());
  EXPECT_EQ(item->localizedScopeDescription(), "Suggest in browser");
  EXPECT_EQ(QNItem::localizedScopeDescriptionForValue("Always"), "Suggest in browser");

  item->setShownInBrowser(false);

  EXPECT_EQ(item->localizedScopeDescription(), "Never suggest in browser");
}

TEST(QNItem, TellsItsScopeInGerman) {
  QNLocalization& texts = QNLocalization::sharedLocalization();
  const std::string before = texts.language();

  texts.setLanguage("de");
  const std::string always = QNItem::localizedScopeDescriptionForValue("Always");
  const std::string never = QNItem::localizedScopeDescriptionForValue("Never");
  texts.setLanguage(before);

  EXPECT_EQ(always, "Im Browser vorschlagen");
  EXPECT_EQ(never, "Im Browser nie vorschlagen");
}

// Columns

TEST(QNItem, CategoryScopeAndFolderDirtyTheRowOnAChangeOnly) {
  const auto item = newItem(localVault());
  const std::pair<const char*, std::function<void(const char*)>> setters[] = {
      {"category", [&](const char* value) { item->setCategoryUUID(value); }},
      {"scope", [&](const char* value) { item->setScope(value); }},
      {"folder", [&](const char* value) { item->setFolderUUID(value); }},
  };
  for (const auto& [name, set] : setters) {
    item->didSave();
    set("A");
    EXPECT_TRUE(item->dirtyRow()) << name;
    item->didSave();
    set("A");
    EXPECT_FALSE(item->dirtyRow()) << name;
  }

  EXPECT_EQ(item->categoryUUID(), "A");
  EXPECT_EQ(item->scope(), "A");
  EXPECT_EQ(item->folderUUID(), "A");
}

TEST(QNItem, TheOtherColumnsArePlainStores) {
  const auto item = newItem(localVault());
  item->didSave();

  item->setFolderId(1);
  item->setCategoryId(2);
  item->setSectionName("S");
  item->setCreatedAt(3);
  item->setUpdatedAt(4);
  item->setTxTimestamp(5);
  item->setLastUsedTimestamp(6);
  item->setNumberOfTimesUsed(-7);
  item->setNumberOfAttachments(8);
  item->setInboxItem(true);
  item->setKey(QNAESKey::initWithRandomKey());

  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(item->folderId(), 1u);
  EXPECT_EQ(item->categoryId(), 2u);
  EXPECT_EQ(item->sectionName(), "S");
  EXPECT_EQ(item->createdAt(), 3u);
  EXPECT_EQ(item->updatedAt(), 4u);
  EXPECT_EQ(item->txTimestamp(), 5u);
  EXPECT_EQ(item->lastUsedTimestamp(), 6u);
  EXPECT_EQ(item->numberOfTimesUsed(), -7);
  EXPECT_EQ(item->numberOfAttachments(), 8);
  EXPECT_TRUE(item->inboxItem());
}

TEST(QNItem, ClearFolderDirtiesTheRowOnlyIfThereWasAFolder) {
  const auto item = newItem(localVault());
  item->setFolderId(3);
  item->didSave();

  item->clearFolder();
  EXPECT_FALSE(item->dirtyRow());
  item->setFolderUUID("F");
  item->didSave();
  item->clearFolder();

  EXPECT_TRUE(item->dirtyRow());
}

TEST(QNItem, StoredNamesNeverChange) {
  const std::pair<std::string_view, std::string_view> names[] = {
      {kOverviewTitle, "title"},
      {kOverviewAdditionalInformation, "ainfo"},
      {kOverviewURLString, "url"},
      {QNItemOverviewPasswordStrengthKey, "ps"},
      {QNItemOverviewPasswordBitsEntropyKey, "pbe"},
      {QNItemOverviewPasswordPasswordGeneratedByRNGKey, "pgrng"},
      {kTags, "tags"},
      {QNItemOverviewH9UserUUIDKey, "h9UserUUID"},
      {kCustomIcon, "icon"},
      {kCustomIconAttributes, "icons"},
      {kPendingCustomIcon, "pendingCustomIcon"},
      {kDetailsNotesPlain, "notesPlain"},
      {kDetailsSections, "sections"},
      {kDetailsPasswordHistory, "passwordHistory"},
      {kDetailsBackupKeys, "backupKeys"},
      {kDetailsFields, "fields"},
      {kDetailsHtmlForm, "htmlForm"},
      {kDetailsPassword, "password"},
      {QNItemScopeAlways, "Always"},
      {QNItemScopeBasicAuth, "BasicAuth"},
      {QNItemScopeNever, "Never"},
      {QNItemScopeRegular, "Regular"},
  };
  for (const auto& [name, stored] : names) EXPECT_EQ(name, stored);
}

TEST(QNItem, ClearFolderTakesBothReferences) {
  const auto item = newItem(localVault());
  item->setFolderId(4);
  item->setFolderUUID("F");

  item->clearFolder();

  EXPECT_EQ(item->folderId(), 0u);
  EXPECT_EQ(item->folderUUID(), std::nullopt);
}

TEST(QNItem, AddedToACacheItIsNoLongerMutable) {
  const auto item = newItem(localVault());

  item->addedToCache();

  EXPECT_FALSE(item->isMutable());
}

TEST(QNItem, ClearingTheCachesLeavesItemsAlone) {
  const auto item = newItem(localVault());
  item->setTitle("T");

  QNItem::clearCaches();

  EXPECT_EQ(item->title(), "T");
}

}  // namespace
}  // namespace quillon
