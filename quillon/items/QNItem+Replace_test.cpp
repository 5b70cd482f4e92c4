#include "quillon/items/internal/QNMergeTesting.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class QNItemReplace : public testing::Test {
 protected:
  std::vector<std::string> keysOf(QNItem& item) {
    std::vector<std::string> keys;
    for (const QNSecret& key : item.backupKeysBase64Encoded()) keys.emplace_back(key.reveal());
    return keys;
  }

  std::shared_ptr<QNProfile> _vault = localVault();
  QNSampleItemRef _mine = versionIn(_vault);
  QNSampleItemRef _theirs = versionIn(_vault);
};

// Who stays

TEST_F(QNItemReplace, GivesTheItemItself) {
  EXPECT_EQ(_mine->objectByReplacingWith(_theirs), _mine);
}

TEST_F(QNItemReplace, RefusesWhatIsNoItem) {
  const MRCapturingSink sink;

  EXPECT_EQ(_mine->objectByReplacingWith(noItem()), _mine);
  EXPECT_EQ(_mine->objectByReplacingWith(nullptr), _mine);

  EXPECT_FALSE(_mine->dirtyRow());
  const auto text = "Attempted to replace " + _mine->description() + " with what is no item";
  EXPECT_THAT(errors(sink), ElementsAre(text, text));
}

TEST_F(QNItemReplace, WithItselfChangesNothing) {
  _mine->addURLString("https://a.example");
  _mine->didSave();

  EXPECT_EQ(_mine->objectByReplacingWith(_mine), _mine);

  EXPECT_FALSE(_mine->dirtyRow());
  EXPECT_EQ(_mine->numberOfURLs(), 1u);
}

TEST_F(QNItemReplace, WithATombstoneGivesItsOwn) {
  save(*_mine);
  const auto theirs = std::make_shared<QNTombstone>(initNew);

  const auto result = _mine->objectByReplacingWith(theirs);

  ASSERT_NE(std::dynamic_pointer_cast<QNTombstone>(result), nullptr);
  EXPECT_NE(result, theirs);
  EXPECT_EQ(result->oid(), _mine->oid());
}

TEST_F(QNItemReplace, OfATombstoneGivesTheOtherWithItsRow) {
  const auto tombstone = std::make_shared<QNTombstone>(QNExisting{9});
  tombstone->setProfile(_vault);

  EXPECT_EQ(tombstone->objectByReplacingWith(_theirs), _theirs);

  EXPECT_EQ(_theirs->oid(), 9u);
}

TEST_F(QNItemReplace, OfATombstoneWithoutARowLeavesTheOtherItsOwn) {
  const auto tombstone = std::make_shared<QNTombstone>(initNew);
  tombstone->setProfile(_vault);
  _theirs->_setOid(4);

  EXPECT_EQ(tombstone->objectByReplacingWith(_theirs), _theirs);

  EXPECT_EQ(_theirs->oid(), 4u);
}

TEST_F(QNItemReplace, TakesTheOthersRowIfItHasNone) {
  save(*_theirs);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->oid(), _theirs->oid());
  EXPECT_EQ(_mine->key(), _theirs->key());
}

TEST_F(QNItemReplace, KeepsItsIdentityAndItsCounters) {
  save(*_mine);
  _mine->setTxTimestamp(5);
  _mine->setLastUsedTimestamp(6);
  _mine->setNumberOfTimesUsed(7);
  const auto uuid = _mine->uuid();
  const auto key = _mine->key();
  _theirs->_setOid(99);
  _theirs->setTxTimestamp(50);
  _theirs->setLastUsedTimestamp(60);
  _theirs->setNumberOfTimesUsed(70);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->uuid(), uuid);
  EXPECT_EQ(_mine->key(), key);
  EXPECT_EQ(_mine->oid(), 11u);
  EXPECT_EQ(_mine->txTimestamp(), 5u);
  EXPECT_EQ(_mine->lastUsedTimestamp(), 6u);
  EXPECT_EQ(_mine->numberOfTimesUsed(), 7);
}

