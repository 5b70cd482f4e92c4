#include "quillon/items/QNTombstone.h"
#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

Bytes wrapOf(const QNItem& item) {
  return toBytes(item.encryptedKey());
}

// The key

TEST(QNItemEncryption, OfANewItemStartsWithABufferOfZeros) {
  const auto item = newItem(localVault());
  ASSERT_EQ(item->encryptedKey().size(), 112u);
  EXPECT_THAT(item->encryptedKey(), Each(0));

  item->willSave();

  EXPECT_THAT(item->encryptedKey(), Contains(testing::Ne(0)));
}

TEST(QNItemEncryption, TheWrapIsAViewOfTheItemsBuffer) {
  const auto item = newItem(localVault());
  const ByteView view = item->encryptedKey();

  item->setEncryptedKey(Bytes(112, 7));

  EXPECT_THAT(view, Each(7));
}

TEST(QNItemEncryption, AWrapOfAnyOtherLengthIsRefused) {
  const auto item = newItem(localVault());
  item->setEncryptedKey(Bytes(112, 7));
  const MRCapturingSink sink;

  item->setEncryptedKey(Bytes(111, 1));
  item->setEncryptedKey(Bytes(113, 1));
  item->setEncryptedKey({});

  EXPECT_THAT(item->encryptedKey(), Each(7));
  EXPECT_THAT(assertions(sink),
              ElementsAre("Invalid item key size: 111", "Invalid item key size: 113",
                          "Invalid item key size: 0"));
}

TEST(QNItemEncryption, TheKeyIsUnwrappedAtItsFirstNeedAndKept) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  const auto before = vault->numberOfItemKeysUnwrapped();

  ASSERT_NE(item->key(), nullptr);
  EXPECT_EQ(item->key()->rawKeyData(), row->key()->rawKeyData());

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), before + 1);
}

TEST(QNItemEncryption, AKeyThatDoesntOpenIsReportedAndTriedAgain) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  item->setEncryptedKey(Bytes(112, 7));
  const MRCapturingSink sink;

  EXPECT_EQ(item->key(), nullptr);
  EXPECT_THAT(errors(sink),
              ElementsAre("Item key for item UUID " + *item->uuid() + " is nil after decryption."));
  item->setEncryptedKey(row->encryptedKey());

  EXPECT_NE(item->key(), nullptr);
}

TEST(QNItemEncryption, TheKeyOfAnAccountItemIsACallersFault) {
  const auto item = newItem(accountVault());
  const auto made = QNAESKey::initWithRandomKey();
  item->setKey(made);
  const MRCapturingSink sink;

  EXPECT_EQ(item->key(), made);

  EXPECT_THAT(assertions(sink), ElementsAre("Unimplemented"));
}

// Saving

TEST(QNItemEncryption, ASaveFillsTheStoredFormsOfALocalItem) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  item->setTitle("T");
  item->setNotesPlain("the notes");

  item->willSave();

  const auto key = vault->decryptItemKey(item->encryptedKey());
  ASSERT_NE(key, nullptr);
  const auto details = key->decrypt(*item->detailsData());
  ASSERT_TRUE(details);
  const auto read = mr_objectFromJSONDataWithError(*details);
  ASSERT_TRUE(read);
  EXPECT_EQ(mr_validStringValueForKey(*read, "notesPlain"), "the notes");
  const auto overview = vault->decryptOverview(*item->overviewData());
  ASSERT_TRUE(overview);
  EXPECT_EQ(mr_validStringValueForKey(*mr_objectFromJSONDataWithError(*overview), "title"), "T");
}

TEST(QNItemEncryption, ASaveFillsTheStoredFormsOfAnAccountItem) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  item->setNotesPlain("the notes");

  item->willSave();

  const auto envelope = mr_objectFromJSONDataWithError(*item->detailsData());
  ASSERT_TRUE(envelope);
  const auto clear = vault->decryptWithMasterSymmetricKey(*envelope);
  ASSERT_TRUE(clear);
  EXPECT_EQ(textOf(*clear), R"({"notesPlain":"the notes"})");
  EXPECT_THAT(item->encryptedKey(), Each(0));
}

