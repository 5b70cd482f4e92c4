// What a repair makes of folders whose rows were altered, exchanged, taken away or put back.

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <random>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNFolderTesting.h"
#include "store/internal/QNMergeTesting.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// "outer" holds "inner" and an item, and has an icon; a copy of the file stands beside it.
class QNStoreFolderRepair : public ::testing::Test {
 protected:
  QNStoreFolderRepair() {
    const auto made = makeFolder(session.vault, "outer");
    made->setIconData(Bytes{1, 2, 3});
    EXPECT_EQ(errorOf(session.store->saveFolder(made)), "");
    outer = *made->uuid();
    inner = *savedFolder(session, "inner", made)->uuid();
    item = *savedLoginIn(session, *made, "item")->uuid();
    session = Session();
    original = bytesOfFile(file);
    session = openSession(file);
  }
  void change(const std::string& sql) const {
    const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
    database->run(sql);
    const auto error = database->takeError();
    EXPECT_FALSE(error) << error->message;
  }
  void changeOuter(const std::string& assignment) const {
    change(fmt::format("UPDATE folders SET {} WHERE uuid = '{}'", assignment, outer));
  }
  void restore() {
    session = Session();
    writeFile(file, original);
    session = openSession(file);
  }
  std::shared_ptr<QNFolder> folderOf(const std::string& uuid) {
    return session.store->folder(session.vault, uuid).value();
  }
  QNFolderRepair repair() {
    auto repaired = session.store->repairFolders(session.vault);
    EXPECT_TRUE(repaired.ok()) << repaired.error().message;
    return std::move(repaired).value();
  }
  /// Nothing is left to be told or repaired, nor for who opens the file anew.
  void expectSound() {
    for (const bool again : {false, true}) {
      if (again) session = openSession(file);
      const auto checked = session.store->check(session.vault).value();
      EXPECT_THAT(checked.problems, IsEmpty());
      EXPECT_THAT(checked.remarks, IsEmpty());
      const QNFolderRepair second = repair();
      EXPECT_THAT(second.foldersSealedAnew, IsEmpty());
      EXPECT_THAT(second.foldersRemoved, IsEmpty());
      EXPECT_THAT(second.foldersMovedToTop, IsEmpty());
      EXPECT_THAT(second.itemsMovedToTop, IsEmpty());
      EXPECT_FALSE(second.ledgerSetRight);
      EXPECT_EQ(second.foldersMissing, 0u);
    }
  }

