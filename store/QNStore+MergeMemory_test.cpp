#include "store/internal/QNMergeFixture.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// One of the two files isn't written

class QNStoreMergeMemory : public QNStoreMerge {
 protected:
  /// Theirs is written, and then mine fails: mine is what it was.
  void mergeOnlyTheirs() {
    const auto before = folder / "before";
    ASSERT_EQ(errorOf(mine.store->backupTo(before)), "");
    ASSERT_TRUE(tryMerge().ok());
    mine = Session();
    for (const char* const suffix : {"", "-wal", "-shm"}) {
      std::filesystem::remove(myFile.string() + suffix);
    }
    std::filesystem::rename(before, myFile);
    mine = openSession(myFile);
  }
};

TEST_F(QNStoreMergeMemory, LosesNothingIfOneSideCouldNotBeWritten) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setNotesPlain("mine"); });
  edit(theirs, uuid, [](QNItem& item) { item.setNotesPlain("theirs"); });
  mergeOnlyTheirs();

  const QNMergeReport report = merged();

  EXPECT_EQ(report.items.at(0).kind, Kind::joined);
  EXPECT_EQ(itemIn(mine, uuid)->notesPlain(), "theirs\n\n===\n\nmine");
}

TEST_F(QNStoreMergeMemory, AfterHalfAMergeWhatTheirsAloneHadChangedStillReplacesMine) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(theirs, uuid, [](QNItem& item) {
    item.setTitle("theirs");
    item.setPassword("pass 2");
    item.setTags({"work"});
  });
  mergeOnlyTheirs();

  EXPECT_EQ(merged().items.at(0).kind, Kind::replacedMine);

  const auto item = itemIn(mine, uuid);
  EXPECT_EQ(item->title(), "theirs");
  EXPECT_TRUE(item->password()->equals("pass 2"));
  EXPECT_EQ(item->tags(), std::set<std::string>{"work"});
}

TEST_F(QNStoreMergeMemory, AfterHalfAMergeWhatMineAloneHadChangedIsInStep) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) {
    item.setTitle("mine");
    item.setPassword("pass 2");
    item.setTags({"work"});
  });
  mergeOnlyTheirs();

  EXPECT_THAT(merged().items, IsEmpty());

  EXPECT_EQ(itemIn(theirs, uuid)->title(), "mine");
}

TEST_F(QNStoreMergeMemory, AfterHalfAMergeALaterChangeIsNotUndone) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setTitle("mine"); });
  mergeOnlyTheirs();
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("later"); });

  merged();

  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"later"});
}

TEST_F(QNStoreMergeMemory, AfterHalfAMergeADeletionOfAnUnseenChangeIsStillRefused) {
  for (const bool isMineDeleted : {true, false}) {
    SCOPED_TRACE(isMineDeleted);
    const std::string uuid = *savedLogin(mine, "one")->uuid();
    if (theirs.store == nullptr) copyFile();
    merged();
    edit(isMineDeleted ? theirs : mine, uuid, [](QNItem& item) { item.setTitle("needed"); });
    remove(isMineDeleted ? mine : theirs, uuid);
    mergeOnlyTheirs();

    merged();

    for (Session* const session : {&mine, &theirs}) {
      const auto item = itemIn(*session, uuid);
      ASSERT_NE(item, nullptr);
      EXPECT_EQ(item->title(), "needed");
    }
  }
}

// Mine has no memory at all, so the times would decide.
TEST_F(QNStoreMergeMemory, ADeletionByASideThatSawAnotherVersionIsRefused) {
  copyFile();
  mergeOnlyTheirs();
  const std::string uuid = uuidOfFirst();
  edit(mine, uuid, [](QNItem& item) { item.setTitle("needed"); });
  remove(theirs, uuid);

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"needed"});
}

TEST_F(QNStoreMergeMemory, AnEditAfterHalfAFirstMergeOutlivesADeletionThatDidNotSeeIt) {
  copyFile();
  merged();
  const std::string uuid = *savedLogin(mine, "new")->uuid();
  mergeOnlyTheirs();
  edit(theirs, uuid, [](QNItem& item) { item.setTitle("edited"); });
  clock.setSeconds(1'700'009'000);
  remove(mine, uuid);

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(mine), (std::vector<std::string>{"first", "edited"}));
  EXPECT_EQ(titlesIn(theirs), (std::vector<std::string>{"first", "edited"}));
}

TEST_F(QNStoreMergeMemory, ADeletionThatHalfAFirstMergeCarriedOverStillGoesOver) {
  for (const bool isMineDeleted : {true, false}) {
    SCOPED_TRACE(isMineDeleted);
    theirs = Session();
    mine = Session();
    for (const auto& each : {myFile, theirFile}) std::filesystem::remove(each);
    mine = makeSession(myFile);
    const std::string uuid = *savedLogin(mine, "one")->uuid();
    copyFile();
    remove(isMineDeleted ? mine : theirs, uuid);
    mergeOnlyTheirs();

    merged();

    for (Session* const session : {&mine, &theirs}) {
      EXPECT_THAT(titlesIn(*session, QNStore::Which::all), IsEmpty());
    }
  }
}

