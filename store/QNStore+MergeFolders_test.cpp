// What a merge of two stores does with folders. Items: QNStore+Merge_test.cpp.

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
using Kind = QNMergedItem::Kind;

/// Two stores, of which the second began as a copy of the first.
class QNStoreMergeFolders : public ::testing::Test {
 protected:
  QNStoreMergeFolders() {
    a = *savedFolder(mine, "a")->uuid();
    b = *savedFolder(mine, "b", folderIn(mine, a))->uuid();
    c = *savedFolder(mine, "c")->uuid();
    item = *savedLoginIn(mine, *folderIn(mine, b), "item")->uuid();
    EXPECT_EQ(errorOf(mine.store->backupTo(folder / "theirs")), "");
    theirs = openSession(folder / "theirs");
    merge();
    later();
  }
  void later() { clock.setSeconds(secondsNow() + 10); }
  static std::shared_ptr<QNFolder> folderIn(Session& session, const std::string& uuid) {
    return session.store->folder(session.vault, uuid).value();
  }
  static std::shared_ptr<QNItem> itemIn(Session& session, const std::string& uuid) {
    return session.store->item(session.vault, uuid).value();
  }
  /// Each change in a second of its own.
  template <class Change>
  void edit(Session& session, const std::string& uuid, const Change& change) {
    const auto edited = folderIn(session, uuid);
    change(*edited);
    EXPECT_EQ(errorOf(session.store->saveFolder(edited)), "");
    later();
  }
  void rename(Session& session, const std::string& uuid, std::string_view title) {
    edit(session, uuid, [title](QNFolder& edited) { edited.setTitle(title); });
  }
  void move(Session& session, const std::string& uuid, const std::optional<std::string>& parent) {
    edit(session, uuid, [&parent](QNFolder& edited) { edited.setParentUUID(parent); });
  }
  void remove(Session& session, const std::string& uuid) {
    EXPECT_EQ(errorOf(session.store->deleteFolder(folderIn(session, uuid))), "");
    later();
  }
  /// Merges, and expects that both are sound and hold the same, and that a second merge does
  /// nothing.
  QNMergeReport merge() {
    auto report = mergeStores(mine, theirs);
    EXPECT_EQ(errorOf(report), "");
    const std::string tree = treeIn(mine);
    EXPECT_EQ(tree, treeIn(theirs));
    const std::string before = bytesOfTables();
    const auto again = mergeStores(mine, theirs);
    EXPECT_EQ(errorOf(again), "");
    EXPECT_THAT(again.value().folders, IsEmpty());
    EXPECT_THAT(again.value().items, IsEmpty());
    EXPECT_EQ(bytesOfTables(), before);
    for (Session* session : {&mine, &theirs}) {
      const auto checked = session->store->check(session->vault).value();
      EXPECT_THAT(checked.problems, IsEmpty());
      EXPECT_THAT(checked.remarks, IsEmpty());
    }
    return std::move(report).value();
  }
  /// The revisions of all folders of both.
  std::string bytesOfTables() {
    std::string text;
    for (const char* name : {"mine", "theirs"}) {
      const auto database =
          std::move(QNDatabase::open(folder / name, QNDatabase::Mode::readOnly)).value();
      QNQuery query = database->query("SELECT uuid, tx_timestamp FROM folders ORDER BY oid");
      while (query.next()) text += std::string(query.text(0)) + std::to_string(query.number(1));
    }
    return text;
  }
  static std::vector<std::pair<std::string, Kind>> kindsOf(const QNMergeReport& report) {
    std::vector<std::pair<std::string, Kind>> kinds;
    for (const auto& each : report.folders) kinds.emplace_back(each.uuid, each.kind);
    return kinds;
  }
  using One = std::pair<std::string, Kind>;