TEST(QNItemEncryption, ASaveEncryptsEverythingAfreshThoughNothingChanged) {
  const auto item = newItem(localVault());
  save(*item);
  const Bytes wrap = wrapOf(*item);
  const Bytes overview = *item->overviewData();
  const Bytes details = *item->detailsData();

  save(*item);

  EXPECT_NE(wrapOf(*item), wrap);
  EXPECT_NE(*item->overviewData(), overview);
  EXPECT_NE(*item->detailsData(), details);
}

TEST(QNItemEncryption, WithoutAProfileASaveDoesNothing) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  item->setOverviewData(Bytes(50, 5));
  item->setDetailsData(Bytes(60, 6));
  item->setEncryptedKey(Bytes(112, 7));
  item->setSectionName("Z");
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_THAT(assertions(sink), ElementsAre("Item profile is not available"));
  EXPECT_EQ(item->numberOfSerializations, 0);
  EXPECT_EQ(item->sectionName(), "Z");
  EXPECT_EQ(item->overviewData(), Bytes(50, 5));
  EXPECT_EQ(item->detailsData(), Bytes(60, 6));
  EXPECT_THAT(item->encryptedKey(), Each(7));
}

TEST(QNItemEncryption, ASaveWithoutLoadedDetailsKeepsTheirStoredForm) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = listed(*row, vault);
  item->setEncryptedKey(row->encryptedKey());
  item->setDetailsData(row->detailsData());
  item->setTitle("new");

  save(*item);

  EXPECT_EQ(item->detailsData(), row->detailsData());
  const auto read = opened(*item, vault);
  EXPECT_EQ(read->title(), "new");
  EXPECT_EQ(read->notesPlain(), "the notes");
}

TEST(QNItemEncryption, ASaveOfAnItemWithoutAClearKeyKeepsItsWrap) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  item->setEncryptedKey(row->encryptedKey());
  const Bytes wrap = wrapOf(*item);

  save(*item);

  EXPECT_EQ(wrapOf(*item), wrap);
}

TEST(QNItemEncryption, ASaveBringsTheDetailsUpToDateBeforeItEncryptsThem) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("first");
  save(*row);
  const auto item = opened(*row, vault);
  item->setPassword("second");
  item->clearBackupKeys();

  save(*item);

  const auto read = opened(*item, vault);
  EXPECT_EQ(read->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_EQ(read->backupKeysBase64Encoded().size(), 1u);
}

TEST(QNItemEncryption, DetailsThatDontOpenAreNeverSavedBackAsEmpty) {
  for (const auto& vault : {std::shared_ptr<QNGenericProfile>(localVault()),
                            std::shared_ptr<QNGenericProfile>(accountVault())}) {
    const auto row = newItem(vault);
    save(*row);
    const auto item = opened(*row, vault);
    const Bytes damaged = mr_randomData(60);
    item->setDetailsData(damaged);
    const MRCapturingSink sink;

    save(*item);

    EXPECT_EQ(item->detailsData(), damaged);
    EXPECT_THAT(errors(sink), Contains("Failed to saveItem: Failed to serialize details: "
                                       "MRErrorDomain 114"));
  }
}

TEST(QNItemEncryption, DetailsWithoutAJsonFormKeepTheirStoredForm) {
  const auto item = newItem(localVault());
  save(*item);
  const Bytes before = *item->detailsData();
  item->setDetailsText("\xff", "k");
  const MRCapturingSink sink;

  save(*item);

  EXPECT_EQ(item->detailsData(), before);
  EXPECT_THAT(errors(sink), ElementsAre("Failed to saveItem: Failed to serialize details: "
                                        "MRErrorDomain 114"));
}

TEST(QNItemEncryption, AClearItemWithoutAKeyKeepsItsStoredDetails) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  save(*item);
  const Bytes before = *item->detailsData();
  item->setKey(nullptr);
  item->setEncryptedKey(Bytes(112, 7));
  const MRCapturingSink sink;

  save(*item);

  EXPECT_EQ(item->detailsData(), before);
  EXPECT_THAT(errors(sink),
              Each("Item key for item UUID " + *item->uuid() + " is nil after decryption."));
}

