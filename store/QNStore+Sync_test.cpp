#include <gmock/gmock.h>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/sync/QNSyncState.h"
#include "store/internal/QNStoreState.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = QNStoredChange::Kind;

class QNStoreSync : public ::testing::Test {
 protected:
  void runSQL(const std::string& sql) const {
    auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
    database->run(sql);
    EXPECT_FALSE(database->failed()) << sql;
  }
  QNChangeFeed changesSince(std::uint64_t txTimestamp) {
    auto feed = session.store->changesSince(session.vault, txTimestamp);
    EXPECT_TRUE(feed.ok()) << feed.error().message;
    return feed.ok() ? feed.value() : QNChangeFeed();
  }
  std::shared_ptr<QNSyncSource> newSource() {
    auto source = std::make_shared<QNSyncSource>(initNew);
    source->setProfile(session.vault);
    source->setKeychainIdentifier("/media/stick");
    return source;
  }
  std::shared_ptr<QNSyncSource> savedSource() {
    auto source = newSource();
    source->setItemStates({stateOf("a"), stateOf("b")});
    EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), "");
    return source;
  }
  static std::shared_ptr<QNSyncState> stateOf(std::optional<std::string> uuid) {
    auto state = std::make_shared<QNSyncState>();
    state->setObjectType(1);
    state->setObjectUUID(std::move(uuid));
    state->setSourceTimestamp(11);
    state->setLocalTimestamp(12);
    return state;
  }
  std::vector<std::shared_ptr<QNSyncSource>> sources() {
    Session other = openSession(file);
    auto read = other.store->syncSources(other.vault);
    EXPECT_TRUE(read.ok()) << read.error().message;
    return read.ok() ? read.value() : std::vector<std::shared_ptr<QNSyncSource>>();
  }

  const MRCapturingSink silence;
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  QNScopedClock clock{1'700'000'000};
  Session session = makeSession(file);
};

// Changes

TEST_F(QNStoreSync, TellsOfSavedTrashedAndDeletedItemsInOrder) {
  const auto trashed = savedLogin(session, "trashed");
  const auto deleted = savedLogin(session, "deleted");
  const auto saved = savedLogin(session, "saved");
  trashed->setTrashed(true);
  ASSERT_TRUE(session.store->save(trashed).ok());
  const std::string uuid = *deleted->uuid();
  ASSERT_TRUE(session.store->deleteItem(deleted).ok());

  const QNChangeFeed feed = changesSince(0);

  ASSERT_EQ(feed.changes.size(), 3u);
  EXPECT_EQ(feed.changes[0].uuid, *saved->uuid());
  EXPECT_EQ(feed.changes[0].kind, Kind::saved);
  EXPECT_EQ(feed.changes[0].txTimestamp, saved->txTimestamp());
  EXPECT_EQ(feed.changes[1].uuid, *trashed->uuid());
  EXPECT_EQ(feed.changes[1].kind, Kind::trashed);
  EXPECT_EQ(feed.changes[2].uuid, uuid);
  EXPECT_EQ(feed.changes[2].kind, Kind::deleted);
  EXPECT_EQ(feed.changes[2].txTimestamp, trashed->txTimestamp() + 1);
  EXPECT_EQ(feed.txTimestamp, feed.changes[2].txTimestamp);
  EXPECT_THAT(feed.damaged, IsEmpty());
}

TEST_F(QNStoreSync, TellsOnlyOfWhatCameAfterAMoment) {
  savedLogin(session, "before");
  const std::uint64_t moment = changesSince(0).txTimestamp;
  EXPECT_THAT(changesSince(moment).changes, IsEmpty());

  const auto after = savedLogin(session, "after");

  const QNChangeFeed feed = changesSince(moment);
  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].uuid, *after->uuid());
}

TEST_F(QNStoreSync, TellsOfAnItemThatIsBackAsSaved) {
  const auto item = savedLogin(session, "a");
  ASSERT_TRUE(session.store->deleteItem(item).ok());
  item->setTrashed(false);
  ASSERT_TRUE(session.store->save(item).ok());

  const QNChangeFeed feed = changesSince(0);

  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].kind, Kind::saved);
}