  QNScopedClock clock{1'700'000'000};
  const TemporaryFolder folder;
  Session mine = makeSession(folder / "mine");
  Session theirs;
  std::string a, b, c, item;
};

TEST_F(QNStoreMergeFolders, LeavesWhatIsInStep) {
  EXPECT_EQ(treeIn(mine), "a 0 [b 1] c 0");

  EXPECT_THAT(kindsOf(merge()), IsEmpty());
}

TEST_F(QNStoreMergeFolders, CopiesNewOnesWithTheirItemsBothWays) {
  const auto here = makeFolder(mine.vault, "here", folderIn(mine, c));
  here->setIconData(Bytes{1, 2});
  here->setDisplayOrder(4);
  here->setCreatedAt(7);
  ASSERT_EQ(errorOf(mine.store->saveFolder(here)), "");
  savedLoginIn(mine, *here, "1");
  const auto there = savedFolder(theirs, "there");
  savedLoginIn(theirs, *there, "2");

  const QNMergeReport report = merge();

  EXPECT_THAT(kindsOf(report), UnorderedElementsAre(One(*here->uuid(), Kind::copiedToTheirs),
                                                    One(*there->uuid(), Kind::copiedToMine)));
  EXPECT_EQ(treeIn(mine), "a 0 [b 1] c 0 [here 1] there 1");
  const auto copy = folderIn(theirs, *here->uuid());
  EXPECT_EQ(copy->iconData(), (Bytes{1, 2}));
  EXPECT_EQ(copy->displayOrder(), 4u);
  EXPECT_EQ(copy->createdAt(), 7u);
  EXPECT_EQ(copy->updatedAt(), here->updatedAt());
}

TEST_F(QNStoreMergeFolders, TakesTheOneThatWasChangedLaterAsAWhole) {
  rename(mine, a, "earlier");
  rename(theirs, a, "later");
  move(theirs, c, a);
  rename(mine, c, "later too");

  const QNMergeReport report = merge();

  EXPECT_THAT(kindsOf(report),
              UnorderedElementsAre(One(a, Kind::replacedMine), One(c, Kind::replacedTheirs)));
  EXPECT_EQ(treeIn(mine), "later 0 [b 1] later too 0");
}

TEST_F(QNStoreMergeFolders, OfOneSecondTakesMine) {
  const std::uint64_t now = secondsNow();
  rename(mine, a, "mine");
  clock.setSeconds(now);
  rename(theirs, a, "theirs");

  EXPECT_THAT(kindsOf(merge()), ElementsAre(One(a, Kind::replacedTheirs)));
  EXPECT_EQ(treeIn(theirs), "c 0 mine 0 [b 1]");
}

TEST_F(QNStoreMergeFolders, LetsItemsKeepTheirFolder) {
  const auto moved = itemIn(mine, item);
  moved->setFolderUUID(c);
  ASSERT_EQ(errorOf(mine.store->save(moved)), "");
  const auto tagged = itemIn(theirs, item);
  tagged->setTags({"kept"});
  ASSERT_EQ(errorOf(theirs.store->save(tagged)), "");

  merge();

  EXPECT_EQ(itemIn(mine, item)->folderUUID(), itemIn(theirs, item)->folderUUID());
  EXPECT_EQ(itemIn(mine, item)->tags(), std::set<std::string>{"kept"});
}

// Deletions

TEST_F(QNStoreMergeFolders, DeletesOnBothSidesAndMovesUpWhatTheFolderHeld) {
  remove(mine, a);
  savedLoginIn(theirs, *folderIn(theirs, a), "new there");
  savedFolder(theirs, "inside", folderIn(theirs, a));

  const QNMergeReport report = merge();

  EXPECT_THAT(kindsOf(report), ::testing::Contains(One(a, Kind::deletedTheirs)));
  EXPECT_EQ(treeIn(mine), "b 1 c 0 inside 0");
  EXPECT_EQ(titlesIn(mine), (std::vector<std::string>{"item", "new there"}));
}

TEST_F(QNStoreMergeFolders, MovesUpIntoTheParentOfADeletedOneWhatTheOtherSideHasPutIntoIt) {
  remove(theirs, b);
  const auto inside = savedFolder(mine, "inside", folderIn(mine, b));
  savedLoginIn(mine, *inside, "1");

  merge();

  EXPECT_EQ(treeIn(theirs), "a 0 [inside 1] c 0");
  EXPECT_EQ(itemIn(mine, item)->folderUUID(), std::nullopt);
}

TEST_F(QNStoreMergeFolders, DeletesTheItemsThatWereDeletedWithTheirFolder) {
  for (Session* const deleting : {&mine, &theirs}) {
    SCOPED_TRACE(deleting == &mine);
    const auto box = savedFolder(*deleting, "box");
    const std::string inside = *savedLoginIn(*deleting, *box, "inside")->uuid();
    merge();
    later();
    remove(*deleting, *box->uuid());
    ASSERT_EQ(errorOf(deleting->store->deleteItem(itemIn(*deleting, inside))), "");

    const QNMergeReport report = merge();

    ASSERT_EQ(report.items.size(), 1u);
    EXPECT_EQ(report.items[0].kind, deleting == &mine ? Kind::deletedTheirs : Kind::deletedMine);
    EXPECT_EQ(titlesIn(mine, QNStore::Which::all), std::vector<std::string>{"item"});
  }
}

// Neither remembers anything of the other, and the one that was merged into isn't written.
TEST_F(QNStoreMergeFolders, DeletesTheItemsOfAFolderAlsoAfterHalfAFirstMerge) {
  const auto file = folder / "mine", copy = folder / "copy";
  ASSERT_EQ(errorOf(mine.store->backupTo(folder / "third")), "");
  Session third = openSession(folder / "third");
  ASSERT_EQ(errorOf(third.store->deleteItem(itemIn(third, item))), "");
  remove(third, b);
  ASSERT_EQ(errorOf(mine.store->backupTo(copy)), "");
  const auto mergeWithThird = [&] {
    auto report = QNStore::merge({mine.store.get(), mine.vault, "mine"},
                                 {third.store.get(), third.vault, "third"});
    EXPECT_EQ(errorOf(report), "");
    return std::move(report).value();
  };
  mergeWithThird();
  mine = Session();
  std::filesystem::rename(copy, file);
  mine = openSession(file);
  later();

  const QNMergeReport report = mergeWithThird();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::deletedMine);
  EXPECT_THAT(titlesIn(third, QNStore::Which::all), IsEmpty());
}

