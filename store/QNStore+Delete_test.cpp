#include <sqlite3.h>

#include "quillon/items/QNTombstone.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

class QNStoreDelete : public ::testing::Test {
 protected:
  /// The first number of a statement on the file, read behind the store's back.
  [[nodiscard]] std::uint64_t numberIn(std::string_view sql) const {
    const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
    return database->number(sql);
  }
  std::shared_ptr<QNItem> deletedLogin(std::string_view title) {
    auto item = savedLogin(session, title);
    EXPECT_EQ(errorOf(session.store->deleteItem(item)), "");
    return item;
  }

  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  QNScopedClock clock{1'700'000'000};
  Session session = makeSession(file);
};

TEST_F(QNStoreDelete, LeavesAnIdentifierTimesAndTheWrappedKey) {
  const auto item = savedLogin(session, "Bank");
  const Bytes key = toBytes(item->encryptedKey());
  clock.setSeconds(1'700'000'500);

  ASSERT_TRUE(session.store->deleteItem(item).ok());

  const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
  QNQuery row = database->query(
      "SELECT uuid, category_uuid, status, created_at, updated_at, tx_timestamp, overview, "
      "wrapped_key, details FROM items JOIN details ON item_id = oid");
  ASSERT_TRUE(row.next());
  EXPECT_EQ(row.text(0), *item->uuid());
  EXPECT_EQ(row.text(1), "099");
  EXPECT_EQ(row.number(2), 1u);
  EXPECT_EQ(row.number(3), 1'700'000'000u);
  EXPECT_EQ(row.number(4), 1'700'000'500u);
  EXPECT_EQ(row.number(5), 1'700'000'500u);
  EXPECT_TRUE(row.bytes(6).empty());
  EXPECT_EQ(toBytes(row.bytes(7)), key);
  EXPECT_TRUE(row.bytes(8).empty());
  EXPECT_FALSE(row.next());
}

TEST_F(QNStoreDelete, WipesEverythingElse) {
  const auto item = makeLogin(session.vault, "Bank");
  item->setFaveIndex(4);
  item->setScope("Never");
  item->setFolderUUID("folder");
  item->setNumberOfTimesUsed(3);
  item->setLastUsedTimestamp(5);
  item->setInboxItem(true);
  item->setNumberOfAttachments(2);
  ASSERT_TRUE(session.store->save(item).ok());

  ASSERT_TRUE(session.store->deleteItem(item).ok());

  EXPECT_EQ(numberIn("SELECT fave_index + times_used + last_used + inbox + attachments FROM items"),
            0u);
  EXPECT_EQ(numberIn("SELECT count(*) FROM items WHERE scope IS NULL AND folder_uuid IS NULL"), 1u);
  EXPECT_EQ(numberIn("SELECT count(*) FROM urls"), 0u);
}

TEST_F(QNStoreDelete, LeavesNoByteOfWhatWasSealed) {
  const auto item = savedLogin(session, "Bank");
  const auto overview = *item->overviewData();
  const auto details = *item->detailsData();
  ASSERT_TRUE(session.store->deleteItem(item).ok());
  session = Session();

  const std::string bytes = bytesOfFile(file);

  EXPECT_EQ(bytes.find(textOf(overview)), std::string::npos);
  EXPECT_EQ(bytes.find(textOf(details)), std::string::npos);
}

TEST_F(QNStoreDelete, IsNeitherListedNorCountedNorRead) {
  savedLogin(session, "stays");
  const auto item = deletedLogin("goes");

  for (const auto which : {QNStore::Which::normal, QNStore::Which::all, QNStore::Which::trashed}) {
    const std::vector<std::string> titles = titlesIn(session, which);
    EXPECT_EQ(titles.size(), which == QNStore::Which::trashed ? 0u : 1u);
  }
  EXPECT_EQ(errorOf(session.store->item(session.vault, *item->uuid())),
            codeText(QNStoreErrorCode::notFound));
  const auto info = std::move(session.store->vaults()).value().at(0);
  EXPECT_EQ(info.items, 1u);
  EXPECT_EQ(info.trashed, 0u);
  const auto counts = std::move(session.store->categories(*session.vault)).value();
  EXPECT_EQ(counts, (std::vector<std::pair<std::string, std::uint64_t>>{{"001", 1}}));
  const auto set =
      std::move(session.store->itemSetForURL(session.vault, "https://www.example.com"));
  EXPECT_EQ(set.value()->derivedLogins.size(), 1u);
}

TEST_F(QNStoreDelete, IsCheckedAndNoItemOfTheCheck) {
  savedLogin(session, "stays");
  deletedLogin("goes");

  const auto report = std::move(session.store->check(session.vault)).value();

  EXPECT_TRUE(report.clean());
  EXPECT_EQ(report.itemsChecked, 1u);
  EXPECT_EQ(report.tombstonesChecked, 1u);
}

TEST_F(QNStoreDelete, TakesATimeThatNoChangeHasHad) {
  const auto first = savedLogin(session, "a");
  const auto second = savedLogin(session, "b");

  ASSERT_TRUE(session.store->deleteItem(first).ok());

  EXPECT_EQ(numberIn("SELECT max(tx_timestamp) FROM items"), second->txTimestamp() + 1);
  EXPECT_EQ(numberIn("SELECT count(DISTINCT tx_timestamp) FROM items"), 2u);
}

TEST_F(QNStoreDelete, TheUUIDCanComeBack) {
  const auto item = deletedLogin("back");
  savedLogin(session, "other");

  item->setTrashed(false);
  ASSERT_EQ(errorOf(session.store->save(item)), "");

  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"back", "other"}));
  EXPECT_EQ(numberIn("SELECT count(*) FROM items"), 2u);
  EXPECT_EQ(numberIn("SELECT count(*) FROM urls"), 2u);
  EXPECT_TRUE(reread(file, *item->uuid())->password()->equals("correct horse"));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreDelete, ADeletedItemThatIsBackCanBeDeletedAgain) {
  const auto item = deletedLogin("back");
  item->setTrashed(false);
  ASSERT_TRUE(session.store->save(item).ok());

  ASSERT_EQ(errorOf(session.store->deleteItem(item)), "");

  EXPECT_EQ(numberIn("SELECT count(*) FROM items WHERE category_uuid = '099'"), 1u);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreDelete, AUUIDIsTakenAsLongAsItsItemIsThere) {
  const auto item = savedLogin(session, "a");
  const auto second = makeLogin(session.vault, "b");
  second->setUuid(item->uuid());

  EXPECT_EQ(errorOf(session.store->save(second)), codeText(QNStoreErrorCode::exists));

  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
}

TEST_F(QNStoreDelete, AnAlteredTombstoneIsNotCoveredByAnItemOfItsUUID) {
  const MRCapturingSink silence;
  const auto item = deletedLogin("back");
  auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
  database->run("UPDATE items SET updated_at = 9");
  database.reset();
  item->setTrashed(false);

  EXPECT_EQ(errorOf(session.store->save(item)), codeText(QNStoreErrorCode::damaged));
}

TEST_F(QNStoreDelete, KeepsNoKeyOfABodyThatWasAltered) {
  const MRCapturingSink silence;
  const auto item = savedLogin(session, "a");
  auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
  database->run("UPDATE details SET wrapped_key = randomblob(112)");
  database.reset();

  ASSERT_EQ(errorOf(session.store->deleteItem(item)), "");

  EXPECT_EQ(numberIn("SELECT length(wrapped_key) FROM details"), 0u);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreDelete, AListedShellIsDeletedWithoutItsDetails) {
  savedLogin(session, "a");
  std::shared_ptr<QNItem> shell;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::all, [&shell](const auto& item) { shell = item; })
          .ok());