TEST_F(QNStoreSync, NoMomentLiesBehindTheLastOne) {
  savedLogin(session, "a");

  EXPECT_THAT(changesSince(std::numeric_limits<std::uint64_t>::max()).changes, IsEmpty());
}

TEST_F(QNStoreSync, EveryChangeHasATimeOfItsOwnThatGrows) {
  std::uint64_t last = 0;
  const auto item = savedLogin(session, "a");
  for (const std::uint64_t now : {1'700'000'000u, 1'700'000'000u, 1'600'000'000u, 1'800'000'000u}) {
    clock.setSeconds(now);
    item->setTitle("edit " + std::to_string(now) + std::to_string(last));
    ASSERT_TRUE(session.store->save(item).ok());
    EXPECT_GT(changesSince(0).txTimestamp, last);
    last = changesSince(0).txTimestamp;
  }
  ASSERT_TRUE(session.store->deleteItem(item).ok());

  EXPECT_GT(changesSince(0).txTimestamp, last);
}

TEST_F(QNStoreSync, TellsOfEachVaultByItself) {
  savedLogin(session, "a");
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());

  const auto feed = std::move(session.store->changesSince(other, 0)).value();

  EXPECT_THAT(feed.changes, IsEmpty());
  EXPECT_EQ(feed.txTimestamp, 0u);
}

TEST_F(QNStoreSync, NamesAnAlteredRowAndTellsNothingOfIt) {
  const auto first = savedLogin(session, "a");
  const auto second = savedLogin(session, "b");
  runSQL("UPDATE items SET category_uuid = '099' WHERE oid = 1");

  const QNChangeFeed feed = changesSince(0);

  EXPECT_THAT(feed.damaged, ElementsAre(*first->uuid()));
  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].uuid, *second->uuid());
}

TEST_F(QNStoreSync, TellsNothingOfALockedVault) {
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->changesSince(session.vault, 0)),
            codeText(QNStoreErrorCode::locked));
}

TEST_F(QNStoreSync, FindsChangesThroughAnIndexAndInItsOrder) {
  const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
  const std::string explain = "EXPLAIN QUERY PLAN " + std::string(kSelectChanges);
  QNQuery plan = database->query(explain, std::uint64_t{1}, std::uint64_t{0});
  std::vector<std::string> steps;

  while (plan.next()) steps.emplace_back(plan.text(3));

  EXPECT_THAT(steps, ElementsAre("SEARCH items USING INDEX items_by_tx_timestamp "
                                 "(vault_id=? AND tx_timestamp>?)"));
}

// Sources

TEST_F(QNStoreSync, GivesBackEverythingOfASource) {
  const QNScopedUser user({"ada", "/home/ada/lib", "/home/ada/doc"});
  const auto source = newSource();
  source->setKeychainIdentifier("Documents");
  source->setKeychainType("folder");
  source->setRemoteProfileUUID("remote");
  source->setRemoteProfileTimestamp(std::numeric_limits<std::uint64_t>::max());
  source->setRemoteProfileAttributesEncryptedWithLocal(Bytes{1, 2});
  source->setLocalProfileUUID("local");
  source->setLocalProfileTimestamp(12);
  source->setLocalProfileAttributesEncryptedWithRemote(Bytes{});
  ASSERT_EQ(errorOf(session.store->saveSyncSource(source)), "");
  EXPECT_FALSE(source->dirtyRow());

  const auto read = sources();

  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0]->oid(), source->oid());
  EXPECT_TRUE(read[0]->legacySyncSource());
  EXPECT_EQ(read[0]->keychainIdentifier(), "/home/ada/doc/quillon.marlowkeychain");
  EXPECT_EQ(read[0]->keychainType(), "folder");
  EXPECT_EQ(read[0]->remoteProfileUUID(), "remote");
  EXPECT_EQ(read[0]->remoteProfileTimestamp(), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(read[0]->remoteProfileAttributesEncryptedWithLocal(), (Bytes{1, 2}));
  EXPECT_EQ(read[0]->localProfileUUID(), "local");
  EXPECT_EQ(read[0]->localProfileTimestamp(), 12u);
  EXPECT_EQ(read[0]->localProfileAttributesEncryptedWithRemote(), Bytes{});
  EXPECT_FALSE(read[0]->dirtyRow());
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreSync, GivesBackASourceOfNothing) {
  const auto source = newSource();
  source->setKeychainIdentifier(std::nullopt);
  ASSERT_EQ(errorOf(session.store->saveSyncSource(source)), "");

  const auto read = sources();

  ASSERT_EQ(read.size(), 1u);
  EXPECT_FALSE(read[0]->legacySyncSource());
  EXPECT_EQ(read[0]->keychainIdentifier(), std::nullopt);
  EXPECT_EQ(read[0]->remoteProfileAttributesEncryptedWithLocal(), std::nullopt);
  EXPECT_THAT(read[0]->itemStates(), IsEmpty());
}