TEST_F(QNStoreMergeFolders, AnItemThatWasEditedBesideTheDeletionOfItsFolderReplacesTheOther) {
  remove(mine, b);
  const auto edited = itemIn(mine, item);
  edited->setTitle("edited");
  ASSERT_EQ(errorOf(mine.store->save(edited)), "");

  const QNMergeReport report = merge();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::replacedTheirs);
  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"edited"});
}

TEST_F(QNStoreMergeFolders, ADeletedFolderLeavesAnEditOfWhatItHeldTheLaterOne) {
  const auto edited = itemIn(theirs, item);
  edited->setTitle("edited");
  ASSERT_EQ(errorOf(theirs.store->save(edited)), "");
  later();
  remove(mine, b);
  const QNMergeReport report = merge();
  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::replacedMine);  // not joined: mine was moved, not edited
  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"edited"});
  EXPECT_EQ(itemIn(mine, item)->folderUUID(), std::nullopt);
  const std::string inside = *savedFolder(mine, "inside", folderIn(mine, a))->uuid();
  merge();
  later();
  rename(theirs, inside, "typed");
  remove(mine, a);

  merge();

  EXPECT_EQ(treeIn(mine), "c 0 typed 0");
}

TEST_F(QNStoreMergeFolders, ADeletedFolderLeavesTheDeletionOfWhatItHeld) {
  ASSERT_EQ(errorOf(theirs.store->deleteItem(itemIn(theirs, item))), "");
  later();
  remove(mine, b);

  const QNMergeReport report = merge();

  ASSERT_EQ(report.items.size(), 1u);
  EXPECT_EQ(report.items[0].kind, Kind::deletedMine);
  EXPECT_THAT(titlesIn(mine, QNStore::Which::all), IsEmpty());
}