// Changed before the deletion by the clocks, but nobody there has seen it.
TEST_F(QNStoreMergeMemory, ADeletionThatHalfAFirstMergeCarriedOverSparesWhatItDidNotMeet) {
  copyFile();
  const std::string uuid = uuidOfFirst();
  clock.setSeconds(1'700'009'000);
  remove(theirs, uuid);
  mergeOnlyTheirs();
  clock.setSeconds(1'700'000'100);
  edit(mine, uuid, [](QNItem& item) { item.setTitle("needed"); });

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(theirs), std::vector<std::string>{"needed"});
}

TEST_F(QNStoreMergeMemory, ADeletionDoesNotGoOverTwice) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  const auto kept = itemIn(theirs, uuid);
  remove(mine, uuid);
  merged();
  kept->setProfile(theirs.vault);
  kept->_setOid(0);
  for (const auto& url : kept->URLs()) url->_setOid(0);
  ASSERT_EQ(errorOf(theirs.store->saveAllWithTheirTimes({&kept, 1})), "");

  EXPECT_EQ(merged().items.at(0).kind, Kind::deletionRefused);

  EXPECT_EQ(titlesIn(mine), std::vector<std::string>{"first"});
}

// An older copy in the place of one side

class QNStoreMergeRestored : public QNStoreMerge {
 protected:
  void putBack(Session& session, const std::filesystem::path& file, const std::string& bytes) {
    session = Session();
    for (const char* const suffix : {"-wal", "-shm"}) {
      std::filesystem::remove(file.string() + suffix);
    }
    writeFile(file, bytes);
    session = openSession(file);
  }
  std::string backupOf(Session& session) {
    const auto file = folder / "backup";
    EXPECT_EQ(errorOf(session.store->backupTo(file)), "");
    const std::string bytes = bytesOfFile(file);
    std::filesystem::remove(file);
    return bytes;
  }
  /// Into mine; but not what it remembers of theirs.
  void putRowsBack(const std::string& bytes) {
    const auto backup = folder / "rows";
    writeFile(backup, bytes);
    auto database = std::move(QNDatabase::open(myFile, QNDatabase::Mode::readWrite)).value();
    database->run("PRAGMA foreign_keys = OFF; ATTACH '" + backup.string() + "' AS old");
    for (const std::string table : {"items", "details", "urls", "folders", "ledgers"}) {
      database->run("DELETE FROM main." + table + "; INSERT INTO main." + table +
                    " SELECT * FROM old." + table);
    }
    ASSERT_FALSE(database->failed());
  }
};

TEST_F(QNStoreMergeRestored, ChangesNeitherSideIfRowsAreOlderThanItsMemory) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  const std::string backup = backupOf(mine);
  edit(mine, uuid, [](QNItem& item) { item.setTitle("newest"); });
  savedLogin(mine, "second");
  merged();
  putRowsBack(backup);
  const auto expectDamaged = [&] {
    EXPECT_THAT(problemsIn(mine), ElementsAre(HasSubstr("a merge with theirs remembers newer")));
    EXPECT_EQ(problemsIn(theirs), std::vector<std::string>());
    EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));
    EXPECT_THAT(titlesIn(theirs), ElementsAre("newest", "second"));
  };

  expectDamaged();
  // So the ledger is newer than all that is remembered.
  clock.setSeconds(secondsNow() + 100);
  savedLogin(mine, "third");

  expectDamaged();
  clock.setSeconds(secondsNow() + 100);
  ASSERT_EQ(errorOf(QNStore::merge({mine.store.get(), mine.vault, "mine"},
                                   {theirs.store.get(), theirs.vault, "elsewhere"})),
            "");
  for (Session* const session : {&mine, &theirs}) {
    EXPECT_THAT(titlesIn(*session), UnorderedElementsAre("newest", "second", "third"));
  }
  EXPECT_EQ(problemsIn(mine), std::vector<std::string>());
}

TEST_F(QNStoreMergeRestored, ChangesNeitherSideIfARowIsMissingThatItRemembers) {
  copyFile();
  merged();
  const std::string backup = backupOf(mine);
  savedLogin(mine, "second");
  merged();
  putRowsBack(backup);

  EXPECT_EQ(errorOf(tryMerge()), codeText(QNStoreErrorCode::damaged));

  EXPECT_THAT(problemsIn(mine), ElementsAre(HasSubstr("a merge with theirs remembers newer")));
  EXPECT_THAT(titlesIn(theirs), ElementsAre("first", "second"));
}

TEST_F(QNStoreMergeRestored, TakesWhatTheOtherHasHadSinceThen) {
  savedLogin(mine, "second");
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst();
  for (const bool isMineRestored : {true, false}) {
    SCOPED_TRACE(isMineRestored);
    Session& restored = isMineRestored ? mine : theirs;
    const std::string backup = backupOf(restored);
    const std::string title = isMineRestored ? "one" : "two";
    edit(restored, uuid, [&](QNItem& item) { item.setTitle(title); });
    merged();
    putBack(restored, isMineRestored ? myFile : theirFile, backup);

    const QNMergeReport report = merged();

    ASSERT_EQ(report.items.size(), 1u);
    EXPECT_EQ(report.items[0].kind, isMineRestored ? Kind::replacedMine : Kind::replacedTheirs);
    EXPECT_THAT(titlesIn(mine), ElementsAre(title, "second"));
  }
}

// Its changes get numbers that it had given once before.
TEST_F(QNStoreMergeRestored, LosesNoChangeThatItMakesThen) {
  copyFile();
  merged();
  const std::string uuid = uuidOfFirst(), other = *savedLogin(mine, "second")->uuid();
  merged();
  const std::string backup = backupOf(mine);
  for (int i = 0; i < 5; ++i) {
    edit(mine, uuid, [&](QNItem& item) { item.setTitle("lost " + std::to_string(i)); });
    merged();
  }
  clock.setSeconds(1'700'000'000);
  putBack(mine, myFile, backup);
  edit(mine, other, [](QNItem& item) { item.setNotesPlain("after"); });

  merged();

  EXPECT_EQ(itemIn(theirs, other)->notesPlain(), "after");
  EXPECT_THAT(titlesIn(mine), ElementsAre("lost 4", "second"));
}

}  // namespace
}  // namespace quillon