TEST_F(QNStoreSync, SavesNoSourceWithTwoStatesOfOneItem) {
  const auto source = savedSource();
  source->setItemStates({stateOf("a"), stateOf("b"), stateOf("a")});

  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), codeText(QNStoreErrorCode::exists));

  EXPECT_EQ(sources().at(0)->itemStates().size(), 2u);
  source->setItemStates({stateOf(std::nullopt), stateOf(std::nullopt)});
  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), "");
}

TEST_F(QNStoreSync, GivesBackEveryStateInItsSetAndOrder) {
  const auto source = newSource();
  const auto item = stateOf("b");
  item->setObjectID(7);
  item->setSyncedAt(13);
  const auto odd = stateOf(std::nullopt);
  odd->setObjectType(-1);
  source->setItemStates({item, stateOf("a"), odd});
  source->setFolderStates({stateOf("f")});
  source->setAttachmentStates({stateOf("x"), stateOf("x")});
  ASSERT_EQ(errorOf(session.store->saveSyncSource(source)), "");

  const auto read = sources().at(0);

  ASSERT_EQ(read->itemStates().size(), 3u);
  const auto first = read->itemStates()[0];
  EXPECT_EQ(first->source(), read);
  EXPECT_EQ(first->objectType(), 1);
  EXPECT_EQ(first->objectID(), 7u);
  EXPECT_EQ(first->objectUUID(), "b");
  EXPECT_EQ(first->syncedAt(), 13u);
  EXPECT_EQ(first->sourceTimestamp(), 11u);
  EXPECT_EQ(first->localTimestamp(), 12u);
  EXPECT_EQ(read->itemStates()[1]->objectUUID(), "a");
  EXPECT_EQ(read->itemStates()[2]->objectUUID(), std::nullopt);
  EXPECT_EQ(read->itemStates()[2]->objectType(), -1);
  EXPECT_NE(read->syncStateForFolderUUID("f"), nullptr);
  EXPECT_EQ(read->attachmentStates().size(), 2u);
}

TEST_F(QNStoreSync, SavesAChangeInsideAStateOfACleanSource) {
  const auto source = savedSource();
  source->itemStates()[0]->setLocalTimestamp(99);
  ASSERT_FALSE(source->dirtyRow());

  ASSERT_EQ(errorOf(session.store->saveSyncSource(source)), "");

  const auto read = sources().at(0);
  EXPECT_EQ(read->syncStateForItemUUID("a")->localTimestamp(), 99u);
  EXPECT_EQ(read->itemStates().size(), 2u);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreSync, KeepsTheSourcesOfAVaultInRowOrderAndApartFromOthers) {
  const auto first = savedSource();
  const auto second = savedSource();
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());

  const auto read = sources();

  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0]->oid(), first->oid());
  EXPECT_EQ(read[1]->oid(), second->oid());
  EXPECT_THAT(session.store->syncSources(other).value(), IsEmpty());
}