TEST(QNItemEncryption, ALockedLocalVaultEmptiesTheOverviewAndKeepsTheWrap) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  item->setTitle("T");
  save(*item);
  const Bytes wrap = wrapOf(*item);
  const Bytes details = *item->detailsData();
  item->setNotesPlain("new notes");
  vault->lock();
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_EQ(item->overviewData(), std::nullopt);
  EXPECT_EQ(wrapOf(*item), wrap);
  EXPECT_NE(*item->detailsData(), details);
  const auto clear = item->key()->decrypt(*item->detailsData());
  ASSERT_TRUE(clear);
  EXPECT_EQ(mr_validStringValueForKey(*mr_objectFromJSONDataWithError(*clear), "notesPlain"),
            "new notes");
  EXPECT_THAT(assertions(sink), ElementsAre("profile must be unlocked", "profile must be unlocked",
                                            "Invalid item key size: 0"));
}

TEST(QNItemEncryption, ALockedAccountKeepsBothStoredForms) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  item->setTitle("T");
  save(*item);
  const Bytes overview = *item->overviewData();
  const Bytes details = *item->detailsData();
  item->setNotesPlain("new notes");
  vault->setLocked(true);
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_EQ(*item->overviewData(), overview);
  EXPECT_EQ(*item->detailsData(), details);
  EXPECT_THAT(errors(sink), ElementsAre("Failed to encrypt details: MRErrorDomain 114"));
  EXPECT_THAT(assertions(sink), IsEmpty());
}

TEST(QNItemEncryption, AnAccountThatFailsToSealKeepsTheDetailsAndSaysSo) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  save(*item);
  const Bytes details = *item->detailsData();
  vault->setFails(true);
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_EQ(*item->detailsData(), details);
  EXPECT_THAT(errors(sink), Contains("Failed to encrypt details: MRErrorDomain 114"));
}

TEST(QNItemEncryption, AnAccountItemOfALocalVaultKeepsItsDetailsAndSaysSo) {
  const auto item = newItem(localVault());
  save(*item);
  const Bytes details = *item->detailsData();
  item->setProfileType(kProfileTypeAccountVault);
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_EQ(*item->detailsData(), details);
  EXPECT_THAT(errors(sink), Contains("Failed to encrypt details: MRErrorDomain 114"));
}

TEST(QNItemEncryption, ANewWrapNewDataAndALockLeaveTheKeyThatIsOpen) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = opened(*row, vault);
  const auto key = item->key();

  item->setEncryptedKey(Bytes(112, 7));
  item->setDetailsData(row->detailsData());
  vault->lock();

  EXPECT_NE(key, nullptr);
  EXPECT_EQ(item->key(), key);
}

TEST(QNItemEncryption, TheKeyOfAnItemOfNoVaultOrAnotherTypeIsWhatWasSet) {
  const auto item = std::make_shared<QNSampleItem>(initNew);
  const auto made = QNAESKey::initWithRandomKey();
  item->setKey(made);
  const MRCapturingSink sink;

  EXPECT_EQ(item->key(), made);
  item->setProfileType(kProfileTypeMasterUnlock);
  EXPECT_EQ(item->key(), made);

  EXPECT_THAT(assertions(sink), ElementsAre("Unimplemented", "Unimplemented"));
}

TEST(QNItemEncryption, ASaveEncryptsAnAccountItemAfreshThoughNothingChanged) {
  const auto item = newItem(accountVault());
  save(*item);
  const Bytes overview = *item->overviewData();
  const Bytes details = *item->detailsData();

  save(*item);

  EXPECT_NE(*item->overviewData(), overview);
  EXPECT_NE(*item->detailsData(), details);
}

TEST(QNItemEncryption, AnyOtherTypeOfProfileIsReported) {
  const auto item = newItem(localVault());
  save(*item);
  const Bytes details = *item->detailsData();
  const Bytes wrap = wrapOf(*item);
  item->setProfileType(4);
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_EQ(*item->detailsData(), details);
  EXPECT_EQ(wrapOf(*item), wrap);
  EXPECT_THAT(assertions(sink),
              ElementsAre("Unsupported profile type: 4", "Unsupported profile type: 4"));
}

