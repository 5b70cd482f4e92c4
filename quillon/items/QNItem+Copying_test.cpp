#include "quillon/files/H9Document.h"
#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/vaults/H9UserAccount.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::shared_ptr<QNLogin> savedLogin(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = std::make_shared<QNLogin>(initNew);
  item->setProfile(vault);
  item->setTitle("Träger");
  item->setPassword("secret");
  item->setNotesPlain("notes");
  item->addURLString("https://a.example/", "A");
  item->addURLString("https://b.example/");
  item->URLAtIndex(0)->_setOid(21);
  item->URLAtIndex(1)->_setOid(22);
  item->setFolderId(3);
  item->setFolderUUID("FOLDER");
  item->setFaveIndex(200);
  item->setCreatedAt(1'600'000'000);
  item->setUpdatedAt(1'700'000'000);
  save(*item);
  return item;
}

// An item as its store leaves it, addresses included.
std::shared_ptr<QNLogin> cleanLogin(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = savedLogin(vault);
  for (const auto& url : item->URLs()) {
    url->willSave();
    url->didSave();
  }
  return item;
}

using Forms = std::vector<std::optional<Bytes>>;

Forms sealedFormsOf(QNItem& item) {
  Forms forms{item.overviewData(), item.detailsData()};
  for (const auto& url : item.URLs()) forms.push_back(url->overviewData());
  return forms;
}

std::shared_ptr<QNGenericProfile> vaultOfType(std::uint64_t type) {
  if (type == kProfileTypeLocalVault) return localVault();
  return accountVault();
}

// Copies

TEST(QNItemCopy, IsTheSameItemWithoutARow) {
  const auto vault = localVault();
  const auto item = savedLogin(vault);

  const auto copy = item->makeCopy();

  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, item);
  EXPECT_EQ(copy->className(), "QNLogin");
  EXPECT_EQ(copy->oid(), 0u);
  EXPECT_EQ(*copy->uuid(), *item->uuid());
  EXPECT_EQ(copy->profile(), vault);
  EXPECT_EQ(copy->title(), "Träger");
  EXPECT_EQ(copy->notesPlain(), "notes");
  EXPECT_TRUE(copy->password()->equals("secret"));
  EXPECT_EQ(copy->categoryUUID(), "001");
  EXPECT_EQ(copy->folderId(), 3u);
  EXPECT_EQ(copy->folderUUID(), "FOLDER");
  EXPECT_EQ(copy->faveIndex(), 200u);
  EXPECT_EQ(copy->createdAt(), 1'600'000'000u);
  EXPECT_EQ(copy->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(copy->key()->rawKeyData(), item->key()->rawKeyData());
}

TEST(QNItemCopy, OpensNothing) {
  const auto vault = localVault();
  const auto row = savedLogin(vault);
  const auto item = std::make_shared<QNLogin>(QNExisting{11});
  item->setProfile(vault);
  item->setUuid(row->uuid());
  item->setOverviewData(row->overviewData());
  item->setEncryptedKey(row->encryptedKey());
  item->setDetailsData(row->detailsData());
  item->markDetailsLoaded();
  item->markAttachmentsLoaded();
  item->didLoad();
  const auto before = vault->numberOfItemKeysUnwrapped();

  const auto copy = item->makeCopy();

  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->detailsData(), row->detailsData());
  EXPECT_FALSE(item->overviewIsParsed());
  EXPECT_FALSE(copy->overviewIsParsed());
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before);
}

TEST(QNItemCopy, HasAddressesOfItsOwnWithoutRows) {
  const auto item = savedLogin(localVault());
  item->removeURLAtIndex(1);
  ASSERT_EQ(item->deletedURLs().size(), 1u);

  const auto copy = item->makeCopy();

  ASSERT_EQ(copy->numberOfURLs(), 1u);
  EXPECT_NE(copy->URLAtIndex(0), item->URLAtIndex(0));
  EXPECT_EQ(copy->URLAtIndex(0)->URLString(), "https://a.example/");
  EXPECT_EQ(copy->URLAtIndex(0)->label(), "A");
  EXPECT_EQ(copy->URLAtIndex(0)->oid(), 0u);
  EXPECT_TRUE(copy->URLAtIndex(0)->dirtyRow());
  EXPECT_EQ(copy->URLAtIndex(0)->item(), copy);
  EXPECT_THAT(copy->deletedURLs(), IsEmpty());
  EXPECT_EQ(item->URLAtIndex(0)->oid(), 21u);
  EXPECT_EQ(item->deletedURLs().size(), 1u);
}