  ASSERT_TRUE(session.store->deleteItem(shell).ok());

  EXPECT_EQ(session.store->detailsRead(), 0u);
  EXPECT_EQ(numberIn("SELECT length(wrapped_key) FROM details"), 112u);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreDelete, AnItemThatMovesLeavesATombstoneBehind) {
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  const auto item = savedLogin(session, "moves");
  const std::string before = *item->uuid();
  item->setProfile(other);

  ASSERT_EQ(errorOf(session.store->save(item)), "");

  const auto feed = std::move(session.store->changesSince(session.vault, 0)).value();
  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].uuid, before);
  EXPECT_EQ(feed.changes[0].kind, QNStoredChange::Kind::deleted);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  Session theirs{nullptr, other};
  theirs.store = std::move(session.store);
  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"moves"});
  EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
}

TEST_F(QNStoreDelete, AFailedTransactionDeletesNothing) {
  const auto item = savedLogin(session, "a");

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    if (!session.store->deleteItem(item).ok()) return QNDone{};
    return storeError(QNStoreErrorCode::busy, "on purpose");
  });

  EXPECT_FALSE(done.ok());
  EXPECT_TRUE(item->hasOid());
  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

// Tombstones that others made

std::shared_ptr<QNItem> tombstoneOf(QNItem& item) {
  auto tombstone = std::make_shared<QNTombstone>(QNExisting{item.oid()});
  tombstone->setProfile(item.profile());
  tombstone->setUuid(item.uuid());
  tombstone->setCreatedAt(item.createdAt());
  tombstone->setEncryptedKey(item.encryptedKey());
  tombstone->setTxTimestamp(item.txTimestamp());
  tombstone->markDetailsLoaded();
  return tombstone;
}