TEST(QNItemEncryption, ASaveRemovesTheIconsOfTheOtherGeneration) {
  const auto withIcons = [](const std::shared_ptr<QNGenericProfile>& vault) {
    auto item = newItem(vault);
    for (const auto key : {kCustomIcon, kCustomIconAttributes, kPendingCustomIcon}) {
      item->setOverviewObject(Json("x"), key);
    }
    item->willSave();
    return item;
  };

  const auto local = withIcons(localVault());
  const auto account = withIcons(accountVault());
  const auto vaultOfBoth = accountVault();
  vaultOfBoth->setFeatures({kFeatureServerIcons, kFeatureLocalIcons});
  const auto vaultOfNeither = accountVault();
  vaultOfNeither->setFeatures({});
  const auto both = withIcons(vaultOfBoth);
  const auto neither = withIcons(vaultOfNeither);

  EXPECT_NE(local->overviewObjectForKey(kCustomIcon), nullptr);
  EXPECT_EQ(local->overviewObjectForKey(kCustomIconAttributes), nullptr);
  EXPECT_EQ(local->overviewObjectForKey(kPendingCustomIcon), nullptr);
  EXPECT_EQ(account->overviewObjectForKey(kCustomIcon), nullptr);
  EXPECT_NE(account->overviewObjectForKey(kCustomIconAttributes), nullptr);
  EXPECT_NE(account->overviewObjectForKey(kPendingCustomIcon), nullptr);
  for (const auto key : {kCustomIcon, kCustomIconAttributes, kPendingCustomIcon}) {
    EXPECT_NE(both->overviewObjectForKey(key), nullptr) << key;
    EXPECT_EQ(neither->overviewObjectForKey(key), nullptr) << key;
  }
}

// Taking over a row

TEST(QNItemEncryption, CopyingARowTakesItsKey) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = newItem(vault);
  item->didSave();

  item->copyOidFrom(row);

  EXPECT_EQ(item->oid(), row->oid());
  EXPECT_TRUE(item->dirtyRow());
  EXPECT_EQ(item->key(), row->key());
}

TEST(QNItemEncryption, CopyingARowOpensTheDetailsUnderTheOldKeyFirst) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setPassword("a password");
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = opened(*row, vault);
  ASSERT_EQ(item->notesPlain(), "the notes");
  item->setDetailsData(row->detailsData());  // sealed again, the password still noted
  const auto other = newItem(vault);
  other->_setOid(12);

  item->copyOidFrom(other);
  save(*item);

  EXPECT_EQ(item->key(), other->key());
  EXPECT_EQ(opened(*item, vault)->notesPlain(), "the notes");
}

TEST(QNItemEncryption, CopyingTheSameRowChangesNothing) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  const auto item = newItem(vault);
  item->didSave();
  const auto key = item->key();

  item->copyOidFrom(row);

  EXPECT_FALSE(item->dirtyRow());
  EXPECT_EQ(item->key(), key);
}

TEST(QNItemEncryption, CopyingTheRowOfATombstoneLeavesTheKey) {
  const auto vault = localVault();
  const auto grave = std::make_shared<QNTombstone>(QNExisting{4});
  grave->setProfile(vault);
  const auto item = newItem(vault);
  const auto key = item->key();
  const MRCapturingSink sink;

  item->copyOidFrom(grave);

  EXPECT_EQ(item->oid(), 4u);
  EXPECT_EQ(item->key(), key);
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemEncryption, CopyingARowBetweenAccountItemsLeavesTheKey) {
  const auto vault = accountVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = newItem(vault);
  const MRCapturingSink sink;

  item->copyOidFrom(row);

  EXPECT_EQ(item->oid(), row->oid());
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemEncryption, CopyingARowWhoseKeyDoesntOpenIsReported) {
  const auto vault = localVault();
  const auto row = std::make_shared<QNSampleItem>(QNExisting{4});
  row->setProfile(vault);
  row->setUuid(sharedString("U"));
  const auto item = newItem(vault);
  const auto key = item->key();
  const MRCapturingSink sink;

  item->copyOidFrom(row);

  EXPECT_EQ(item->key(), key);
  EXPECT_THAT(assertions(sink), ElementsAre("Unexpected encryption key for item <U>."));
}