TEST(QNItemCopy, OfADirtyItemHasItsChanges) {
  const auto item = savedLogin(localVault());
  item->setNotesPlain("changed");

  EXPECT_EQ(item->makeCopy()->notesPlain(), "changed");
}

TEST(QNItemCopy, SharesNothingWithItsSource) {
  const auto item = savedLogin(localVault());
  const auto copy = item->makeCopyWithoutAttachments();

  copy->setTitle("other");
  copy->setNotesPlain("other");

  EXPECT_EQ(item->title(), "Träger");
  EXPECT_EQ(item->notesPlain(), "notes");
}

TEST(QNItemCopy, OfAnAccountItemHasEmptyProperties) {
  const auto vault = accountVault();
  const auto item = savedLogin(vault);
  item->h9ItemProperties()->setItemVersion(7);

  const auto copy = item->makeCopy();

  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(*copy->uuid(), *item->uuid());
  EXPECT_EQ(copy->notesPlain(), "notes");
  EXPECT_FALSE(rootOf(archiveOf(*copy)).contains("h9ItemProperties"));
  EXPECT_EQ(copy->h9ItemProperties()->itemVersion(), 0u);
  EXPECT_EQ(item->h9ItemProperties()->itemVersion(), 7u);
}

TEST(QNItemCopy, OfAnItemThatIsNotLoadedIsNothingAndAReport) {
  const auto vault = localVault();
  const auto item = opened(*savedLogin(vault), vault);
  item->markLoadingAttachments();
  const std::string text = "Attempt to duplicate an item which is not loaded.";
  const MRCapturingSink sink;

  EXPECT_EQ(item->makeCopy(), nullptr);
  EXPECT_EQ(item->makeCopyWithoutAttachments(), nullptr);
  EXPECT_EQ(item->makeDuplicateWithoutAttachments(), nullptr);

  EXPECT_THAT(assertions(sink), ElementsAre(text, text, text));
}

TEST(QNItemCopy, OfWhatCannotBeArchivedIsNothing) {
  const auto item = savedLogin(localVault());
  item->setScope("\xff");

  EXPECT_EQ(item->makeCopy(), nullptr);
}

TEST(QNItemCopy, OfACleanItemHasTheChangesOfItsFields) {
  const auto item = cleanLogin(localVault());
  const Json sections =
      jsonValue(R"([{"name":"s","fields":[{"n":"1","k":"string","t":"","v":"former"}]}])");
  item->addFieldSections(QNItem::fieldSectionsFromJSON(&sections));
  save(*item);
  item->setStringFieldValue("changed", "1");
  ASSERT_FALSE(item->dirtyRow());

  const auto copy = item->makeCopy();

  ASSERT_NE(copy, nullptr);
  EXPECT_THAT(jsonText(copy->detailsObjectForKey(kDetailsSections)), HasSubstr("changed"));
}

// Copies of what can't be sealed anew

class QNItemCopyInALockedVault : public testing::TestWithParam<std::uint64_t> {
 protected:
  std::shared_ptr<QNGenericProfile> _vault = vaultOfType(GetParam());
  std::shared_ptr<QNLogin> _item = cleanLogin(_vault);
  Forms _sealed = sealedFormsOf(*_item);
};

TEST_P(QNItemCopyInALockedVault, OfACleanItemHasItsSealedForms) {
  _vault->lock();

  const auto copy = _item->makeCopy();

  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(sealedFormsOf(*copy), _sealed);
}

TEST_P(QNItemCopyInALockedVault, OfADirtyItemIsNothingAndLeavesTheItem) {
  _item->setTitle("changed");
  _item->setNotesPlain("changed");
  _vault->lock();
  const MRCapturingSink sink;

  EXPECT_EQ(_item->makeCopy(), nullptr);
  EXPECT_EQ(_item->makeCopyWithoutAttachments(), nullptr);

  EXPECT_TRUE(sink.records().empty());
  EXPECT_EQ(sealedFormsOf(*_item), _sealed);
  EXPECT_EQ(_item->title(), "changed");
}

