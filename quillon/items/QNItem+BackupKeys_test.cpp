#include "quillon/items/internal/QNItemTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string base64Of(const QNAESKeyRef& key) {
  return mr_base64encode(key->rawKeyData());
}

std::vector<std::string> backupKeysOf(QNItem& item) {
  std::vector<std::string> keys;
  for (const QNSecret& key : item.backupKeysBase64Encoded()) keys.emplace_back(key.reveal());
  return keys;
}

QNSecretSet setOf(std::initializer_list<std::string_view> texts) {
  QNSecretSet set;
  for (const std::string_view text : texts) set.emplace(text);
  return set;
}

TEST(QNItemBackupKeys, ANewLocalItemHasItsKeyOnceBeforeItsFirstSave) {
  const auto item = newItem(localVault());

  EXPECT_THAT(backupKeysOf(*item), ElementsAre(base64Of(item->key())));
}

TEST(QNItemBackupKeys, SavingTwiceAddsNothing) {
  const auto item = newItem(localVault());

  save(*item);
  save(*item);

  EXPECT_THAT(backupKeysOf(*item), ElementsAre(base64Of(item->key())));
}

TEST(QNItemBackupKeys, ANewAccountItemLosesThemAtItsFirstSave) {
  const auto item = newItem(accountVault());
  ASSERT_NE(item->detailsObjectForKey(kDetailsBackupKeys), nullptr);

  save(*item);

  EXPECT_EQ(item->detailsObjectForKey(kDetailsBackupKeys), nullptr);
}

TEST(QNItemBackupKeys, OfAnAccountItemAreNone) {
  const auto item = newItem(accountVault());

  EXPECT_THAT(item->backupKeysBase64Encoded(), IsEmpty());
  EXPECT_THAT(item->backupAESKeys(), IsEmpty());
  item->didSave();
  item->addBackupKeysBase64Encoded(setOf({"A"}));

  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemBackupKeys, ReadingThemOpensTheDetails) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);

  EXPECT_THAT(backupKeysOf(*opened(*row, vault)), ElementsAre(base64Of(row->key())));
}

TEST(QNItemBackupKeys, AKeyThatIsThereAddsNothing) {
  const auto item = newItem(localVault());
  item->didSave();

  item->addBackupKeysBase64Encoded(item->backupKeysBase64Encoded());
  item->addBackupKeysBase64Encoded({});

  EXPECT_FALSE(item->dirtyRow());
}

TEST(QNItemBackupKeys, ANewKeyJoinsTheOthersAndDirtiesTheRow) {
  const auto item = newItem(localVault());
  item->didSave();

  item->addBackupKeysBase64Encoded(setOf({"!"}));

  EXPECT_TRUE(item->dirtyRow());
  EXPECT_THAT(backupKeysOf(*item), ElementsAre("!", base64Of(item->key())));
}

TEST(QNItemBackupKeys, WithoutAProfileASecondCallOverwritesTheFirst) {
  const auto item = std::make_shared<QNSampleItem>(initNew);

  item->addBackupKeysBase64Encoded(setOf({"A"}));

  EXPECT_EQ(jsonText(item->detailsObjectForKey(kDetailsBackupKeys)), R"(["A"])");
}

TEST(QNItemBackupKeys, WhatIsNoListOfTextsReadsAsNone) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue(R"("A")"), kDetailsBackupKeys);
  EXPECT_THAT(backupKeysOf(*item), IsEmpty());

  item->setDetailsObject(jsonValue(R"([1,"A",null,"A"])"), kDetailsBackupKeys);

  EXPECT_THAT(backupKeysOf(*item), ElementsAre("A"));
}