// Columns

struct ColumnCase {
  std::string_view name;
  void (*change)(QNItem& theirs);
  bool (*isTaken)(QNItem& mine);
};

const ColumnCase kColumns[] = {
    {"categoryUUID", [](QNItem& theirs) { theirs.setCategoryUUID("004"); },
     [](QNItem& mine) { return mine.categoryUUID() == "004"; }},
    {"createdAt", [](QNItem& theirs) { theirs.setCreatedAt(7); },
     [](QNItem& mine) { return mine.createdAt() == 7; }},
    {"updatedAt", [](QNItem& theirs) { theirs.setUpdatedAt(7); },
     [](QNItem& mine) { return mine.updatedAt() == 7; }},
    {"faveIndex", [](QNItem& theirs) { theirs.setFaveIndex(7); },
     [](QNItem& mine) { return mine.faveIndex() == 7; }},
    {"folderId", [](QNItem& theirs) { theirs.setFolderId(7); },
     [](QNItem& mine) { return mine.folderId() == 7; }},
    {"folderUUID", [](QNItem& theirs) { theirs.setFolderUUID("f"); },
     [](QNItem& mine) { return mine.folderUUID() == "f"; }},
    {"scope", [](QNItem& theirs) { theirs.setScope("Never"); },
     [](QNItem& mine) { return mine.scope() == "Never"; }},
    {"trashed", [](QNItem& theirs) { theirs.setTrashed(true); },
     [](QNItem& mine) { return mine.trashed(); }},
};

TEST_F(QNItemReplace, TakesEachOfTheColumnsAndDirtiesTheRow) {
  for (const ColumnCase& column : kColumns) {
    const auto mine = versionIn(_vault);
    const auto theirs = twinOf(*mine, _vault);
    column.change(*theirs);
    ASSERT_FALSE(mine->dirtyRow());

    mine->objectByReplacingWith(theirs);

    EXPECT_TRUE(mine->dirtyRow()) << column.name;
    EXPECT_TRUE(column.isTaken(*mine)) << column.name;
  }
}

TEST_F(QNItemReplace, WithAnEqualVersionLeavesTheRowClean) {
  _mine->setTitle("title");
  _mine->setNotesPlain("notes");
  const auto theirs = twinOf(*_mine, _vault);

  _mine->objectByReplacingWith(theirs);

  EXPECT_FALSE(_mine->dirtyRow());
}

// Content

TEST_F(QNItemReplace, TakesOverviewAndDetailsWhole) {
  _mine->setTitle("mine");
  _mine->setTags({"mine"});
  _mine->setNotesPlain("mine");
  _mine->addPreviouslyUsedPassword({QNSecret("mine"), 1});
  addField(*_mine, "s", "x", "mine");
  _theirs->setTitle("theirs");
  _theirs->setNotesPlain("theirs");
  _theirs->addPreviouslyUsedPassword({QNSecret("theirs"), 2});
  addField(*_theirs, "s", "y", "theirs");
  _theirs->willSerialize();

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->title(), "theirs");
  EXPECT_THAT(_mine->tags(), IsEmpty());
  EXPECT_EQ(_mine->notesPlain(), "theirs");
  EXPECT_THAT(historyOf(*_mine), ElementsAre("theirs@2"));
  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/y=theirs"));
}

TEST_F(QNItemReplace, SharesNothingWithTheOther) {
  addField(*_theirs, "s", "y", "theirs");
  _theirs->willSerialize();
  _mine->objectByReplacingWith(_theirs);

  _theirs->setStringFieldValue("changed", "y");
  _theirs->willSerialize();

  EXPECT_THAT(fieldsOf(*_mine), ElementsAre("s/y=theirs"));
}

TEST_F(QNItemReplace, KeepsItsFormerKeysAndTakesTheOthers) {
  const std::string mine = mr_base64encode(_mine->key()->rawKeyData());
  const std::string theirs = mr_base64encode(_theirs->key()->rawKeyData());

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(keysOf(*_mine), UnorderedElementsAre(mine, theirs));
}

