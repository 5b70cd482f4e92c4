// Folders as they are saved, moved, deleted and repaired. How they are read:
// QNStore+Folders_test.cpp.

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <map>
#include <random>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNFolderTesting.h"
#include "store/internal/QNLedger.h"
#include "store/internal/QNRowSeal.h"
#include "store/internal/QNStoreState.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class QNStoreFolderChanges : public ::testing::Test {
 protected:
  std::shared_ptr<QNFolder> reread(const QNFolder& folder) {
    return session.store->folder(session.vault, *folder.uuid()).value();
  }
  std::shared_ptr<QNItem> reread(const QNItem& item) {
    return session.store->item(session.vault, *item.uuid()).value();
  }
  std::string errorOfSaving(const std::shared_ptr<QNFolder>& folder) {
    return errorOf(session.store->saveFolder(folder));
  }
  std::unique_ptr<QNDatabase> database() const {
    return std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
  }
  void change(const std::string& sql) const {
    const auto opened = database();
    opened->run(sql);
    const auto error = opened->takeError();
    EXPECT_FALSE(error) << error->message;
  }

  QNScopedClock clock{1'700'000'000};
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  Session session = makeSession(file);
  const std::string lostRace = codeText(QNStoreErrorCode::lostRace);
  const std::string misplaced = codeText(QNStoreErrorCode::misplacedFolder);
  const std::string notFound = codeText(QNStoreErrorCode::notFound);
};

// Saving