TEST_P(QNItemCopyInALockedVault, OfADirtyAddressIsNothingAndLeavesTheAddress) {
  _item->URLAtIndex(1)->setLabel("changed");
  ASSERT_FALSE(_item->dirtyRow());
  _vault->lock();

  EXPECT_EQ(_item->makeCopy(), nullptr);

  EXPECT_EQ(sealedFormsOf(*_item), _sealed);
}

TEST_P(QNItemCopyInALockedVault, OfAChangedFieldIsNothing) {
  const auto section = _item->fieldSectionWithName("s", "S");
  ASSERT_NE(section, nullptr);
  ASSERT_FALSE(_item->dirtyRow());
  _vault->lock();

  EXPECT_EQ(_item->makeCopy(), nullptr);

  EXPECT_EQ(sealedFormsOf(*_item), _sealed);
}

TEST_P(QNItemCopyInALockedVault, IsNoDuplicate) {
  _vault->lock();
  const MRCapturingSink sink;

  EXPECT_EQ(_item->makeDuplicateWithoutAttachments(), nullptr);

  EXPECT_EQ(sealedFormsOf(*_item), _sealed);
}

INSTANTIATE_TEST_SUITE_P(Generations, QNItemCopyInALockedVault,
                         testing::Values(kProfileTypeLocalVault, kProfileTypeAccountVault));

TEST(QNItemCopy, OfATextThatIsNotUTF8IsNothing) {
  const auto titled = cleanLogin(localVault());
  const auto noted = cleanLogin(localVault());
  const auto labelled = cleanLogin(localVault());
  titled->setTitle("\xff");
  noted->setNotesPlain("\xff");
  labelled->URLAtIndex(0)->setLabel("\xff");
  const MRCapturingSink sink;

  for (const auto& item : {titled, noted, labelled}) {
    const Forms sealed = sealedFormsOf(*item);
    EXPECT_EQ(item->makeCopy(), nullptr);
    EXPECT_EQ(item->makeDuplicateWithoutAttachments(), nullptr);
    const std::size_t damaged = item == titled ? 0 : item == noted ? 1 : 2;
    EXPECT_EQ(sealedFormsOf(*item)[damaged], sealed[damaged]);
  }
}

TEST(QNItemCopy, OfANewItemWithoutAVaultIsNothing) {
  const auto item = std::make_shared<QNLogin>(initNew);
  item->setTitle("T");
  const MRCapturingSink sink;

  EXPECT_EQ(item->makeCopy(), nullptr);

  EXPECT_TRUE(sink.records().empty());
  EXPECT_EQ(item->title(), "T");
}

// Duplicates