TEST_F(QNStoreMergeFolders, KeepsWhatWasChangedAfterItsDeletionWithWhatItHeld) {
  for (const bool isMine : {true, false}) {
    SCOPED_TRACE(isMine);
    Session& deleting = isMine ? mine : theirs;
    Session& renaming = isMine ? theirs : mine;
    const auto inside = savedFolder(deleting, "inside", folderIn(deleting, b));
    merge();
    later();
    remove(deleting, b);
    rename(renaming, b, "needed");

    const QNMergeReport report = merge();

    EXPECT_THAT(kindsOf(report), ::testing::Contains(One(b, Kind::deletionRefused)));
    EXPECT_EQ(treeIn(mine), "a 0 [needed 1 [inside 0]] c 0");
    EXPECT_EQ(treeIn(theirs), treeIn(mine));
    EXPECT_THAT(report.items, IsEmpty());
    remove(mine, *inside->uuid());
    merge();
  }
}

TEST_F(QNStoreMergeFolders, LeavesWhatWasEditedSinceItsFolderWasDeletedWhereItIs) {
  remove(mine, b);
  later();
  const auto edited = itemIn(mine, item);
  edited->setTitle("edited");
  ASSERT_EQ(errorOf(mine.store->save(edited)), "");
  rename(theirs, b, "needed");

  merge();

  EXPECT_EQ(treeIn(mine), "a 0 [needed 0] c 0");
  EXPECT_EQ(treeIn(theirs), "a 0 [needed 0] c 0");
}

TEST_F(QNStoreMergeFolders, DeletesWhatWasChangedBeforeItsDeletion) {
  rename(theirs, b, "changed");
  remove(mine, b);

  EXPECT_THAT(kindsOf(merge()), ElementsAre(One(b, Kind::deletedTheirs)));
  EXPECT_EQ(treeIn(mine), "a 0 c 0");
}

TEST_F(QNStoreMergeFolders, KeepsWhatWasChangedInTheSecondOfItsDeletion) {
  const std::uint64_t now = secondsNow();
  remove(mine, c);
  clock.setSeconds(now);
  rename(theirs, c, "kept");

  EXPECT_THAT(kindsOf(merge()), ElementsAre(One(c, Kind::deletionRefused)));
}

TEST_F(QNStoreMergeFolders, OfTwoDeletionsKeepsTheLaterTime) {
  remove(mine, c);
  remove(theirs, c);

  EXPECT_THAT(kindsOf(merge()), IsEmpty());
  rename(mine, a, "so that there is something to do");
  EXPECT_EQ(treeIn(theirs), "a 0 [b 1]");
  const auto back = makeFolder(theirs.vault, "back");
  back->setUuid(sharedString(c));
  ASSERT_EQ(errorOf(theirs.store->saveFolder(back)), "");
  EXPECT_THAT(kindsOf(merge()),
              UnorderedElementsAre(One(a, Kind::replacedTheirs), One(c, Kind::deletionRefused)));
}

TEST_F(QNStoreMergeFolders, TellsAThirdStoreOfADeletion) {
  ASSERT_EQ(errorOf(mine.store->backupTo(folder / "third")), "");
  remove(mine, c);
  merge();
  Session third = openSession(folder / "third");

  ASSERT_EQ(errorOf(mergeStores(third, theirs)), "");

  EXPECT_EQ(treeIn(third), "a 0 [b 1]");
}

// Places

TEST_F(QNStoreMergeFolders, PutsFoldersThatWereMovedIntoEachOtherAtTheTop) {
  move(mine, c, a);
  move(theirs, a, c);

  const QNMergeReport report = merge();

  EXPECT_THAT(report.foldersMovedToTop, UnorderedElementsAre(a, c));
  EXPECT_EQ(treeIn(mine), "a 0 [b 1] c 0");
}