TEST(QNItemBackupKeys, AsKeysSkipWhatIsNoBase64AndWhatIsNoKey) {
  const auto item = newItem(localVault());
  const auto second = QNAESKey::initWithRandomKey();
  item->addBackupKeysBase64Encoded(setOf({"not base64", "AAAA", base64Of(second)}));
  ASSERT_EQ(item->backupKeysBase64Encoded().size(), 4u);

  const auto keys = item->backupAESKeys();

  std::set<std::string> raw;
  for (const auto& key : keys) raw.insert(base64Of(key));
  EXPECT_EQ(raw, (std::set<std::string>{base64Of(item->key()), base64Of(second)}));
}

TEST(QNItemBackupKeys, DisablingRemovesThePresentKeyAndKeepsTheOlder) {
  const auto item = newItem(localVault());
  const std::string older = base64Of(QNAESKey::initWithRandomKey());
  item->addBackupKeysBase64Encoded(setOf({older}));

  item->disableBackupKeys();
  EXPECT_TRUE(item->isBackupKeysDisabled());
  EXPECT_THAT(backupKeysOf(*item), ElementsAre(older));
  save(*item);
  EXPECT_THAT(backupKeysOf(*item), ElementsAre(older));
  item->enableBackupKeys();
  EXPECT_THAT(backupKeysOf(*item), ElementsAre(older));
  save(*item);

  EXPECT_EQ(item->backupKeysBase64Encoded().size(), 2u);
}

TEST(QNItemBackupKeys, DisablingRemovesAListThatBecomesEmpty) {
  const auto item = newItem(localVault());

  item->disableBackupKeys();

  EXPECT_FALSE(item->details()->contains(kDetailsBackupKeys));
}

TEST(QNItemBackupKeys, DisablingOnAnAccountItemOnlySetsTheFlag) {
  const auto item = newItem(accountVault());
  const MRCapturingSink sink;

  item->disableBackupKeys();

  EXPECT_TRUE(item->isBackupKeysDisabled());
  EXPECT_TRUE(item->details()->contains(kDetailsBackupKeys));
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemBackupKeys, ClearingRemovesTheList) {
  const auto item = newItem(localVault());

  item->clearBackupKeys();

  EXPECT_FALSE(item->details()->contains(kDetailsBackupKeys));
}

TEST(QNItemBackupKeys, CompletelyDisabledTheyReadAsNoneAndStayAsTheyAre) {
  const auto item = newItem(localVault());
  const std::string before = jsonText(item->detailsObjectForKey(kDetailsBackupKeys));
  item->_test_only_isBackupKeysCompletelyDisabled = true;

  EXPECT_THAT(item->backupKeysBase64Encoded(), IsEmpty());
  EXPECT_THAT(item->backupAESKeys(), IsEmpty());
  item->addBackupKeysBase64Encoded(setOf({"A"}));
  item->disableBackupKeys();
  item->test_only_clearAndDisableBackupKeys();

  EXPECT_EQ(jsonText(item->detailsObjectForKey(kDetailsBackupKeys)), before);
}

TEST(QNItemBackupKeys, AMergeOfLocalItemsKeepsBothPresentKeys) {
  const auto vault = localVault();
  const auto mine = newItem(vault);
  const auto theirs = newItem(vault);
  const auto older = QNAESKey::initWithRandomKey();
  theirs->addBackupKeysBase64Encoded(setOf({base64Of(older)}));
  mine->clearBackupKeys();

  mine->mergeBackupKeysWithConflict(*theirs);

  const auto keys = backupKeysOf(*mine);
  EXPECT_EQ(
      std::set<std::string>(keys.begin(), keys.end()),
      (std::set<std::string>{base64Of(mine->key()), base64Of(theirs->key()), base64Of(older)}));
}

TEST(QNItemBackupKeys, AMergeLeavesDisabledPresentKeysOut) {
  const auto vault = localVault();
  const auto mine = newItem(vault);
  const auto theirs = newItem(vault);
  mine->disableBackupKeys();
  theirs->disableBackupKeys();

  mine->mergeBackupKeysWithConflict(*theirs);

  EXPECT_THAT(backupKeysOf(*mine), IsEmpty());
}