TEST_F(QNStoreFolderChanges, GiveAFolderTheTimeAndARevisionAmongThoseOfItems) {
  const auto item = savedLogin(session, "a");
  clock.setSeconds(1'700'000'000);
  const auto made = savedFolder(session, "box");
  EXPECT_TRUE(made->hasOid());
  EXPECT_FALSE(made->dirtyRow());
  EXPECT_EQ(made->txTimestamp(), item->txTimestamp() + 1);

  clock.setSeconds(1'700'000'100);
  made->setTitle("chest");
  ASSERT_EQ(errorOfSaving(made), "");

  EXPECT_EQ(made->updatedAt(), 1'700'000'100u);
  EXPECT_EQ(made->txTimestamp(), 1'700'000'100u);
  EXPECT_EQ(reread(*made)->title(), "chest");
  EXPECT_EQ(reread(*made)->oid(), made->oid());
  EXPECT_EQ(session.store->changesSince(session.vault, 0).value().txTimestamp, 1'700'000'100u);
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreFolderChanges, AreWrittenWhetherTheFolderIsDirtyOrNot) {
  const auto made = savedFolder(session, "box");
  made->setDisplayOrder(7);  // the first order dirties nothing
  ASSERT_FALSE(made->dirtyRow() || made->dirtyDisplayOrder());

  ASSERT_EQ(errorOfSaving(made), "");

  EXPECT_EQ(reread(*made)->displayOrder(), 7u);
}

TEST_F(QNStoreFolderChanges, MoveAFolder) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b");
  const auto c = savedFolder(session, "c", a);
  ASSERT_EQ(treeIn(session), "a 0 [c 0] b 0");

  c->setParentUUID(*b->uuid());
  ASSERT_EQ(errorOfSaving(c), "");
  EXPECT_EQ(treeIn(session), "a 0 b 0 [c 0]");

  c->setParentUUID(std::nullopt);
  ASSERT_EQ(errorOfSaving(c), "");
  EXPECT_EQ(treeIn(session), "a 0 b 0 c 0");
}

TEST_F(QNStoreFolderChanges, PutNoFolderWhereThereIsNone) {
  const auto gone = savedFolder(session, "gone");
  const std::string goneUuid = *gone->uuid();
  ASSERT_EQ(errorOf(session.store->deleteFolder(gone)), "");
  const auto made = makeFolder(session.vault, "a");

  for (const std::string& uuid : {std::string("unknown"), goneUuid, std::string()}) {
    made->setParentUUID(uuid);
    EXPECT_EQ(errorOfSaving(made), misplaced);
  }
  EXPECT_FALSE(made->hasOid());
  EXPECT_TRUE(made->dirtyRow());
  EXPECT_EQ(made->txTimestamp(), 0u);
}

TEST_F(QNStoreFolderChanges, PutNoFolderIntoItselfOrBelow) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  const auto c = savedFolder(session, "c", b);

  for (const auto& parent : {a, b, c}) {
    a->setParentUUID(*parent->uuid());
    EXPECT_EQ(errorOfSaving(a), misplaced);
  }
  const auto fresh = makeFolder(session.vault, "new");
  fresh->setParentUUID(*fresh->uuid());
  EXPECT_EQ(errorOfSaving(fresh), misplaced);
  EXPECT_EQ(treeIn(session), "a 0 [b 0 [c 0]]");
}

TEST_F(QNStoreFolderChanges, PutAFolderOnTheLastLevelAndNoneBelow) {
  std::shared_ptr<QNFolder> last;
  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    for (std::size_t level = 0; level < QNStore::kMaxFolderLevels; ++level) {
      last = savedFolder(session, "level", last);
    }
    return QNDone{};
  });
  ASSERT_EQ(errorOf(done), "");

  EXPECT_EQ(errorOfSaving(makeFolder(session.vault, "too deep", last)), misplaced);
  EXPECT_EQ(foldersIn(session).top.at(0)->flattenedAndSorted().size(), QNStore::kMaxFolderLevels);
}

TEST_F(QNStoreFolderChanges, RefuseASecondFolderOfAUUID) {
  const auto first = savedFolder(session, "first");
  const auto second = makeFolder(session.vault, "second");
  second->setUuid(first->uuid());

  EXPECT_EQ(errorOfSaving(second), codeText(QNStoreErrorCode::exists));
  EXPECT_EQ(treeIn(session), "first 0");
}

TEST_F(QNStoreFolderChanges, TellTheSecondOfTwoWriters) {
  const auto mine = savedFolder(session, "box");
  Session second = openSession(file);
  const auto theirs = second.store->folder(second.vault, *mine->uuid()).value();
  theirs->setTitle("theirs");
  ASSERT_EQ(errorOf(second.store->saveFolder(theirs)), "");
  mine->setTitle("mine");

  EXPECT_EQ(errorOfSaving(mine), lostRace);
  EXPECT_EQ(errorOf(session.store->deleteFolder(mine)), lostRace);

  EXPECT_EQ(treeIn(session), "theirs 0");
  EXPECT_TRUE(mine->dirtyRow());
  ASSERT_EQ(errorOf(second.store->deleteFolder(theirs)), "");
  EXPECT_EQ(errorOfSaving(mine), lostRace);
}

TEST_F(QNStoreFolderChanges, NeedAVaultOfThisStoreThatIsOpen) {
  const auto homeless = std::make_shared<QNFolder>(initNew);
  EXPECT_EQ(errorOfSaving(homeless), notFound);
  EXPECT_EQ(errorOf(session.store->deleteFolder(makeFolder(session.vault, "new"))), notFound);
  const auto mine = savedFolder(session, "mine");
  mine->setTitle("edited");
  session.vault->lock();

  const std::string locked = codeText(QNStoreErrorCode::locked);
  EXPECT_EQ(errorOfSaving(mine), locked);
  EXPECT_EQ(errorOf(session.store->deleteFolder(mine)), locked);
  EXPECT_EQ(errorOf(session.store->repairFolders(session.vault)), locked);
}

TEST_F(QNStoreFolderChanges, DoNotMoveAFolderToAnotherVault) {
  const auto mine = savedFolder(session, "mine");
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  mine->setProfile(other);

  EXPECT_EQ(errorOfSaving(mine), lostRace);
  EXPECT_EQ(treeIn(session), "mine 0");
}

TEST_F(QNStoreFolderChanges, WriteNoFolderThatCouldNotBeReadAgain) {
  const MRCapturingSink silence;
  const auto made = savedFolder(session, "box");
  made->setTitle("\xff");

  EXPECT_EQ(errorOfSaving(made), codeText(QNStoreErrorCode::unreadableItem));
  EXPECT_EQ(treeIn(session), "box 0");
}

TEST_F(QNStoreFolderChanges, OfAFailedTransactionLeaveTheObjectsAsTheyWere) {
  const auto kept = savedFolder(session, "kept");
  const auto removed = savedFolder(session, "removed");
  const auto fresh = makeFolder(session.vault, "new");
  const std::uint64_t revision = kept->txTimestamp();
  clock.setSeconds(1'700'000'100);
  kept->setTitle("changed");

  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    EXPECT_EQ(errorOfSaving(kept), "");
    EXPECT_EQ(errorOfSaving(fresh), "");
    EXPECT_EQ(errorOf(session.store->deleteFolder(removed)), "");
    return storeError(QNStoreErrorCode::busy, "on purpose");
  });

  EXPECT_FALSE(done.ok());
  EXPECT_EQ(kept->txTimestamp(), revision);
  EXPECT_EQ(kept->updatedAt(), 1'700'000'000u);
  EXPECT_TRUE(kept->dirtyRow());
  EXPECT_FALSE(fresh->hasOid());
  EXPECT_TRUE(removed->hasOid());
  EXPECT_EQ(treeIn(session), "kept 0 removed 0");
  EXPECT_EQ(errorOfSaving(kept), "");
  EXPECT_EQ(errorOfSaving(fresh), "");
  EXPECT_EQ(errorOf(session.store->deleteFolder(removed)), "");
  EXPECT_EQ(treeIn(session), "changed 0 new 0");
}

TEST_F(QNStoreFolderChanges, PutNoFolderWhereWhatIsInItWouldLieTooDeep) {
  std::shared_ptr<QNFolder> last;
  const auto top = makeFolder(session.vault, "top");
  const auto subfolder = makeFolder(session.vault, "sub", top);
  const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
    for (std::size_t level = 0; level + 1 < QNStore::kMaxFolderLevels; ++level) {
      last = savedFolder(session, "level", last);
    }
    EXPECT_EQ(errorOfSaving(top), "");
    EXPECT_EQ(errorOfSaving(subfolder), "");
    return QNDone{};
  });
  ASSERT_EQ(errorOf(done), "");

  top->setParentUUID(*last->uuid());
  EXPECT_EQ(errorOfSaving(top), misplaced);
  top->setParentUUID(last->parentUUID());
  EXPECT_EQ(errorOfSaving(top), "");

  EXPECT_THAT(foldersIn(session).misplaced, IsEmpty());
}