TEST(QNItemDuplicate, IsANewItemWithATitleThatSaysSo) {
  QNLocalization::sharedLocalization().setLanguage("en");
  const QNScopedClock clock(1'800'000'000);
  const auto item = savedLogin(localVault());

  const auto duplicate = item->makeDuplicateWithoutAttachments();

  ASSERT_NE(duplicate, nullptr);
  EXPECT_EQ(duplicate->oid(), 0u);
  EXPECT_NE(*duplicate->uuid(), *item->uuid());
  EXPECT_EQ(duplicate->uuid()->size(), 36u);
  EXPECT_EQ(duplicate->title(), "Träger - Copy");
  EXPECT_EQ(duplicate->createdAt(), 1'800'000'000u);
  EXPECT_EQ(duplicate->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(duplicate->notesPlain(), "notes");
  EXPECT_EQ(item->title(), "Träger");
}

TEST(QNItemDuplicate, HasItsTitleInTheUsersLanguage) {
  const auto item = savedLogin(localVault());
  QNLocalization::sharedLocalization().setLanguage("de");

  const auto duplicate = item->makeDuplicateWithoutAttachments();
  QNLocalization::sharedLocalization().setLanguage("en");

  EXPECT_EQ(duplicate->title(), "Träger – Kopie");
}

TEST(QNItemDuplicate, HasNoHistoryAndLeavesItsSourcesAlone) {
  const auto item = savedLogin(localVault());
  item->setPassword("second");
  save(*item);
  ASSERT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);

  const auto duplicate = item->makeDuplicateWithoutAttachments();
  save(*duplicate);

  EXPECT_EQ(duplicate->numberOfPreviouslyUsedPasswords(), 0u);
  EXPECT_EQ(duplicate->detailsObjectForKey("passwordHistory"), nullptr);
  EXPECT_TRUE(duplicate->password()->equals("second"));
  EXPECT_EQ(item->numberOfPreviouslyUsedPasswords(), 1u);
}

TEST(QNItemDuplicate, OfAnAccountItemHasAShortUuid) {
  const auto duplicate = savedLogin(accountVault())->makeDuplicateWithoutAttachments();

  ASSERT_NE(duplicate, nullptr);
  EXPECT_EQ(duplicate->uuid()->size(), 22u);
}

// Tombstones

TEST(QNItemMadeATombstone, HasTheRowAndTheKeyAndNothingElse) {
  const auto vault = localVault();
  const auto item = savedLogin(vault);
  const MRCapturingSink sink;

  const auto tombstone = item->makeTombstone();

  ASSERT_NE(tombstone, nullptr);
  EXPECT_EQ(tombstone->oid(), item->oid());
  EXPECT_EQ(*tombstone->uuid(), *item->uuid());
  EXPECT_EQ(tombstone->profile(), vault);
  EXPECT_EQ(tombstone->createdAt(), 1'600'000'000u);
  EXPECT_EQ(tombstone->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(toBytes(tombstone->encryptedKey()), toBytes(item->encryptedKey()));
  EXPECT_EQ(tombstone->key()->rawKeyData(), item->key()->rawKeyData());
  EXPECT_TRUE(tombstone->loaded());
  EXPECT_TRUE(tombstone->trashed());
  EXPECT_TRUE(tombstone->dirtyRow());
  EXPECT_TRUE(tombstone->overviewCopy()->empty());
  EXPECT_TRUE(tombstone->detailsCopy()->empty());
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemMadeATombstone, DeletesTheRowsOfTheAddresses) {
  const auto item = savedLogin(localVault());
  item->addURLString("https://c.example/");

  const auto tombstone = item->makeTombstone();

  EXPECT_THAT(tombstone->deletedURLs(), ElementsAre(item->URLAtIndex(0), item->URLAtIndex(1)));
  EXPECT_THAT(tombstone->URLs(), IsEmpty());
  EXPECT_EQ(item->numberOfURLs(), 3u);
}

TEST(QNItemMadeATombstone, KeepsItsKeyInASave) {
  const auto vault = localVault();
  const auto item = savedLogin(vault);
  const auto tombstone = item->makeTombstone();

  save(*tombstone);

  EXPECT_EQ(vault->decryptItemKey(tombstone->encryptedKey())->rawKeyData(),
            item->key()->rawKeyData());
  EXPECT_THAT(tombstone->deletedURLs(), IsEmpty());
}

TEST(QNItemMadeATombstone, OfAnItemThatIsNotLoadedIsMadeWithAReport) {
  const auto vault = localVault();
  const auto item = opened(*savedLogin(vault), vault);
  item->markLoadingAttachments();
  const MRCapturingSink sink;

  const auto tombstone = item->makeTombstone();

  EXPECT_THAT(assertions(sink), ElementsAre("Item must be loaded before it is made a tombstone."));
  ASSERT_NE(tombstone, nullptr);
  EXPECT_EQ(*tombstone->uuid(), *item->uuid());
}

TEST(QNItemMadeATombstone, OfAnAccountItemIsMadeWithAReportAndItsOwnUuid) {
  const auto item = savedLogin(accountVault());
  const MRCapturingSink sink;

  const auto tombstone = item->makeTombstone();

  EXPECT_THAT(assertions(sink), ElementsAre("Tombstones are an QN4 concept only."));
  ASSERT_NE(tombstone, nullptr);
  EXPECT_NE(*tombstone->uuid(), *item->uuid());
}

// What copying needs

std::shared_ptr<QNTestServerProfile> vaultOfAccount(const std::string& account,
                                                    const std::string& server) {
  auto vault = accountVault();
  vault->setAccountUUID(account);
  vault->setUserAccount(std::make_shared<H9UserAccount>(server));
  return vault;
}

std::shared_ptr<QNItem> document(const std::shared_ptr<QNGenericProfile>& vault, bool isSigned) {
  auto item = std::make_shared<H9Document>(initNew);
  item->setProfile(vault);
  item->setDetailsObject(jsonValue(isSigned ? R"({"documentId":"D","signingKey":{"k":"x"}})"
                                            : R"({"documentId":"D"})"),
                         "documentAttributes");
  return item;
}

std::shared_ptr<QNItem> itemWithFile(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = newItem(vault);
  item->copyDetails(
      jsonObject(R"({"sections":[{"fields":[{"n":"f","t":"","k":"file","v":{}}]}]})"));
  return item;
}

class QNItemCopying : public testing::Test {
 protected:
  std::shared_ptr<QNTestServerProfile> _source = vaultOfAccount("A", "https://my.example.com");
  std::shared_ptr<QNTestServerProfile> _neighbour = vaultOfAccount("B", "https://team.example.com");
  std::shared_ptr<QNTestServerProfile> _elsewhere = vaultOfAccount("C", "https://my.example.org");
  std::shared_ptr<QNProfile> _local = localVault();
  static QNCopyRequirement requirement(const std::shared_ptr<QNItem>& item,
                                       const std::shared_ptr<QNGenericProfile>& from,
                                       const std::shared_ptr<QNGenericProfile>& to) {
    return item->requirementForCopyingFromProfile(from, to);
  }
};

TEST_F(QNItemCopying, HasNumbersThatCallersKnow) {
  EXPECT_EQ(static_cast<std::int64_t>(QNCopyRequirement::nothing), 0);
  EXPECT_EQ(static_cast<std::int64_t>(QNCopyRequirement::signingKeys), 1);
  EXPECT_EQ(static_cast<std::int64_t>(QNCopyRequirement::vaultForFiles), 2);
  EXPECT_EQ(static_cast<std::int64_t>(QNCopyRequirement::sameServer), 3);
}

TEST_F(QNItemCopying, OutOfALocalVaultNeedsNothing) {
  const auto item = itemWithFile(_local);

  EXPECT_EQ(requirement(item, _local, _elsewhere), QNCopyRequirement::nothing);
  EXPECT_EQ(requirement(document(_local, false), _local, localVault()), QNCopyRequirement::nothing);
}

TEST_F(QNItemCopying, OfADocumentNeedsAVaultThatTakesDocuments) {
  EXPECT_EQ(requirement(document(_source, true), _source, _local),
            QNCopyRequirement::vaultForFiles);
  _neighbour->setFeatures({});
  EXPECT_EQ(requirement(document(_source, true), _source, _neighbour),
            QNCopyRequirement::vaultForFiles);
}

TEST_F(QNItemCopying, OfFilesNeedsAVaultThatIsNoLocalOne) {
  EXPECT_EQ(requirement(itemWithFile(_source), _source, _local), QNCopyRequirement::vaultForFiles);
  EXPECT_EQ(requirement(newItem(_source), _source, _local), QNCopyRequirement::nothing);
}

TEST_F(QNItemCopying, WithinAnAccountNeedsNothing) {
  const auto other = vaultOfAccount("A", "https://elsewhere.example.org");

  EXPECT_EQ(requirement(document(_source, false), _source, other), QNCopyRequirement::nothing);
}

TEST_F(QNItemCopying, ToAnotherAccountOfTheServerNeedsSigningKeys) {
  EXPECT_EQ(requirement(document(_source, true), _source, _neighbour), QNCopyRequirement::nothing);
  EXPECT_EQ(requirement(document(_source, false), _source, _neighbour),
            QNCopyRequirement::signingKeys);
}

TEST_F(QNItemCopying, ToAnotherServerMovesNoFiles) {
  EXPECT_EQ(requirement(document(_source, true), _source, _elsewhere),
            QNCopyRequirement::sameServer);
  EXPECT_EQ(requirement(itemWithFile(_source), _source, _elsewhere), QNCopyRequirement::sameServer);
  EXPECT_EQ(requirement(newItem(_source), _source, _elsewhere), QNCopyRequirement::nothing);
}

TEST_F(QNItemCopying, BetweenVaultsOfNoKnownAccountIsBetweenServers) {
  _source->setAccountUUID(std::nullopt);
  _elsewhere->setAccountUUID(std::nullopt);
  _source->setUserAccount(nullptr);
  _elsewhere->setUserAccount(nullptr);

  EXPECT_EQ(requirement(document(_source, true), _source, _elsewhere),
            QNCopyRequirement::sameServer);
}

TEST_F(QNItemCopying, FromAnyOtherProfileNeedsNothing) {
  _source->setProfileType(kProfileTypeUnion);

  EXPECT_EQ(requirement(newItem(_neighbour), _source, _elsewhere), QNCopyRequirement::nothing);
  EXPECT_EQ(requirement(newItem(_neighbour), nullptr, _elsewhere), QNCopyRequirement::nothing);
}

TEST_F(QNItemCopying, OfDetailsThatArentOpenTakesFilesToBeThere) {
  const auto row = newItem(_source);
  save(*row);
  const auto shell = listed(*row, _source);
  const auto sealed = opened(*row, _source);
  const auto sameAccount = vaultOfAccount("A", "https://my.example.com");
  _source->lock();
  const MRCapturingSink sink;

  for (const auto& item : {shell, sealed}) {
    EXPECT_EQ(requirement(item, _source, _local), QNCopyRequirement::vaultForFiles);
    EXPECT_EQ(requirement(item, _source, _neighbour), QNCopyRequirement::signingKeys);
    EXPECT_EQ(requirement(item, _source, _elsewhere), QNCopyRequirement::sameServer);
    EXPECT_EQ(requirement(item, _source, sameAccount), QNCopyRequirement::nothing);
    EXPECT_EQ(requirement(item, _local, _elsewhere), QNCopyRequirement::nothing);
  }
  _source->setProfileType(kProfileTypeUnion);
  EXPECT_EQ(requirement(sealed, _source, _local), QNCopyRequirement::nothing);
}

TEST_F(QNItemCopying, OfAnIconThatCannotBeSeenTakesItToHaveNoSigningKey) {
  const auto inClear = newItem(_source);
  ASSERT_EQ(requirement(inClear, _source, _neighbour), QNCopyRequirement::nothing);
  const auto row = newItem(_source);
  save(*row);
  const auto damaged = opened(*row, _source);
  damaged->setOverviewData(Bytes(64, 1));
  const MRCapturingSink sink;

  EXPECT_EQ(requirement(damaged, _source, _neighbour), QNCopyRequirement::signingKeys);
  EXPECT_EQ(requirement(damaged, _source, _elsewhere), QNCopyRequirement::nothing);
  _source->lock();

  EXPECT_EQ(requirement(inClear, _source, _neighbour), QNCopyRequirement::signingKeys);
  EXPECT_EQ(requirement(inClear, _source, _elsewhere), QNCopyRequirement::nothing);
}

// References to files

void setIcon(QNItem& item, std::string_view record) {
  item.setOverviewObject(jsonValue(record), kCustomIconAttributes);
}

TEST_F(QNItemCopying, FindsADocumentWithoutSigningKey) {
  EXPECT_TRUE(document(_source, false)->hasFileReferencesWithoutSigningKeys());
  EXPECT_FALSE(document(_source, true)->hasFileReferencesWithoutSigningKeys());
}

TEST_F(QNItemCopying, FindsNoneInADocumentWithoutAttributesOrInAnotherItem) {
  const auto empty = std::make_shared<H9Document>(initNew);
  empty->setProfile(_source);
  const auto other = newItem(_source);
  other->setDetailsObject(jsonValue(R"({"documentId":"D"})"), "documentAttributes");

  EXPECT_FALSE(empty->hasFileReferencesWithoutSigningKeys());
  EXPECT_FALSE(other->hasFileReferencesWithoutSigningKeys());
}

TEST_F(QNItemCopying, FindsAnIconWithoutSigningKeyWhateverTheDocumentHas) {
  const auto item = document(_source, true);
  setIcon(*item, R"({"detail":{"fileId":"F"}})");
  EXPECT_TRUE(item->hasFileReferencesWithoutSigningKeys());

  setIcon(*item, R"({"detail":{"fileId":"F","signingKey":{}}})");
  EXPECT_FALSE(item->hasFileReferencesWithoutSigningKeys());
  const auto without = document(_source, false);
  setIcon(*without, R"({"detail":{"fileId":"F","signingKey":{}}})");
  EXPECT_TRUE(without->hasFileReferencesWithoutSigningKeys());
}

TEST_F(QNItemCopying, FindsNoneInALocalVault) {
  const auto item = document(_local, false);
  setIcon(*item, R"({"detail":{"fileId":"F"}})");

  EXPECT_FALSE(item->hasFileReferencesWithoutSigningKeys());
}

}  // namespace
}  // namespace quillon