  QNScopedClock clock{1'700'000'000};
  const MRCapturingSink silence;
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  Session session = makeSession(file);
  std::string outer, inner, item, original;
};

TEST_F(QNStoreFolderRepair, KeepsTitleIconAndWhatItHoldsOfAFolderWithAnAlteredColumn) {
  for (const char* assignment :
       {"status = 1", "status = 2", "created_at = 1", "updated_at = 1", "tx_timestamp = 1",
        "display_order = 1", "seal = x''", "seal = randomblob(16)"}) {
    SCOPED_TRACE(assignment);
    changeOuter(assignment);

    const QNFolderRepair repaired = repair();

    EXPECT_THAT(repaired.foldersSealedAnew, ElementsAre(outer));
    EXPECT_THAT(repaired.foldersRemoved, IsEmpty());
    EXPECT_THAT(repaired.foldersMovedToTop, IsEmpty());
    EXPECT_THAT(repaired.itemsMovedToTop, IsEmpty());
    EXPECT_FALSE(repaired.ledgerSetRight);
    EXPECT_EQ(treeIn(session), "outer 1 [inner 0]");
    EXPECT_EQ(folderOf(outer)->iconData(), (Bytes{1, 2, 3}));
    expectSound();
    restore();
  }
}

TEST_F(QNStoreFolderRepair, KeepsAQuestion) {
  const auto smart = makeFolder(session.vault, "smart");
  smart->setSmartFolder(true);
  smart->setSmartFolderPredicate(QNPredicate::predicateWithFormat("faveIndex > 0").value());
  ASSERT_EQ(errorOf(session.store->saveFolder(smart)), "");
  change(fmt::format("UPDATE folders SET display_order = 9 WHERE uuid = '{}'", *smart->uuid()));

  EXPECT_THAT(repair().foldersSealedAnew, ElementsAre(*smart->uuid()));

  EXPECT_EQ(folderOf(*smart->uuid())->smartFolderPredicate()->predicateFormat(), "faveIndex > 0");
  expectSound();
}

TEST_F(QNStoreFolderRepair, KeepsOneInQuarantineInIt) {
  const auto smart = makeFolder(session.vault, "fatal");
  smart->setSmartFolder(true);
  smart->setSmartFolderPredicate(QNPredicate::predicateWithFormat("NOT trashed == TRUE").value());
  smart->setSmartFolderVersion(3);
  ASSERT_EQ(errorOf(session.store->saveFolder(smart)), "");
  change(fmt::format("UPDATE folders SET display_order = 9 WHERE uuid = '{}'", *smart->uuid()));

  EXPECT_THAT(repair().foldersSealedAnew, ElementsAre(*smart->uuid()));

  EXPECT_THAT(foldersIn(session).quarantined, ElementsAre(*smart->uuid()));
}

TEST_F(QNStoreFolderRepair, LosesNoMoreThanAnIconThatDoesNotOpen) {
  for (const char* assignment : {"icon = x''", "icon = zeroblob(length(icon))"}) {
    changeOuter(assignment);

    EXPECT_THAT(repair().foldersSealedAnew, ElementsAre(outer));

    EXPECT_EQ(folderOf(outer)->title(), "outer");
    EXPECT_EQ(folderOf(outer)->iconData(), std::nullopt);
    expectSound();
    restore();
  }
}

TEST_F(QNStoreFolderRepair, PutsAFolderWithAWrongParentAtTheTop) {
  change(fmt::format("UPDATE folders SET parent_uuid = 'nobody' WHERE uuid = '{}'", inner));

  const QNFolderRepair repaired = repair();

  EXPECT_THAT(repaired.foldersSealedAnew, ElementsAre(inner));
  EXPECT_THAT(repaired.foldersMovedToTop, ElementsAre(inner));
  EXPECT_EQ(treeIn(session), "inner 0 outer 1");
  expectSound();
}

TEST_F(QNStoreFolderRepair, RemovesAFolderWhoseOverviewDoesNotOpen) {
  for (const char* assignment :
       {"overview = x''", "overview = x'00'", "overview = zeroblob(length(overview))",
        "overview = substr(overview, 1, length(overview) - 1)", "overview = icon",
        "overview = x'', icon = NULL", "overview = x'', status = 2",
        "overview = x'', icon = NULL, parent_uuid = '', status = 2"}) {
    SCOPED_TRACE(assignment);
    changeOuter(assignment);

    const QNFolderRepair repaired = repair();

    EXPECT_THAT(repaired.foldersRemoved, ElementsAre(outer));
    EXPECT_THAT(repaired.foldersSealedAnew, IsEmpty());
    EXPECT_THAT(repaired.foldersMovedToTop, ElementsAre(inner));
    EXPECT_THAT(repaired.itemsMovedToTop, ElementsAre(item));
    EXPECT_EQ(treeIn(session), "inner 0");
    expectSound();
    restore();
  }
}

TEST_F(QNStoreFolderRepair, FreesWhatAFolderHeldThatLooksDeleted) {
  changeOuter("overview = x'', icon = NULL, status = 2");

  const QNFolderRepair repaired = repair();

  EXPECT_THAT(repaired.foldersSealedAnew, ElementsAre(outer));
  EXPECT_THAT(repaired.foldersMovedToTop, ElementsAre(inner));
  EXPECT_THAT(repaired.itemsMovedToTop, ElementsAre(item));
  EXPECT_EQ(treeIn(session), "inner 0");
  expectSound();
}

TEST_F(QNStoreFolderRepair, OfAnAlteredUUIDKeepsTheFolderAndFreesWhatItHeld) {
  changeOuter("uuid = 'another'");

  const QNFolderRepair repaired = repair();

  EXPECT_THAT(repaired.foldersSealedAnew, ElementsAre("another"));
  EXPECT_THAT(repaired.foldersMovedToTop, ElementsAre(inner));
  EXPECT_THAT(repaired.itemsMovedToTop, ElementsAre(item));
  EXPECT_EQ(treeIn(session), "inner 0 outer 0");
  expectSound();
}

TEST_F(QNStoreFolderRepair, TellsOfARowThatWasTakenAway) {
  change(fmt::format("DELETE FROM folders WHERE uuid = '{}'", outer));

  const QNFolderRepair repaired = repair();

  EXPECT_TRUE(repaired.ledgerSetRight);
  EXPECT_EQ(repaired.foldersMissing, 1u);
  EXPECT_THAT(repaired.foldersMovedToTop, ElementsAre(inner));
  EXPECT_THAT(repaired.itemsMovedToTop, ElementsAre(item));
  EXPECT_EQ(treeIn(session), "inner 0");
  expectSound();
}

TEST_F(QNStoreFolderRepair, TakesARowOfAnOlderStateForTheLastOne) {
  writeFile(folder / "older", original);
  const auto renamed = folderOf(outer);
  renamed->setTitle("renamed");
  ASSERT_EQ(errorOf(session.store->saveFolder(renamed)), "");
  change(
      fmt::format("ATTACH '{}' AS older; DELETE FROM folders WHERE uuid = '{}';"
                  "INSERT INTO folders SELECT * FROM older.folders WHERE uuid = '{}'",
                  (folder / "older").string(), outer, outer));
  ASSERT_TRUE(foldersIn(session).ledgerBroken);

  const QNFolderRepair repaired = repair();

  EXPECT_TRUE(repaired.ledgerSetRight);
  EXPECT_EQ(repaired.foldersMissing, 0u);
  EXPECT_THAT(repaired.foldersSealedAnew, IsEmpty());
  EXPECT_EQ(treeIn(session), "outer 1 [inner 0]");
  expectSound();
}

TEST_F(QNStoreFolderRepair, RemovesAFolderOfAnotherVaultFromThisOneAlone) {
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  const auto theirs = makeFolder(other, "theirs");
  ASSERT_EQ(errorOf(session.store->saveFolder(theirs)), "");
  ASSERT_EQ(errorOf(session.store->saveFolder(makeFolder(other, "stays"))), "");
  change(fmt::format("UPDATE folders SET vault_id = 1 WHERE uuid = '{}'", *theirs->uuid()));

  const QNFolderRepair repaired = repair();

  EXPECT_THAT(repaired.foldersRemoved, ElementsAre(*theirs->uuid()));
  EXPECT_TRUE(repaired.ledgerSetRight);
  EXPECT_EQ(repaired.foldersMissing, 0u);
  EXPECT_TRUE(session.store->folders(other).value().ledgerBroken);
  EXPECT_EQ(session.store->repairFolders(other).value().foldersMissing, 1u);
  EXPECT_EQ(treeText(session.store->folders(other).value().top), "stays 0");
  expectSound();
}

TEST_F(QNStoreFolderRepair, ChangesNothingInASoundVault) {
  ASSERT_EQ(errorOf(session.store->deleteFolder(folderOf(inner))), "");
  const std::uint64_t before = folderOf(outer)->txTimestamp();

  repair();

  EXPECT_EQ(folderOf(outer)->txTimestamp(), before);
  expectSound();
}

TEST_F(QNStoreFolderRepair, GivesNoFolderATimeToCome) {
  changeOuter("updated_at = 9000000000");

  repair();

  EXPECT_EQ(folderOf(outer)->updatedAt(), 1'700'000'000u);
}

TEST_F(QNStoreFolderRepair, LetsAMergeBringARemovedFolderBack) {
  ASSERT_EQ(errorOf(session.store->backupTo(folder / "theirs")), "");
  Session theirs = openSession(folder / "theirs");
  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
  const std::string whole = treeIn(theirs);
  changeOuter("overview = x''");
  ASSERT_EQ(errorOf(mergeStores(session, theirs)), codeText(QNStoreErrorCode::damaged));
  clock.setSeconds(1'700'000'100);

  ASSERT_THAT(repair().foldersRemoved, ElementsAre(outer));

  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
  EXPECT_EQ(folderOf(outer)->title(), "outer");
  EXPECT_EQ(treeIn(session), whole);  // what it held lies in it again
  EXPECT_EQ(treeIn(theirs), whole);
  expectSound();
}

TEST_F(QNStoreFolderRepair, KeepsADeletionForAMergeToo) {
  int copies = 0;
  for (const char* assignment :
       {"display_order = 1", "smart = 1", "created_at = 1", "updated_at = 9000000000",
        "tx_timestamp = 1 << 62", "seal = x''"}) {
    SCOPED_TRACE(assignment);
    const std::filesystem::path theirFile = folder / fmt::format("theirs {}", ++copies);
    ASSERT_EQ(errorOf(session.store->backupTo(theirFile)), "");
    Session theirs = openSession(theirFile);
    clock.setSeconds(1'700'000'100);
    ASSERT_EQ(errorOf(session.store->deleteFolder(folderOf(outer))), "");
    changeOuter(assignment);

    const QNFolderRepair repaired = repair();

    EXPECT_THAT(repaired.foldersSealedAnew, ElementsAre(outer));
    EXPECT_THAT(repaired.foldersRemoved, IsEmpty());
    ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");
    EXPECT_EQ(treeIn(session), "inner 0");
    EXPECT_EQ(treeIn(theirs), "inner 0");
    expectSound();
    clock.setSeconds(1'700'000'000);
    restore();
  }
}

TEST_F(QNStoreFolderRepair, GivesNoDeletionATimeToCome) {
  ASSERT_EQ(errorOf(session.store->backupTo(folder / "theirs")), "");
  Session theirs = openSession(folder / "theirs");
  ASSERT_EQ(errorOf(session.store->deleteFolder(folderOf(outer))), "");
  changeOuter("updated_at = 9000000000");
  repair();
  clock.setSeconds(1'700'000'100);
  const auto renamed = theirs.store->folder(theirs.vault, outer).value();
  renamed->setTitle("renamed");
  ASSERT_EQ(errorOf(theirs.store->saveFolder(renamed)), "");

  ASSERT_EQ(errorOf(mergeStores(session, theirs)), "");

  EXPECT_EQ(folderOf(outer)->title(), "renamed");
}

TEST_F(QNStoreFolderRepair, ThatFailsChangesNothing) {
  changeOuter("overview = x''");
  const auto failed = session.store->inTransaction([&]() -> QNResult<QNDone> {
    const auto repaired = session.store->repairFolders(session.vault);
    EXPECT_TRUE(repaired.ok());
    return storeError(QNStoreErrorCode::busy, "on purpose");
  });

  EXPECT_FALSE(failed.ok());
  EXPECT_THAT(foldersIn(session).damaged, ElementsAre(outer));
}

// Any damage

class QNStoreFolderDamage : public QNStoreFolderRepair,
                            public ::testing::WithParamInterface<unsigned> {
 protected:
  const std::string& anyOf(const std::vector<std::string>& texts) {
    return texts[random() % texts.size()];
  }
  std::mt19937 random{GetParam()};
};

TEST_P(QNStoreFolderDamage, IsRepairedAtOnceAndNoTitleIsMadeUp) {
  std::vector<std::string> uuids = {outer, inner};
  for (int i = 0; i < 20; ++i) {
    const auto made = savedFolder(session, "box", folderOf(anyOf(uuids)));
    savedLoginIn(session, *made, "item");
    uuids.push_back(*made->uuid());
  }
  const std::vector<std::string> damages = {"overview = substr(overview, 2)",
                                            "overview = x''",
                                            "status = 2",
                                            "status = 7",
                                            "parent_uuid = NULL",
                                            "parent_uuid = uuid",
                                            "parent_uuid = ''",
                                            "seal = randomblob(16)",
                                            "uuid = hex(randomblob(8))",
                                            "oid = oid + 1000",
                                            "smart = 1 - smart",
                                            "icon = randomblob(9)",
                                            "overview = (SELECT overview FROM items LIMIT 1)",
                                            "tx_timestamp = 1 << 62",
                                            "DELETE"};
  for (int i = 0; i < 8; ++i) {
    const std::string& damage = anyOf(damages);
    const std::string where = fmt::format(" WHERE uuid = '{}'", anyOf(uuids));
    change(damage == "DELETE" ? "DELETE FROM folders" + where
                              : "UPDATE folders SET " + damage + where);
  }
  const QNFolderReport before = foldersIn(session);

  const QNFolderRepair repaired = repair();

  std::vector<std::string> mended = repaired.foldersSealedAnew;
  mended.insert(mended.end(), repaired.foldersRemoved.begin(), repaired.foldersRemoved.end());
  EXPECT_THAT(mended, ::testing::UnorderedElementsAreArray(before.damaged));
  EXPECT_EQ(repaired.ledgerSetRight, before.ledgerBroken);
  for (const auto& each : foldersIn(session).folders) {
    EXPECT_THAT(each->title(), ::testing::AnyOf("outer", "inner", "box", "item"));
  }
  expectSound();
}

INSTANTIATE_TEST_SUITE_P(Seeds, QNStoreFolderDamage, ::testing::Range(0u, 8u));

}  // namespace
}  // namespace quillon