TEST(QNItemEncryption, TheIconsOfTheOtherGenerationAreGoneFromWhatIsStored) {
  const auto vault = localVault();
  const auto item = newItem(vault);
  item->setOverviewText("picture", kPendingCustomIcon);

  save(*item);

  EXPECT_EQ(listed(*item, vault)->overviewObjectForKey(kPendingCustomIcon), nullptr);
}

TEST(QNItemEncryption, ASaveOfAnItemWithoutAClearKeyUnwrapsIt) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto item = listed(*row, vault);
  item->setEncryptedKey(row->encryptedKey());
  const std::uint64_t unwrapped = vault->numberOfItemKeysUnwrapped();

  item->willSave();

  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), unwrapped + 1);
}

TEST(QNItemEncryption, CopyingARowFromAnAccountItemReportsItsMissingKey) {
  const auto row = newItem(accountVault());
  row->_setOid(11);
  row->setKey(nullptr);
  const auto item = newItem(localVault());
  const auto key = item->key();
  const MRCapturingSink sink;

  item->copyOidFrom(row);

  EXPECT_EQ(item->oid(), 11u);
  EXPECT_EQ(item->key(), key);
  EXPECT_THAT(
      assertions(sink),
      ElementsAre("Unimplemented", "Unexpected encryption key for item <" + *row->uuid() + ">."));
}

TEST(QNItemEncryption, CopyingARowFromALocalItemGivesItsKeyToAnAccountItem) {
  const auto row = newItem(localVault());
  save(*row);
  const auto item = newItem(accountVault());

  item->copyOidFrom(row);

  const MRCapturingSink sink;
  EXPECT_EQ(item->key(), row->key());
}

TEST(QNItemEncryption, CopyingARowThatIsNoItemTakesTheRowOnly) {
  class Row final : public QNDatabaseObject {
   public:
    explicit Row(QNExisting existing) : QNDatabaseObject(existing) {}
    [[nodiscard]] std::string_view className() const override { return "Row"; }
  };
  const auto item = newItem(localVault());
  item->didSave();
  const auto key = item->key();
  const MRCapturingSink sink;

  item->copyOidFrom(std::make_shared<Row>(QNExisting{9}));

  EXPECT_EQ(item->oid(), 9u);
  EXPECT_EQ(item->key(), key);
  EXPECT_TRUE(item->dirtyRow());
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemEncryption, ASaveOfAnAccountItemWithoutLoadedDetailsKeepsTheirStoredForm) {
  const auto vault = accountVault();
  const auto row = newItem(vault);
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = listed(*row, vault);
  item->setDetailsData(row->detailsData());
  item->setTitle("new");

  save(*item);

  EXPECT_EQ(item->detailsData(), row->detailsData());
  EXPECT_EQ(opened(*item, vault)->notesPlain(), "the notes");
}

TEST(QNItemEncryption, CopyingARowKeepsTheKeyOfDetailsThatDontOpen) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = opened(*row, vault);
  const auto other = newItem(vault);
  other->_setOid(12);
  const Bytes master(vault->masterKey()->begin(), vault->masterKey()->end());
  vault->lock();

  item->copyOidFrom(other);

  EXPECT_EQ(item->oid(), 12u);
  vault->setMasterKey(master);
  EXPECT_EQ(item->notesPlain(), "the notes");
}

TEST(QNItemEncryption, CopyingARowWithoutAKeyOpensNothing) {
  const auto vault = accountVault();
  const auto row = newItem(vault);
  row->setNotesPlain("the notes");
  save(*row);
  const auto item = opened(*row, vault);
  const auto other = newItem(vault);
  other->_setOid(12);
  item->didSave();
  item->markLoadingDetails();
  item->markDetailsLoaded();
  vault->setLocked(true);
  const auto before = vault->numberOfOpenings();

  item->copyOidFrom(other);

  EXPECT_EQ(item->oid(), 12u);
  EXPECT_EQ(vault->numberOfOpenings(), before);
}

}  // namespace
}  // namespace quillon
