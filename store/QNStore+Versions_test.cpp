// Files of every version that was ever published must open for ever. testdata/SOURCES.md tells how
// they were made.

#include "quillon/sync/QNSyncState.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

class QNStoreVersions : public ::testing::Test {
 protected:
  explicit QNStoreVersions(const char* name = "version-1.store") {
    std::filesystem::copy_file(std::filesystem::path(QUILLON_TESTDATA) / name, file);
  }
  [[nodiscard]] std::uint64_t versionOfFile() const {
    const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
    return database->number("PRAGMA user_version");
  }
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
};

TEST_F(QNStoreVersions, OpensAFileOfVersion1) {
  Session session = openSession(file);

  EXPECT_EQ(session.vault->passwordHint(), "the usual");
  EXPECT_EQ(session.vault->createdAt(), 1'700'000'000u);
  EXPECT_EQ(session.vault->profileColor(), (QNColor{0.5f, 0.25f, 0.75f, 1.0f}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::normal),
            (std::vector<std::string>{"Bank", "Zettel"}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::trashed), std::vector<std::string>{"Generated"});
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreVersions, ReadsEveryFieldOfALoginOfVersion1) {
  Session session = openSession(file);

  const auto set =
      std::move(session.store->itemSetForURL(session.vault, "https://www.bank.example")).value();

  ASSERT_EQ(set->derivedLogins.size(), 1u);
  QNItem& login = *set->derivedLogins[0];
  EXPECT_EQ(login.username(), "ada");
  EXPECT_TRUE(login.password()->equals("second password"));
  EXPECT_TRUE(login.containsPasswordValue("first password"));
  EXPECT_EQ(login.notesPlain(), "mind the gap");
  ASSERT_EQ(login.numberOfURLs(), 2u);
  EXPECT_EQ(login.URLAtIndex(0)->URLString(), "https://www.bank.example/start");
  EXPECT_EQ(login.URLAtIndex(1)->label(), "help");
  EXPECT_EQ(login.faveIndex(), 7u);
  EXPECT_EQ(login.numberOfTimesUsed(), 3);
  EXPECT_EQ(login.lastUsedTimestamp(), 1'699'999'999u);
  EXPECT_EQ(login.createdAt(), 1'700'000'000u);
  EXPECT_EQ(login.updatedAt(), 1'700'000'100u);
  EXPECT_EQ(login.txTimestamp(), 1'700'000'100u);
}

TEST_F(QNStoreVersions, ReadsANoteOfVersion1) {
  Session session = openSession(file);
  std::shared_ptr<QNItem> note;
  ASSERT_TRUE(
      session.store
          ->list(session.vault, QNStore::Which::normal, [&note](const auto& item) { note = item; })
          .ok());

  ASSERT_TRUE(session.store->loadDetails(note).ok());

  EXPECT_EQ(note->notesPlain(), "größer als 1 €");
  EXPECT_TRUE(note->hasNeverScope());
}

TEST_F(QNStoreVersions, WritesIntoAFileOfVersion1) {
  Session session = openSession(file);

  savedLogin(session, "new");

  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"Bank", "Zettel", "new"}));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreVersions, BringsAFileOfVersion1ForwardForWriting) {
  ASSERT_EQ(versionOfFile(), 1u);

  ASSERT_TRUE(QNStore::open(file).ok());

  EXPECT_EQ(versionOfFile(), 3u);
}

TEST_F(QNStoreVersions, BringsAFileOfVersion1ForwardForReadingToo) {
  Session session = openSession(file, QNStore::Access::readOnly);

  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"Bank", "Zettel"}));
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  EXPECT_EQ(errorOf(session.store->save(makeLogin(session.vault, "a"))),
            codeText(QNStoreErrorCode::notWritable));
  EXPECT_EQ(versionOfFile(), 3u);
}