TEST_F(QNStoreFolderChanges, KeepTheUUIDOfARow) {
  const auto box = savedFolder(session, "box");
  const auto renamed = reread(*box);
  renamed->setUuid(sharedString("another"));

  EXPECT_EQ(errorOfSaving(renamed), notFound);
  EXPECT_EQ(errorOf(session.store->deleteFolder(renamed)), notFound);

  EXPECT_EQ(treeIn(session), "box 0");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  EXPECT_EQ(errorOfSaving(box), "");
}

TEST_F(QNStoreFolderChanges, NeedAUUID) {
  const auto box = savedFolder(session, "box");
  const std::string unreadable = codeText(QNStoreErrorCode::unreadableItem);
  for (const std::uint64_t oid : {std::uint64_t{0}, box->oid()}) {
    const auto nameless = std::make_shared<QNFolder>(QNExisting{oid});
    nameless->setProfile(session.vault);
    nameless->setTxTimestamp(box->txTimestamp());
    EXPECT_EQ(errorOfSaving(nameless), unreadable);
    EXPECT_EQ(errorOf(session.store->deleteFolder(nameless)), oid == 0 ? notFound : unreadable);
  }
  EXPECT_EQ(treeIn(session), "box 0");
}

// Deleting

TEST_F(QNStoreFolderChanges, LeaveTheItemsOfADeletedFolderInNone) {
  const auto box = savedFolder(session, "box");
  const auto item = savedLoginIn(session, *box, "inside");
  const auto trashed = savedLoginIn(session, *box, "trashed");
  trashed->setTrashed(true);
  ASSERT_EQ(errorOf(session.store->save(trashed)), "");
  const auto other = savedLogin(session, "outside");
  const std::uint64_t moment = session.store->changesSince(session.vault, 0).value().txTimestamp;
  clock.setSeconds(1'700'000'100);

  ASSERT_EQ(errorOf(session.store->deleteFolder(box)), "");

  EXPECT_FALSE(box->hasOid());
  EXPECT_TRUE(box->deleted());
  EXPECT_EQ(treeIn(session), "");
  EXPECT_EQ(reread(*item)->folderUUID(), std::nullopt);
  EXPECT_EQ(reread(*item)->updatedAt(), 1'700'000'000u);
  EXPECT_TRUE(reread(*item)->password()->equals("correct horse"));
  EXPECT_EQ(reread(*trashed)->folderUUID(), std::nullopt);
  EXPECT_TRUE(reread(*trashed)->trashed());
  EXPECT_THAT(session.store->changesSince(session.vault, moment).value().changes, IsEmpty());
  EXPECT_EQ(reread(*other)->updatedAt(), 1'700'000'000u);
  const auto checked = session.store->check(session.vault).value();
  EXPECT_THAT(checked.problems, IsEmpty());
  EXPECT_THAT(checked.remarks, IsEmpty());
}

TEST_F(QNStoreFolderChanges, MoveTheSubfoldersOfADeletedFolderUp) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  const auto c = savedFolder(session, "c", b);
  savedFolder(session, "d", c);
  savedLoginIn(session, *c, "1");

  ASSERT_EQ(errorOf(session.store->deleteFolder(b)), "");
  EXPECT_EQ(treeIn(session), "a 0 [c 1 [d 0]]");
  ASSERT_EQ(errorOf(session.store->deleteFolder(a)), "");
  EXPECT_EQ(treeIn(session), "c 1 [d 0]");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreFolderChanges, LeaveNothingOfADeletedFolderButItsNameAndTimes) {
  const auto parent = savedFolder(session, "parent");
  const auto box = makeFolder(session.vault, "box", parent);
  box->setCreatedAt(5);
  box->setDisplayOrder(9);
  box->setIconData(Bytes{1});
  box->setSmartFolder(true);
  ASSERT_EQ(errorOfSaving(box), "");
  clock.setSeconds(1'700'000'100);

  ASSERT_EQ(errorOf(session.store->deleteFolder(box)), "");

  const auto opened = database();
  QNQuery row = opened->query(
      "SELECT oid, status, created_at, updated_at, tx_timestamp, smart, display_order, "
      "parent_uuid, uuid, icon, overview FROM folders WHERE oid = 2");
  ASSERT_TRUE(row.next());
  EXPECT_EQ(row.number(1), 2u);
  EXPECT_EQ(row.number(2), 5u);
  EXPECT_EQ(row.number(3), 1'700'000'100u);
  EXPECT_EQ(row.number(4), 1'700'000'100u);
  EXPECT_EQ(row.number(5), 0u);
  EXPECT_EQ(row.number(6), 0u);
  EXPECT_EQ(row.optionalText(7), std::nullopt);
  EXPECT_EQ(row.text(8), *box->uuid());
  EXPECT_FALSE(row.optionalBytes(9).has_value());
  EXPECT_TRUE(row.bytes(10).empty());
}

TEST_F(QNStoreFolderChanges, OfATrashedFolderDeleteIt) {
  const auto box = savedFolder(session, "box");
  const auto item = savedLoginIn(session, *box, "inside");
  box->setTrashed(true);

  ASSERT_EQ(errorOfSaving(box), "");

  EXPECT_EQ(treeIn(session), "");
  EXPECT_EQ(reread(*item)->folderUUID(), std::nullopt);
}

TEST_F(QNStoreFolderChanges, BringADeletedFolderBackIntoItsRow) {
  const auto box = savedFolder(session, "box");
  const std::uint64_t oid = box->oid();
  ASSERT_EQ(errorOf(session.store->deleteFolder(box)), "");
  savedFolder(session, "other");
  const auto back = makeFolder(session.vault, "back");
  back->setUuid(box->uuid());

  ASSERT_EQ(errorOfSaving(back), "");

  EXPECT_EQ(back->oid(), oid);
  EXPECT_EQ(treeIn(session), "back 0 other 0");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreFolderChanges, LeaveADamagedItemOfADeletedFolderAsItIs) {
  const MRCapturingSink silence;
  const auto box = savedFolder(session, "box");
  const auto damaged = savedLoginIn(session, *box, "damaged");
  const auto sound = savedLoginIn(session, *box, "sound");
  change("UPDATE items SET fave_index = 9 WHERE oid = 1");

  ASSERT_EQ(errorOf(session.store->deleteFolder(box)), "");

  EXPECT_EQ(reread(*sound)->folderUUID(), std::nullopt);
  EXPECT_EQ(database()->number("SELECT count(*) FROM items WHERE folder_uuid IS NOT NULL"), 1u);
  EXPECT_EQ(errorOf(session.store->item(session.vault, *damaged->uuid())),
            codeText(QNStoreErrorCode::damaged));
}

// Repairing

/// What only a program with a fault, or a merge, would write: rows that are sealed well and wrong.
class QNStoreMisplacedFolders : public QNStoreFolderChanges {
 protected:
  void writeParent(const QNFolder& of, const std::optional<std::string>& parentUUID) {
    const auto opened = database();
    QNRowSealer sealer(*session.vault);
    QNSeal before{}, after{};
    {
      QNQuery query =
          opened->query("SELECT " QN_FOLDER_COLUMNS " FROM folders WHERE uuid = ?1", *of.uuid());
      ASSERT_TRUE(query.next());
      QNFolderRow row = folderRow(query);
      before = *sealer.seal(row);
      row.parentUUID = parentUUID;
      after = *sealer.seal(row);
    }
    opened->change("UPDATE folders SET parent_uuid = ?1, seal = ?2 WHERE uuid = ?3", parentUUID,
                   ByteView(after.tag), *of.uuid());
    std::optional<QNLedger> ledger;
    {
      QNQuery query = opened->query("SELECT content FROM ledgers");
      ASSERT_TRUE(query.next());
      ledger = QNLedger::open(*session.vault, query.bytes(0));
    }
    ledger->folders.remove(before);
    ledger->folders.add(after);
    opened->change("UPDATE ledgers SET content = ?1", ByteView(*ledger->sealed(*session.vault)));
    const auto error = opened->takeError();
    EXPECT_FALSE(error) << error->message;
  }
  QNFolderRepair repair() {
    auto repaired = session.store->repairFolders(session.vault);
    EXPECT_TRUE(repaired.ok()) << repaired.error().message;
    return std::move(repaired).value();
  }
  static std::string problemOf(const QNFolder& folder) {
    return "folder " + *folder.uuid() + ": its parent isn't there, lies in it, or is too deep";
  }
};

TEST_F(QNStoreMisplacedFolders, StandAtTheTopAndAreTold) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  const auto c = savedFolder(session, "c", b);
  const auto orphan = savedFolder(session, "orphan");
  writeParent(*a, *b->uuid());
  writeParent(*orphan, "nobody");

  const QNFolderReport report = foldersIn(session);

  EXPECT_EQ(treeText(report.top), "a 0 b 0 [c 0] orphan 0");
  EXPECT_THAT(report.misplaced, ElementsAre(*a->uuid(), *b->uuid(), *orphan->uuid()));
  EXPECT_EQ(report.folders.at(0)->parentUUID(), *b->uuid());
  EXPECT_FALSE(report.ledgerBroken);
  EXPECT_EQ(problemsIn(session),
            (std::vector<std::string>{problemOf(*a), problemOf(*b), problemOf(*orphan)}));
}

TEST_F(QNStoreMisplacedFolders, AreMovedToTheTopByARepairWithItemsThatAreInNone) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  savedFolder(session, "c", b);
  const auto orphan = savedFolder(session, "orphan");
  const auto stray = savedLoginIn(session, *makeFolder(session.vault, "never saved"), "stray");
  const auto inside = savedLoginIn(session, *a, "inside");
  writeParent(*a, *b->uuid());
  writeParent(*orphan, "nobody");
  clock.setSeconds(1'700'000'100);

  const QNFolderRepair repaired = repair();

  EXPECT_THAT(repaired.foldersMovedToTop, ElementsAre(*a->uuid(), *b->uuid(), *orphan->uuid()));
  EXPECT_THAT(repaired.itemsMovedToTop, ElementsAre(*stray->uuid()));
  EXPECT_EQ(treeIn(session), "a 1 b 0 [c 0] orphan 0");
  EXPECT_EQ(reread(*inside)->folderUUID(), *a->uuid());
  EXPECT_EQ(reread(*stray)->folderUUID(), std::nullopt);
  // They were moved, not edited.
  EXPECT_EQ(reread(*stray)->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(session.store->folder(session.vault, *orphan->uuid()).value()->updatedAt(),
            1'700'000'000u);
  const auto checked = session.store->check(session.vault).value();
  EXPECT_THAT(checked.problems, IsEmpty());
  EXPECT_THAT(checked.remarks, IsEmpty());
}

TEST_F(QNStoreMisplacedFolders, ThatAreRepairedNeedNoSecondRepair) {
  const auto orphan = savedFolder(session, "orphan");
  writeParent(*orphan, "nobody");
  repair();
  const auto revision = reread(*orphan)->txTimestamp();

  const QNFolderRepair second = repair();

  EXPECT_THAT(second.foldersMovedToTop, IsEmpty());
  EXPECT_THAT(second.itemsMovedToTop, IsEmpty());
  EXPECT_EQ(reread(*orphan)->txTimestamp(), revision);
}

TEST_F(QNStoreMisplacedFolders, UnderADamagedOneThatARepairKeepsStayThere) {
  const MRCapturingSink silence;
  const auto parent = savedFolder(session, "parent");
  const auto child = savedFolder(session, "child", parent);
  const auto orphan = savedFolder(session, "orphan");
  writeParent(*orphan, "nobody");
  change("UPDATE folders SET display_order = 9 WHERE oid = 1");
  ASSERT_THAT(foldersIn(session).misplaced, ElementsAre(*child->uuid(), *orphan->uuid()));

  EXPECT_THAT(repair().foldersMovedToTop, ElementsAre(*orphan->uuid()));

  EXPECT_EQ(treeIn(session), "orphan 0 parent 0 [child 0]");
}

TEST_F(QNStoreMisplacedFolders, CanBeRenamedWhereTheyAre) {
  const auto orphan = savedFolder(session, "orphan");
  writeParent(*orphan, "nobody");
  const auto read = foldersIn(session).folders.at(0);
  read->setTitle("renamed");

  ASSERT_EQ(errorOfSaving(read), "");

  EXPECT_EQ(treeText(foldersIn(session).top), "renamed 0");
  EXPECT_EQ(reread(*orphan)->parentUUID(), "nobody");
}

TEST_F(QNStoreMisplacedFolders, OfACircleCanBeDeleted) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  writeParent(*a, *b->uuid());

  ASSERT_EQ(errorOf(session.store->deleteFolder(foldersIn(session).folders.at(0))), "");

  EXPECT_EQ(treeIn(session), "b 0");
  EXPECT_EQ(problemsIn(session), std::vector<std::string>());
}

TEST_F(QNStoreMisplacedFolders, HoldNoNewOneBelowTheirCircle) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  writeParent(*a, *b->uuid());

  EXPECT_EQ(errorOfSaving(makeFolder(session.vault, "new", b)), misplaced);
}

TEST_F(QNStoreMisplacedFolders, InQuarantineStaySmartThroughARepair) {
  const auto smart = makeFolder(session.vault, "fatal");
  smart->setSmartFolder(true);
  smart->setSmartFolderPredicate(QNPredicate::predicateWithFormat("NOT trashed == TRUE").value());
  smart->setSmartFolderVersion(3);
  ASSERT_EQ(errorOfSaving(smart), "");
  writeParent(*smart, "nobody");

  EXPECT_THAT(repair().foldersMovedToTop, ElementsAre(*smart->uuid()));

  EXPECT_THAT(foldersIn(session).quarantined, ElementsAre(*smart->uuid()));
}

TEST_F(QNStoreFolderChanges, MakeASmartFolderOfOneThatLeavesQuarantineWithANewPredicate) {
  const auto smart = makeFolder(session.vault, "fatal");
  smart->setSmartFolder(true);
  smart->setSmartFolderPredicate(QNPredicate::predicateWithFormat("NOT trashed == TRUE").value());
  smart->setSmartFolderVersion(3);
  ASSERT_EQ(errorOfSaving(smart), "");
  const auto read = reread(*smart);
  ASSERT_FALSE(read->smartFolder());
  read->setSmartFolderPredicate(QNPredicate::predicateWithFormat(R"(title == "a")").value());

  const auto undone = session.store->inTransaction([&]() -> QNResult<QNDone> {
    EXPECT_EQ(errorOfSaving(read), "");
    return QNError{"test", 1, "no"};
  });
  ASSERT_FALSE(undone.ok());
  EXPECT_FALSE(read->smartFolder());

  for (int saves = 0; saves < 2; ++saves) {
    ASSERT_EQ(errorOfSaving(read), "");
    EXPECT_TRUE(read->smartFolder());
    const auto again = reread(*smart);
    ASSERT_TRUE(again->smartFolder());
    EXPECT_EQ(again->smartFolderPredicate()->predicateFormat(), R"(title == "a")");
  }
}

// Any history

/// What a vault with folders should be.
struct Model {
  std::map<std::string, std::string> parents;  // by folder; "" at the top
  std::map<std::string, std::string> folders;  // by item that isn't trashed; "" in none
  std::map<std::string, std::string> trashed;

  [[nodiscard]] bool liesIn(std::string folder, const std::string& other) const {
    for (; !folder.empty(); folder = parents.at(folder)) {
      if (folder == other) return true;
    }
    return false;
  }
  void remove(const std::string& folder) {
    const std::string parent = parents.at(folder);
    parents.erase(folder);
    for (auto& [each, above] : parents) {
      if (above == folder) above = parent;
    }
    for (auto* items : {&folders, &trashed}) {
      for (auto& [item, in] : *items) {
        if (in == folder) in.clear();
      }
    }
  }
  /// "FOLDER in PARENT: ITEMS, SUBFOLDERS" of each.
  [[nodiscard]] std::vector<std::string> lines() const {
    std::vector<std::string> lines;
    for (const auto& [folder, parent] : parents) {
      const auto isHere = [&folder = folder](const auto& each) { return each.second == folder; };
      lines.push_back(fmt::format("{} in {}: {}, {}", folder, parent,
                                  std::count_if(folders.begin(), folders.end(), isHere),
                                  std::count_if(parents.begin(), parents.end(), isHere)));
    }
    return lines;
  }
};

std::vector<std::string> linesOf(const QNFolderReport& report) {
  std::vector<std::string> lines;
  for (const auto& each : report.folders) {
    const auto parent = each->parentFolder();
    lines.push_back(fmt::format("{} in {}: {}, {}", *each->uuid(),
                                parent == nullptr ? "" : *parent->uuid(), each->numberOfItems(),
                                each->numberOfChildren()));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

class QNStoreFolderHistories : public QNStoreFolderChanges,
                               public ::testing::WithParamInterface<unsigned> {
 protected:
  using Texts = std::map<std::string, std::string>;
  std::string any(const Texts& of) {
    auto at = of.begin();
    std::advance(at, static_cast<std::ptrdiff_t>(random() % of.size()));
    return at->first;
  }
  /// A folder, or "".
  std::string anyPlace() {
    return model.parents.empty() || random() % 4 == 0 ? "" : any(model.parents);
  }
  static std::optional<std::string> asUUID(const std::string& place) {
    return place.empty() ? std::nullopt : std::optional(place);
  }
  std::shared_ptr<QNFolder> folderOf(const std::string& uuid) {
    return session.store->folder(session.vault, uuid).value();
  }
  std::shared_ptr<QNItem> itemOf(const std::string& uuid) {
    return session.store->item(session.vault, uuid).value();
  }

  void addFolder() {
    const auto made = makeFolder(session.vault, "folder");
    const std::string parent = anyPlace();
    made->setParentUUID(asUUID(parent));
    ASSERT_EQ(errorOfSaving(made), "");
    model.parents[*made->uuid()] = parent;
  }
  void moveFolder() {
    const std::string uuid = any(model.parents);
    const std::string parent = anyPlace();
    const auto moved = folderOf(uuid);
    moved->setParentUUID(asUUID(parent));
    const bool isRefused = model.liesIn(parent, uuid);
    if (isRefused && isInTransaction) return;  // it would end with the refusal
    ASSERT_EQ(errorOfSaving(moved), isRefused ? misplaced : "");
    if (!isRefused) model.parents[uuid] = parent;
  }
  void removeFolder() {
    const std::string uuid = any(model.parents);
    ASSERT_EQ(errorOf(session.store->deleteFolder(folderOf(uuid))), "");
    model.remove(uuid);
  }
  void addItem() {
    const auto item = makeLogin(session.vault, "item", "", "a");
    const std::string place = anyPlace();
    item->setFolderUUID(asUUID(place));
    ASSERT_EQ(errorOf(session.store->save(item)), "");
    model.folders[*item->uuid()] = place;
  }
  void moveItem() {
    const std::string uuid = any(model.folders);
    const std::string place = anyPlace();
    const auto item = itemOf(uuid);
    item->setFolderUUID(asUUID(place));
    ASSERT_EQ(errorOf(session.store->save(item)), "");
    model.folders[uuid] = place;
  }
  void setTrashed(Texts& from, Texts& to, bool trashed) {
    const std::string uuid = any(from);
    const auto item = itemOf(uuid);
    item->setTrashed(trashed);
    ASSERT_EQ(errorOf(session.store->save(item)), "");
    to[uuid] = from[uuid];
    from.erase(uuid);
  }
  void removeItem() {
    const std::string uuid = any(model.folders);
    ASSERT_EQ(errorOf(session.store->deleteItem(itemOf(uuid))), "");
    model.folders.erase(uuid);
  }
  void doAnything() {
    switch (random() % 8) {
      case 0:
        return addFolder();
      case 1:
        if (!model.parents.empty()) moveFolder();
        return;
      case 2:
        if (!model.parents.empty() && random() % 2 == 0) removeFolder();
        return;
      case 3:
        if (!model.folders.empty()) moveItem();
        return;
      case 4:
        if (!model.folders.empty()) setTrashed(model.folders, model.trashed, true);
        return;
      case 5:
        if (!model.trashed.empty()) setTrashed(model.trashed, model.folders, false);
        return;
      case 6:
        if (!model.folders.empty() && random() % 4 == 0) removeItem();
        return;
      default:
        return addItem();
    }
  }
  /// Everything of some steps, or nothing.
  void doSomeAtOnce() {
    const Model before = model;
    const bool fails = random() % 2 == 0;
    isInTransaction = true;
    const auto done = session.store->inTransaction([&]() -> QNResult<QNDone> {
      for (int step = 0; step < 3; ++step) doAnything();
      if (fails) return storeError(QNStoreErrorCode::busy, "on purpose");
      return QNDone{};
    });
    isInTransaction = false;
    EXPECT_EQ(done.ok(), !fails);
    if (fails) model = before;
  }

  std::mt19937 random{GetParam()};
  Model model;
  bool isInTransaction = false;
};

TEST_P(QNStoreFolderHistories, CountWhatANaiveModelCounts) {
  for (int step = 0; step < 150 && !HasFatalFailure(); ++step) {
    SCOPED_TRACE(step);
    clock.setSeconds(1'700'000'000 + static_cast<std::uint64_t>(step) / 3);
    random() % 6 == 0 ? doSomeAtOnce() : doAnything();
    const QNFolderReport report = foldersIn(session);
    ASSERT_EQ(linesOf(report), model.lines());
    ASSERT_FALSE(report.ledgerBroken);
    ASSERT_THAT(report.misplaced, IsEmpty());
  }
  const auto checked = session.store->check(session.vault).value();
  EXPECT_THAT(checked.problems, IsEmpty());
  EXPECT_THAT(checked.remarks, IsEmpty());
  session = openSession(file);
  EXPECT_EQ(linesOf(foldersIn(session)), model.lines());
}

INSTANTIATE_TEST_SUITE_P(Seeds, QNStoreFolderHistories, ::testing::Range(0u, 6u));

}  // namespace
}  // namespace quillon