TEST_F(QNStoreMergeFolders, PutsAFolderAtTheTopWhoseNewParentTheOtherSideHasDeleted) {
  move(mine, b, c);
  remove(theirs, c);

  merge();

  EXPECT_EQ(treeIn(theirs), "a 0 b 1");
}

// Safety

TEST_F(QNStoreMergeFolders, TellsOfSmartFoldersThatArriveInQuarantine) {
  const auto smart = makeFolder(theirs.vault, "fatal");
  smart->setSmartFolder(true);
  smart->setSmartFolderPredicate(QNPredicate::predicateWithFormat("NOT trashed == TRUE").value());
  smart->setSmartFolderVersion(3);
  ASSERT_EQ(errorOf(theirs.store->saveFolder(smart)), "");

  const auto report = std::move(mergeStores(mine, theirs)).value();

  EXPECT_THAT(report.quarantinedFolders, ElementsAre(*smart->uuid()));
  const QNFolderReport folders = foldersIn(mine);
  EXPECT_THAT(folders.quarantined, ElementsAre(*smart->uuid()));
  EXPECT_EQ(folderIn(mine, *smart->uuid())->smartFolderPredicate(), nullptr);
  const auto again = std::move(mergeStores(mine, theirs)).value();
  EXPECT_THAT(again.folders, IsEmpty());
}

TEST_F(QNStoreMergeFolders, CarriesNoAlteredRowOver) {
  const MRCapturingSink silence;
  {
    const auto database =
        std::move(QNDatabase::open(folder / "theirs", QNDatabase::Mode::readWrite)).value();
    database->run("UPDATE folders SET display_order = 9 WHERE oid = 1");
  }
  rename(mine, c, "changed");

  EXPECT_EQ(errorOf(mergeStores(mine, theirs)), codeText(QNStoreErrorCode::damaged));
  EXPECT_EQ(folderIn(theirs, c)->title(), "c");
}

TEST_F(QNStoreMergeFolders, WritesNothingInADryRun) {
  rename(mine, a, "changed");
  remove(mine, c);

  const auto report =
      QNStore::merge({mine.store.get(), mine.vault, "mine"},
                     {theirs.store.get(), theirs.vault, "theirs"}, QNStore::MergeMode::dryRun);

  ASSERT_EQ(errorOf(report), "");
  EXPECT_EQ(report.value().folders.size(), 2u);
  EXPECT_EQ(treeIn(theirs), "a 0 [b 1] c 0");
}

// Any history

TEST_F(QNStoreMergeFolders, AfterAnyHistoryHoldsTheSameOnBothSides) {
  std::mt19937 random(7);
  const auto any = [&](Session& session) -> std::optional<std::string> {
    const auto all = foldersIn(session).folders;
    if (all.empty() || random() % 4 == 0) return std::nullopt;
    return *all[random() % all.size()]->uuid();
  };
  for (int round = 0; round < 15 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    for (int step = 0; step < 6; ++step) {
      Session& session = random() % 2 == 0 ? mine : theirs;
      if (random() % 2 == 0) later();
      const auto target = any(session);
      const auto parent = any(session);
      const auto made = target ? folderIn(session, *target) : makeFolder(session.vault, "new");
      switch (random() % 4) {
        case 0:
          if (target) {
            EXPECT_EQ(errorOf(session.store->deleteFolder(made)), "");
          }
          break;
        case 1:
          if (target) savedLoginIn(session, *made, "item");
          break;
        default:
          made->setTitle(std::to_string(round) + "." + std::to_string(step));
          made->setParentUUID(parent);
          static_cast<void>(session.store->saveFolder(made));  // into itself: refused
      }
    }
    merge();
  }
}

}  // namespace
}  // namespace quillon
