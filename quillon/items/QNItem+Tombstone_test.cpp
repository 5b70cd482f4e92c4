#include "quillon/items/internal/QNMergeTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QNItemTombstone : public testing::Test {
 protected:
  std::shared_ptr<QNProfile> _vault = localVault();
  QNSampleItemRef _item = savedItem();

 private:
  QNSampleItemRef savedItem() {
    auto item = versionIn(_vault);
    item->setTitle("title");
    item->setNotesPlain("notes");
    item->setPassword("password");
    item->setCreatedAt(5);
    item->setUpdatedAt(6);
    item->setTxTimestamp(7);
    addField(*item, "s", "x", "value");
    save(*item);
    return item;
  }
};

TEST_F(QNItemTombstone, HasTheItemsIdentityTimesAndKey) {
  const MRCapturingSink sink;

  const auto tombstone = _item->makeTombstone();

  EXPECT_EQ(tombstone->oid(), _item->oid());
  EXPECT_EQ(*tombstone->uuid(), *_item->uuid());
  EXPECT_EQ(tombstone->profile(), _vault);
  EXPECT_EQ(tombstone->createdAt(), 5u);
  EXPECT_EQ(tombstone->updatedAt(), 6u);
  EXPECT_EQ(tombstone->txTimestamp(), 7u);
  EXPECT_EQ(toBytes(tombstone->encryptedKey()), toBytes(_item->encryptedKey()));
  EXPECT_TRUE(tombstone->loaded());
  EXPECT_TRUE(tombstone->trashed());
  EXPECT_TRUE(tombstone->dirtyRow());
  EXPECT_EQ(tombstone->categoryUUID(), "099");
  EXPECT_THAT(sink.records(), IsEmpty());
}

TEST_F(QNItemTombstone, HasNoContent) {
  const auto tombstone = _item->makeTombstone();

  EXPECT_EQ(tombstone->overviewTextForKey(kOverviewTitle), std::nullopt);
  EXPECT_EQ(tombstone->notesPlain(), std::nullopt);
  EXPECT_EQ(tombstone->numberOfFieldSections(), 0u);
  EXPECT_FALSE(tombstone->hasPassword());
}

TEST_F(QNItemTombstone, DeletesTheRowsOfTheAddresses) {
  _item->addURLString("a");
  _item->addURLString("b");
  _item->addURLString("c");
  const auto a = _item->URLAtIndex(0);
  const auto c = _item->URLAtIndex(2);
  a->_setOid(8);
  c->_setOid(9);

  const auto tombstone = _item->makeTombstone();

  EXPECT_THAT(tombstone->URLs(), IsEmpty());
  EXPECT_THAT(tombstone->deletedURLs(), ElementsAre(a, c));
}

TEST_F(QNItemTombstone, DeletesTheRowsOfAddressesThatWaitedForASave) {
  _item->addURLString("a");
  const auto removed = _item->URLAtIndex(0);
  removed->_setOid(8);
  _item->removeURL(removed);

  const auto tombstone = _item->makeTombstone();

  EXPECT_THAT(tombstone->deletedURLs(), ElementsAre(removed));
}

TEST_F(QNItemTombstone, LeavesTheItemAsItIs) {
  _item->addURLString("a");
  _item->didSave();

  const auto tombstone = _item->makeTombstone();

  EXPECT_FALSE(_item->dirtyRow());
  EXPECT_EQ(_item->numberOfURLs(), 1u);
  EXPECT_EQ(_item->title(), "title");
}

TEST_F(QNItemTombstone, IsSavedUnderTheSameKeyWithoutTheItemsContent) {
  const auto key = _item->key();
  const auto tombstone = _item->makeTombstone();
  const MRCapturingSink sink;

  tombstone->willSave();

  EXPECT_THAT(sink.records(), IsEmpty());
  const auto overview = _vault->decryptOverview(*tombstone->overviewData());
  ASSERT_TRUE(overview);
  EXPECT_EQ(textOf(*overview).find("title"), std::string_view::npos);
  const auto details = key->decrypt(*tombstone->detailsData());
  ASSERT_TRUE(details);
  for (const std::string_view text : {"notes", "password", "value"}) {
    EXPECT_EQ(textOf(*details).find(text), std::string_view::npos) << text;
  }
}

TEST_F(QNItemTombstone, IsMadeOfALoadedItem) {
  const auto shell = listed(*_item, _vault);
  const MRCapturingSink sink;

  const auto tombstone = shell->makeTombstone();

  EXPECT_EQ(tombstone->oid(), _item->oid());
  ASSERT_FALSE(assertions(sink).empty());
  EXPECT_EQ(assertions(sink)[0], "Item must be loaded before it is made a tombstone.");
}

TEST_F(QNItemTombstone, BelongsToALocalVault) {
  const auto item = versionIn(accountVault());
  const MRCapturingSink sink;

  const auto tombstone = item->makeTombstone();

  EXPECT_NE(tombstone, nullptr);
  EXPECT_THAT(assertions(sink), ElementsAre("Tombstones are an QN4 concept only."));
}

}  // namespace
}  // namespace quillon