TEST_F(QNStoreDelete, ASavedTombstoneTakesItsItemsRow) {
  const auto item = savedLogin(session, "a");
  const auto tombstone = tombstoneOf(*item);
  clock.setSeconds(1'700'000'500);

  ASSERT_EQ(errorOf(session.store->save(tombstone)), "");

  EXPECT_TRUE(titlesIn(session, QNStore::Which::all).empty());
  EXPECT_EQ(numberIn("SELECT updated_at FROM items WHERE category_uuid = '099'"), 1'700'000'500u);
  EXPECT_EQ(numberIn("SELECT length(wrapped_key) FROM details"), 112u);
  EXPECT_EQ(numberIn("SELECT length(overview) FROM items"), 0u);
  EXPECT_EQ(numberIn("SELECT count(*) FROM urls"), 0u);
  EXPECT_EQ(tombstone->oid(), item->oid());
  EXPECT_FALSE(tombstone->dirtyRow());
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreDelete, ASavedTombstoneLosesTheRaceAgainstALaterSave) {
  const auto item = savedLogin(session, "a");
  const auto tombstone = tombstoneOf(*item);
  item->setTitle("b");
  ASSERT_TRUE(session.store->save(item).ok());

  EXPECT_EQ(errorOf(session.store->save(tombstone)), codeText(QNStoreErrorCode::lostRace));

  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"b"});
  EXPECT_TRUE(tombstone->dirtyRow());
}

TEST_F(QNStoreDelete, ATombstoneOfAnItemThatWasNeverHereIsSavedToo) {
  const auto tombstone = std::make_shared<QNTombstone>(initNew);
  tombstone->setProfile(session.vault);

  ASSERT_EQ(errorOf(session.store->save(tombstone)), "");
  tombstone->markRowDirty();
  ASSERT_EQ(errorOf(session.store->save(tombstone)), "");

  const auto feed = std::move(session.store->changesSince(session.vault, 0)).value();
  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].uuid, *tombstone->uuid());
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreDelete, ATombstoneTakesNoOtherItemsUUID) {
  const auto item = savedLogin(session, "a");
  const auto tombstone = std::make_shared<QNTombstone>(initNew);
  tombstone->setProfile(session.vault);
  tombstone->setUuid(item->uuid());

  EXPECT_EQ(errorOf(session.store->save(tombstone)), codeText(QNStoreErrorCode::exists));

  EXPECT_EQ(titlesIn(session), std::vector<std::string>{"a"});
}

}  // namespace
}  // namespace quillon