TEST_F(QNStoreSync, ForgetsASourceWithItsStates) {
  const auto source = savedSource();

  ASSERT_EQ(errorOf(session.store->deleteSyncSource(source)), "");

  EXPECT_FALSE(source->hasOid());
  EXPECT_THAT(sources(), IsEmpty());
  const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
  EXPECT_EQ(database->number("SELECT count(*) FROM sync_states"), 0u);
  EXPECT_EQ(errorOf(session.store->deleteSyncSource(source)), codeText(QNStoreErrorCode::notFound));
}

TEST_F(QNStoreSync, TellsTheSecondOfTwoWritersOfASource) {
  savedSource();
  Session second = openSession(file);
  const auto mine = std::move(session.store->syncSources(session.vault)).value().at(0);
  const auto theirs = std::move(second.store->syncSources(second.vault)).value().at(0);
  theirs->setKeychainType("theirs");
  ASSERT_EQ(errorOf(second.store->saveSyncSource(theirs)), "");
  ASSERT_EQ(errorOf(second.store->saveSyncSource(theirs)), "");
  mine->setKeychainType("mine");

  EXPECT_EQ(errorOf(session.store->saveSyncSource(mine)), codeText(QNStoreErrorCode::lostRace));
  EXPECT_EQ(errorOf(session.store->deleteSyncSource(mine)), codeText(QNStoreErrorCode::lostRace));

  EXPECT_EQ(sources().at(0)->keychainType(), "theirs");
  EXPECT_TRUE(mine->dirtyRow());
}

TEST_F(QNStoreSync, AWriterOfADeletedSourceTouchesNoneThatCameLater) {
  const auto source = savedSource();
  Session second = openSession(file);
  const auto stale = std::move(second.store->syncSources(second.vault)).value().at(0);
  ASSERT_EQ(errorOf(session.store->deleteSyncSource(source)), "");
  savedSource();
  stale->setKeychainType("stale");

  EXPECT_EQ(errorOf(second.store->saveSyncSource(stale)), codeText(QNStoreErrorCode::lostRace));
  EXPECT_EQ(errorOf(second.store->deleteSyncSource(stale)), codeText(QNStoreErrorCode::lostRace));

  EXPECT_EQ(sources().at(0)->keychainType(), std::nullopt);
}

TEST_F(QNStoreSync, RefusesMemoryOfAMergeThatIsNewerThanAllRows) {
  const auto source = newSource();
  const auto state = stateOf(*savedLogin(session, "a")->uuid());
  source->setItemStates({state});
  state->setLocalTimestamp(changesSince(0).txTimestamp + 1);
  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), "");  // not a merge's
  source->setKeychainType("store");

  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), codeText(QNStoreErrorCode::damaged));

  EXPECT_EQ(sources().at(0)->keychainType(), std::nullopt);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  state->setLocalTimestamp(changesSince(0).txTimestamp);
  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), "");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreSync, AFailedTransactionLeavesASourceAsItWas) {
  const auto source = savedSource();
  const auto fresh = newSource();
  source->setKeychainType("changed");

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    if (!session.store->saveSyncSource(source).ok()) return QNDone{};
    if (!session.store->saveSyncSource(fresh).ok()) return QNDone{};
    return storeError(QNStoreErrorCode::busy, "on purpose");
  });

  EXPECT_FALSE(done.ok());
  EXPECT_TRUE(source->dirtyRow());
  EXPECT_FALSE(fresh->hasOid());
  EXPECT_EQ(sources().at(0)->keychainType(), std::nullopt);
  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), "");
  EXPECT_EQ(errorOf(session.store->saveSyncSource(fresh)), "");
  EXPECT_EQ(sources().size(), 2u);
}

TEST_F(QNStoreSync, NeitherReadsNorSavesSourcesOfALockedVault) {
  const auto source = savedSource();
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->syncSources(session.vault)), codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->saveSyncSource(source)), codeText(QNStoreErrorCode::locked));
}