TEST_F(QNItemReplace, IsSealedUnderItsOwnKey) {
  save(*_mine);
  _theirs->setNotesPlain("theirs");

  _mine->objectByReplacingWith(_theirs);
  save(*_mine);

  const auto clear = _mine->key()->decrypt(*_mine->detailsData());
  ASSERT_TRUE(clear);
  EXPECT_EQ(opened(*_mine, _vault)->notesPlain(), "theirs");
}

TEST_F(QNItemReplace, LetsNothingWinThatDoesNotOpen) {
  _mine->setTitle("mine");
  _mine->setNotesPlain("mine");
  _mine->addURLString("a");
  save(*_mine);
  const auto noOverview = opened(*_mine, _vault);
  noOverview->setOverviewData(Bytes(64, 1));
  const auto noDetails = opened(*_mine, _vault);
  noDetails->setDetailsData(Bytes(64, 1));
  const auto notLoaded = listed(*_mine, _vault);
  for (const auto& broken : {noOverview, noDetails, notLoaded}) {
    broken->setCategoryUUID("004");
    broken->setTrashed(true);
    if (broken != notLoaded) broken->addURLString("b");
    const MRCapturingSink sink;

    EXPECT_EQ(_mine->objectByReplacingWith(broken), _mine);

    EXPECT_FALSE(_mine->dirtyRow());
    EXPECT_EQ(_mine->title(), "mine");
    EXPECT_EQ(_mine->notesPlain(), "mine");
    EXPECT_EQ(_mine->categoryUUID(), "003");
    EXPECT_FALSE(_mine->trashed());
    EXPECT_THAT(addressesOf(*_mine), ElementsAre("a"));
    EXPECT_THAT(errors(sink), Contains("Attempted to replace " + _mine->description() + " with " +
                                       broken->description() + ", which doesn't open"));
  }
}

TEST_F(QNItemReplace, RetiresThePasswordThatGivesWay) {
  _mine->setPassword("mine");
  save(*_mine);
  const auto mine = opened(*_mine, _vault);
  _theirs->setPassword("theirs");

  mine->objectByReplacingWith(_theirs);
  save(*mine);

  EXPECT_TRUE(mine->password()->equals("theirs"));
  ASSERT_EQ(mine->numberOfPreviouslyUsedPasswords(), 1u);
  EXPECT_NE(mine->previouslyUsedPasswordWithValue("mine"), nullptr);
}

TEST_F(QNItemReplace, RetiresNoPasswordASecondTimeThatTheWinnerRetired) {
  QNScopedClock clock{1000};
  _mine->setPassword("old");
  save(*_mine);
  const auto mine = opened(*_mine, _vault);
  const auto theirs = opened(*_mine, _vault);
  theirs->setPassword("new");
  save(*theirs);
  clock.setSeconds(2000);

  mine->objectByReplacingWith(theirs);
  save(*mine);

  EXPECT_TRUE(mine->password()->equals("new"));
  EXPECT_THAT(historyOf(*mine), ElementsAre("old@1000"));
}

TEST_F(QNItemReplace, LeavesTheCountOfAttachmentsAlone) {
  _mine->setNumberOfAttachments(2);
  _theirs->setNumberOfAttachments(5);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->numberOfAttachments(), 2);
}