TEST(QNItemBackupKeys, AMergeTakesThePresentKeyOfEachSideThatIsntDisabled) {
  const auto vault = localVault();
  for (const auto& [mineDisabled, theirsDisabled] :
       {std::pair(false, false), std::pair(true, false), std::pair(false, true)}) {
    const auto mine = newItem(vault);
    const auto theirs = newItem(vault);
    mine->clearBackupKeys();
    theirs->clearBackupKeys();
    mine->setBackupKeysDisabled(mineDisabled);
    theirs->setBackupKeysDisabled(theirsDisabled);
    std::set<std::string> expected;
    if (!mineDisabled) expected.insert(base64Of(mine->key()));
    if (!theirsDisabled) expected.insert(base64Of(theirs->key()));

    mine->mergeBackupKeysWithConflict(*theirs);

    const auto keys = backupKeysOf(*mine);
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()), expected);
  }
}

TEST(QNItemBackupKeys, AMergeAcrossGenerationsDoesNothing) {
  const auto local = newItem(localVault());
  const auto account = newItem(accountVault());
  local->didSave();
  account->didSave();
  const MRCapturingSink sink;

  local->mergeBackupKeysWithConflict(*account);
  account->mergeBackupKeysWithConflict(*local);

  EXPECT_FALSE(local->dirtyRow());
  EXPECT_FALSE(account->dirtyRow());
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemBackupKeys, EnablingThemClearsTheFlagAlone) {
  const auto item = newItem(localVault());
  item->disableBackupKeys();
  item->didSave();

  item->enableBackupKeys();

  EXPECT_FALSE(item->isBackupKeysDisabled());
  EXPECT_FALSE(item->dirtyRow());
  EXPECT_THAT(backupKeysOf(*item), IsEmpty());
}

TEST(QNItemBackupKeys, TheOperationForTestsDoesNothing) {
  const auto item = newItem(localVault());
  const auto before = backupKeysOf(*item);

  item->test_only_clearAndDisableBackupKeys();

  EXPECT_EQ(backupKeysOf(*item), before);
  EXPECT_FALSE(item->isBackupKeysDisabled());
}

TEST(QNItemBackupKeys, AMergeOfAccountItemsDoesNothing) {
  const auto vault = accountVault();
  const auto mine = newItem(vault);
  const auto theirs = newItem(vault);
  mine->didSave();
  const MRCapturingSink sink;

  mine->mergeBackupKeysWithConflict(*theirs);

  EXPECT_FALSE(mine->dirtyRow());
  EXPECT_TRUE(sink.records().empty());
}

TEST(QNItemBackupKeys, AnEmptySetOpensNothing) {
  const auto vault = localVault();
  const auto row = newItem(vault);
  save(*row);
  const auto shell = listed(*row, vault);
  const std::uint64_t unwrapped = vault->numberOfItemKeysUnwrapped();
  const MRCapturingSink sink;

  shell->addBackupKeysBase64Encoded({});

  EXPECT_TRUE(sink.records().empty());
  EXPECT_EQ(vault->numberOfItemKeysUnwrapped(), unwrapped);
}

TEST(QNItemBackupKeys, DisablingTakesAnEmptyListAway) {
  const auto item = newItem(localVault());
  item->setDetailsObject(jsonValue("[]"), kDetailsBackupKeys);

  item->disableBackupKeys();

  EXPECT_EQ(item->details()->if_contains(kDetailsBackupKeys), nullptr);
}

TEST(QNItemBackupKeys, AnotherKindOfProfileLeavesTheListAlone) {
  const auto vault = accountVault();
  const auto item = newItem(vault);
  item->setDetailsObject(jsonValue(R"(["kept"])"), kDetailsBackupKeys);
  item->setProfileType(kProfileTypeMasterUnlock);
  const MRCapturingSink sink;

  item->willSave();

  EXPECT_EQ(jsonText(item->detailsObjectForKey(kDetailsBackupKeys)), R"(["kept"])");
}

}  // namespace
}  // namespace quillon