TEST_F(QNStoreSync, SavesNoSourceWithoutAVaultOrOfAnotherStore) {
  const auto homeless = std::make_shared<QNSyncSource>(initNew);
  const auto foreign = std::make_shared<QNSyncSource>(QNExisting{1});
  foreign->setProfile(session.vault);

  EXPECT_EQ(errorOf(session.store->saveSyncSource(homeless)), codeText(QNStoreErrorCode::notFound));
  EXPECT_EQ(errorOf(session.store->saveSyncSource(foreign)), codeText(QNStoreErrorCode::notFound));
}

TEST_F(QNStoreSync, NoticesAChangeOfEachColumnOfASourceAndItsStates) {
  const auto source = savedSource();
  source->setRemoteProfileAttributesEncryptedWithLocal(Bytes{1});
  ASSERT_TRUE(session.store->saveSyncSource(source).ok());
  session = Session();
  const std::string original = bytesOfFile(file);
  for (const char* change : {"PRAGMA foreign_keys = OFF; UPDATE sync_sources SET oid = 9;"
                             "UPDATE sync_states SET source_id = 9",
                             "UPDATE sync_sources SET revision = 1",
                             "UPDATE sync_sources SET legacy = 1",
                             "UPDATE sync_sources SET keychain_identifier = 'x'",
                             "UPDATE sync_sources SET keychain_type = ''",
                             "UPDATE sync_sources SET remote_profile_uuid = 'x'",
                             "UPDATE sync_sources SET remote_profile_timestamp = 1",
                             "UPDATE sync_sources SET remote_profile_attributes = NULL",
                             "UPDATE sync_sources SET local_profile_uuid = 'x'",
                             "UPDATE sync_sources SET local_profile_timestamp = 1",
                             "UPDATE sync_sources SET local_profile_attributes = x''",
                             "UPDATE sync_sources SET seal = x''",
                             "UPDATE sync_states SET kind = 2",
                             "UPDATE sync_states SET kind = 4 WHERE place = 2",
                             "UPDATE sync_states SET place = 3 - place + 10",
                             "UPDATE sync_states SET object_type = 2",
                             "UPDATE sync_states SET object_id = 1",
                             "UPDATE sync_states SET object_uuid = NULL",
                             "UPDATE sync_states SET object_uuid = 'x' WHERE place = 1",
                             "UPDATE sync_states SET synced_at = 1",
                             "UPDATE sync_states SET source_timestamp = 12",
                             "UPDATE sync_states SET local_timestamp = 11",
                             "DELETE FROM sync_states",
                             "DELETE FROM sync_states WHERE place = 2",
                             "INSERT INTO sync_states VALUES (1, 1, 3, 1, 0, 'c', 0, 0, 0)"}) {
    SCOPED_TRACE(change);
    runSQL(change);

    Session other = openSession(file);
    EXPECT_EQ(errorOf(other.store->syncSources(other.vault)), codeText(QNStoreErrorCode::damaged));
    const std::vector<std::string> problems = problemsIn(other);
    EXPECT_FALSE(problems.empty());
    other = Session();
    writeFile(file, original);
  }
}

TEST_F(QNStoreSync, ACheckNamesTheSourceThatWasAltered) {
  savedSource();
  savedSource();
  EXPECT_EQ(session.store->check(session.vault).value().syncSourcesChecked, 2u);

  runSQL("UPDATE sync_states SET local_timestamp = 11 WHERE source_id = 2");

  EXPECT_THAT(problemsIn(session), ElementsAre("sync source 2: it or its states were altered"));
}

TEST_F(QNStoreSync, NoticesASourceOfAnotherVault) {
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  const auto source = newSource();
  source->setProfile(other);
  ASSERT_TRUE(session.store->saveSyncSource(source).ok());

  runSQL("UPDATE sync_sources SET vault_id = 1");

  EXPECT_EQ(errorOf(session.store->syncSources(session.vault)),
            codeText(QNStoreErrorCode::damaged));
}

}  // namespace
}  // namespace quillon