TEST_F(QNItemReplace, OfAnAccountTakesTheBookkeeping) {
  const auto vault = accountVault();
  const auto mine = versionIn(vault);
  const auto theirs = versionIn(vault);
  theirs->h9ItemProperties()->setItemVersion(4);
  theirs->h9ItemProperties()->setLocalEditCount(2);
  const MRCapturingSink sink;

  mine->objectByReplacingWith(theirs);

  EXPECT_EQ(mine->h9ItemProperties()->itemVersion(), 4u);
  EXPECT_EQ(mine->h9ItemProperties()->localEditCount(), 2u);
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST_F(QNItemReplace, OfALocalVaultAsksForNoBookkeeping) {
  const MRCapturingSink sink;

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(sink.records(), IsEmpty());
}

// Addresses

TEST_F(QNItemReplace, LeavesTheWinnersAddressesInTheWinnersOrder) {
  for (const auto url : {"a", "b", "c"}) _mine->addURLString(url);
  for (const auto url : {"z", "c", "d", "b"}) _theirs->addURLString(url);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(addressesOf(*_mine), ElementsAre("z", "c", "d", "b"));
  EXPECT_EQ(_mine->URLString(), "z");
}

TEST_F(QNItemReplace, KeepsItsOwnAddressObjectsWithTheWinnersContent) {
  _mine->addURLString("a", "mine");
  const auto url = _mine->URLAtIndex(0);
  url->_setOid(8);
  _theirs->addURLString("a", "theirs");
  _theirs->URLAtIndex(0)->setDisplayOrder(300);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->URLAtIndex(0), url);
  EXPECT_EQ(url->oid(), 8u);
  EXPECT_EQ(url->label(), "theirs");
  EXPECT_EQ(url->displayOrder(), 300u);
}

TEST_F(QNItemReplace, TakesOverTheAddressObjectsThatItLacks) {
  _theirs->addURLString("a");
  const auto url = _theirs->URLAtIndex(0);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->URLAtIndex(0), url);
  EXPECT_EQ(url->item(), _mine);
}

TEST_F(QNItemReplace, RemovesTheAddressesThatTheOtherLacks) {
  _mine->addURLString("a");
  const auto url = _mine->URLAtIndex(0);
  url->_setOid(8);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(addressesOf(*_mine), IsEmpty());
  EXPECT_THAT(_mine->deletedURLs(), ElementsAre(url));
}

TEST_F(QNItemReplace, LosesDuplicateAddressesOnBothSides) {
  for (const auto& item : {_mine, _theirs}) {
    item->addURLString("a", "first");
    item->addURLString("a", "second");
  }

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(addressesOf(*_mine), ElementsAre("a"));
  EXPECT_THAT(addressesOf(*_theirs), ElementsAre("a"));
  EXPECT_EQ(_mine->URLAtIndex(0)->label(), "first");
}

TEST_F(QNItemReplace, TellsAddressesWithoutATextApartByTheirLabels) {
  const auto kept = addLabel(*_mine, "kept");
  addLabel(*_mine, "gone");
  addLabel(*_theirs, "new");
  _theirs->addURLString("kept");
  addLabel(*_theirs, "kept");
  const auto taken = _theirs->URLs();

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(_mine->URLs(), ElementsAre(taken[0], taken[1], kept));
  EXPECT_EQ(_mine->URLAtIndex(0)->label(), "new");
}

TEST_F(QNItemReplace, KeepsARowThatAnAddressTookOver) {
  _mine->addURLString("a");
  _mine->URLAtIndex(0)->_setOid(8);
  _theirs->addURLString("b");
  _theirs->URLAtIndex(0)->_setOid(8);

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(addressesOf(*_mine), ElementsAre("b"));
  EXPECT_THAT(_mine->deletedURLs(), IsEmpty());
}

TEST_F(QNItemReplace, LeavesAnAddressThatDoesNotOpen) {
  const auto broken = std::make_shared<QNItemURL>(QNExisting{8});
  broken->setProfile(_vault);
  broken->setOverviewData(Bytes(64, 1));
  _mine->addURL(broken);
  _theirs->addURLString("a");
  const MRCapturingSink sink;

  _mine->objectByReplacingWith(_theirs);

  EXPECT_THAT(addressesOf(*_mine), ElementsAre("a", "(none)"));
}

TEST_F(QNItemReplace, ForgetsTheDomainOfTheFormerAddress) {
  _mine->addURLString("https://a.example/");
  ASSERT_EQ(_mine->derivedDomain(), "a.example");
  _theirs->addURLString("https://b.example/");

  _mine->objectByReplacingWith(_theirs);

  EXPECT_EQ(_mine->derivedDomain(), "b.example");
}

}  // namespace
}  // namespace quillon