TEST_F(QNStoreVersions, TellsTheChangesOfAFileOfVersion1) {
  Session session = openSession(file);

  const auto feed = std::move(session.store->changesSince(session.vault, 0)).value();

  ASSERT_EQ(feed.changes.size(), 3u);
  EXPECT_EQ(feed.changes[0].kind, QNStoredChange::Kind::saved);
  EXPECT_EQ(feed.changes[1].kind, QNStoredChange::Kind::trashed);
  EXPECT_EQ(feed.changes[2].txTimestamp, 1'700'000'100u);
  EXPECT_TRUE(session.store->syncSources(session.vault).value().empty());
}

TEST_F(QNStoreVersions, DeletesAndSynchronisesInAFileOfVersion1) {
  Session session = openSession(file);
  const auto feed = std::move(session.store->changesSince(session.vault, 0)).value();
  const auto item = std::move(session.store->item(session.vault, feed.changes.at(0).uuid)).value();
  ASSERT_EQ(errorOf(session.store->deleteItem(item)), "");
  const auto source = std::make_shared<QNSyncSource>(initNew);
  source->setProfile(session.vault);
  ASSERT_EQ(errorOf(session.store->saveSyncSource(source)), "");

  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

class QNStoreVersion2 : public QNStoreVersions {
 protected:
  QNStoreVersion2() : QNStoreVersions("version-2.store") {}
};

TEST_F(QNStoreVersion2, OpensWithItsItemsAndTombstones) {
  Session session = openSession(file, QNStore::Access::readOnly);

  EXPECT_EQ(titlesIn(session), (std::vector<std::string>{"Bank", "Zettel"}));
  EXPECT_EQ(titlesIn(session, QNStore::Which::trashed), std::vector<std::string>{"Generated"});
  const auto report = std::move(session.store->check(session.vault)).value();
  EXPECT_EQ(report.problems, std::vector<std::string>());
  EXPECT_EQ(report.itemsChecked, 3u);
  EXPECT_EQ(report.tombstonesChecked, 1u);
  EXPECT_EQ(report.syncSourcesChecked, 1u);
}

TEST_F(QNStoreVersion2, TellsItsChanges) {
  Session session = openSession(file);

  const auto feed = std::move(session.store->changesSince(session.vault, 1'700'000'100)).value();

  ASSERT_EQ(feed.changes.size(), 1u);
  EXPECT_EQ(feed.changes[0].kind, QNStoredChange::Kind::deleted);
  EXPECT_EQ(feed.changes[0].txTimestamp, 1'700'000'200u);
  EXPECT_EQ(feed.txTimestamp, 1'700'000'200u);
}

TEST_F(QNStoreVersion2, HasItsSourceAndStates) {
  Session session = openSession(file);

  const auto source = std::move(session.store->syncSources(session.vault)).value().at(0);

  EXPECT_EQ(source->keychainIdentifier(), "/home/ada/library/dropbox/quillon.marlowkeychain");
  EXPECT_TRUE(source->legacySyncSource());
  EXPECT_EQ(source->keychainType(), "folder");
  EXPECT_EQ(source->remoteProfileUUID(), "remote-uuid");
  EXPECT_EQ(source->remoteProfileTimestamp(), 1'700'000'140u);
  EXPECT_EQ(session.vault->decryptOverview(*source->remoteProfileAttributesEncryptedWithLocal()),
            (Bytes{1, 2, 3}));
  EXPECT_EQ(source->localProfileUUID(), *session.vault->uuid());
  EXPECT_EQ(source->localProfileTimestamp(), 1'700'000'150u);
  EXPECT_EQ(source->localProfileAttributesEncryptedWithRemote(), std::nullopt);
  ASSERT_EQ(source->itemStates().size(), 1u);
  EXPECT_EQ(source->itemStates()[0]->syncedAt(), 1'700'000'150u);
  EXPECT_EQ(source->itemStates()[0]->sourceTimestamp(), 1'700'000'140u);
  EXPECT_EQ(source->itemStates()[0]->localTimestamp(), 1'700'000'100u);
  EXPECT_EQ(source->syncStateForFolderUUID("folder-uuid")->objectID(), 4u);
}

}  // namespace
}  // namespace quillon
