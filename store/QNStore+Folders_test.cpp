// Folders as they are read: the tree, counts, seals, what is misplaced or in quarantine. How they
// are changed: QNStore+FolderChanges_test.cpp.

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNDatabase.h"
#include "store/internal/QNFolderTesting.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class QNStoreFolders : public ::testing::Test {
 protected:
  /// A smart folder whose predicate is of an older version.
  std::shared_ptr<QNFolder> savedOldSmartFolder(std::string_view title, std::string_view format) {
    const auto smart = makeFolder(session.vault, title);
    smart->setSmartFolder(true);
    smart->setSmartFolderPredicate(QNPredicate::predicateWithFormat(format).value());
    smart->setSmartFolderVersion(3);
    EXPECT_EQ(errorOf(session.store->saveFolder(smart)), "");
    return smart;
  }
  QNCheckReport check() { return session.store->check(session.vault).value(); }

  QNScopedClock clock{1'700'000'000};
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  Session session = makeSession(file);
};

TEST_F(QNStoreFolders, ComeBackWithEverything) {
  const auto parent = savedFolder(session, "parent");
  const auto made = makeFolder(session.vault, "größer", parent);
  made->setCreatedAt(1'600'000'000);
  made->setDisplayOrder(std::numeric_limits<std::uint64_t>::max());
  made->setIconData(Bytes{1, 2, 3});
  made->setSmartFolder(true);
  made->setSmartFolderPredicate(QNPredicate::predicateWithFormat(R"(title == "a")").value());
  made->setOverviewText("kept", "unknown");
  ASSERT_EQ(errorOf(session.store->saveFolder(made)), "");
  EXPECT_FALSE(made->dirtyRow());
  session = openSession(file);

  const auto read = session.store->folder(session.vault, *made->uuid()).value();

  EXPECT_EQ(read->oid(), made->oid());
  EXPECT_EQ(read->title(), "größer");
  EXPECT_EQ(read->parentUUID(), *parent->uuid());
  EXPECT_EQ(read->parentId(), parent->oid());
  EXPECT_EQ(read->createdAt(), 1'600'000'000u);
  EXPECT_EQ(read->updatedAt(), 1'700'000'000u);
  EXPECT_EQ(read->txTimestamp(), made->txTimestamp());
  EXPECT_EQ(read->displayOrder(), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(read->iconData(), (Bytes{1, 2, 3}));
  ASSERT_TRUE(read->smartFolder());
  EXPECT_EQ(read->smartFolderPredicate()->predicateFormat(), R"(title == "a")");
  EXPECT_EQ(read->overviewTextForKey("unknown"), "kept");
  EXPECT_EQ(read->profile(), session.vault);
  EXPECT_FALSE(read->dirtyRow());
  EXPECT_FALSE(read->dirtyDisplayOrder());
}

TEST_F(QNStoreFolders, ComeBackWithNothingWhereThereWasNothing) {
  const auto made = std::make_shared<QNFolder>(initNew);
  made->setProfile(session.vault);
  ASSERT_EQ(errorOf(session.store->saveFolder(made)), "");

  const auto read = foldersIn(session).folders.at(0);

  EXPECT_EQ(read->title(), std::nullopt);
  EXPECT_EQ(read->parentUUID(), std::nullopt);
  EXPECT_EQ(read->parentId(), 0u);
  EXPECT_EQ(read->iconData(), std::nullopt);
  EXPECT_FALSE(read->smartFolder());
  EXPECT_EQ(read->displayOrder(), 0u);
}

TEST_F(QNStoreFolders, KeepTitlesOfEveryShape) {
  for (const std::string& title :
       {std::string(), std::string(1 << 20, 'x'), std::string("a\0b\n\x1b[31m", 9),
        std::string("\u202Etxt.exe"), std::string("日本語 עברית")}) {
    const auto made = savedFolder(session, title);

    EXPECT_EQ(session.store->folder(session.vault, *made->uuid()).value()->title(), title);
  }
  EXPECT_THAT(check().problems, IsEmpty());
}

TEST_F(QNStoreFolders, AreATreeWithCountsOfItemsThatAreNotTrashed) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  savedFolder(session, "c", b);
  savedFolder(session, "d");
  savedLoginIn(session, *b, "1");
  savedLoginIn(session, *b, "2");
  const auto trashed = savedLoginIn(session, *b, "3");
  trashed->setTrashed(true);
  ASSERT_EQ(errorOf(session.store->save(trashed)), "");
  savedLogin(session, "4");

  const QNFolderReport report = foldersIn(session);

  EXPECT_EQ(treeText(report.top), "a 0 [b 2 [c 0]] d 0");
  ASSERT_EQ(report.folders.size(), 4u);
  EXPECT_EQ(report.folders[1]->parentFolder(), report.folders[0]);
  EXPECT_EQ(report.folders[2]->indentationLevel(), 2u);
  EXPECT_EQ(report.folders[0]->parentFolder(), nullptr);
}

TEST_F(QNStoreFolders, AtTheTopStandInTheOrderOfTheirTitles) {
  for (const char* title : {"gamma", "Beta", "alpha"}) savedFolder(session, title);

  std::vector<std::string> titles;
  for (const auto& each : foldersIn(session).top) titles.push_back(each->title().value());

  EXPECT_THAT(titles, ElementsAre("alpha", "Beta", "gamma"));
}

TEST_F(QNStoreFolders, AreFoundByUUIDWithWhatHangsUnderThem) {
  const auto a = savedFolder(session, "a");
  const auto b = savedFolder(session, "b", a);
  savedFolder(session, "c", b);
  savedLoginIn(session, *b, "1");

  const auto read = session.store->folder(session.vault, *b->uuid()).value();

  EXPECT_EQ(treeText({read}), "b 1 [c 0]");
  EXPECT_EQ(read->parentFolder(), nullptr);
  EXPECT_EQ(errorOf(session.store->folder(session.vault, "unknown")),
            codeText(QNStoreErrorCode::notFound));
}

TEST_F(QNStoreFolders, AreThoseOfOneVault) {
  savedFolder(session, "mine");
  Session other = {nullptr, QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt)};
  ASSERT_TRUE(session.store->saveVault(*other.vault).ok());
  ASSERT_EQ(errorOf(session.store->saveFolder(makeFolder(other.vault, "theirs"))), "");

  EXPECT_EQ(treeIn(session), "mine 0");
  EXPECT_EQ(treeText(session.store->folders(other.vault).value().top), "theirs 0");
}

TEST_F(QNStoreFolders, AreNotReadFromALockedVault) {
  session.vault->lock();

  EXPECT_EQ(errorOf(session.store->folders(session.vault)), codeText(QNStoreErrorCode::locked));
  EXPECT_EQ(errorOf(session.store->folder(session.vault, "a")), codeText(QNStoreErrorCode::locked));
}

TEST_F(QNStoreFolders, StandInTheFileForNobodyToRead) {
  const auto made = makeFolder(session.vault, "UnmistakableTitle");
  made->setIconData(toBytes(bytesOf("UnmistakablePicture")));
  made->setSmartFolder(true);
  const auto predicate = QNPredicate::predicateWithFormat(R"(title == "UnmistakableQuestion")");
  made->setSmartFolderPredicate(predicate.value());
  ASSERT_EQ(errorOf(session.store->saveFolder(made)), "");
  session = Session();

  EXPECT_EQ(bytesOfFile(file).find("Unmistakable"), std::string::npos);
}

// Seals

class QNStoreSealedFolders : public QNStoreFolders {
 protected:
  QNStoreSealedFolders() {
    const auto first = makeFolder(session.vault, "first");
    first->setIconData(Bytes{1, 2, 3});
    EXPECT_EQ(errorOf(session.store->saveFolder(first)), "");
    firstUuid = *first->uuid();
    const auto second = makeFolder(session.vault, "second", first);
    second->setIconData(Bytes{4});
    EXPECT_EQ(errorOf(session.store->saveFolder(second)), "");
    secondUuid = *second->uuid();
    session = Session();
    original = bytesOfFile(file);
  }
  void change(const std::string& sql) const {
    const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
    database->run(sql);
    const auto error = database->takeError();
    EXPECT_FALSE(error) << error->message;
  }
  QNFolderReport read() {
    session = openSession(file);
    return foldersIn(session);
  }
  void restore() {
    session = Session();
    writeFile(file, original);
  }

  const MRCapturingSink silence;
  std::string firstUuid, secondUuid, original;
};

TEST_F(QNStoreSealedFolders, NoticeAChangeOfEachColumn) {
  for (const char* change :
       {"status = 1", "created_at = created_at + 1", "updated_at = 1", "tx_timestamp = 1",
        "smart = 1", "display_order = 1", "parent_uuid = ''", "parent_uuid = 'x'", "icon = NULL",
        "icon = x''", "icon = overview", "overview = icon", "overview = x''",
        "overview = substr(overview, 1, length(overview) - 1)", "seal = x''",
        "seal = randomblob(16)", "seal = substr(seal, 1, 15)", "status = 2"}) {
    SCOPED_TRACE(change);
    this->change(fmt::format("UPDATE folders SET {} WHERE uuid = '{}'", change, firstUuid));

    const QNFolderReport report = read();

    EXPECT_THAT(report.damaged, ElementsAre(firstUuid));
    EXPECT_THAT(report.misplaced, ElementsAre(secondUuid));  // its parent isn't shown
    EXPECT_EQ(errorOf(session.store->folder(session.vault, firstUuid)),
              codeText(QNStoreErrorCode::damaged));
    EXPECT_THAT(check().problems,
                ElementsAre("folder " + firstUuid + ": it was altered or doesn't open",
                            "folder " + secondUuid +
                                ": its parent isn't there, lies in it, or is too deep"));
    restore();
  }
}

TEST_F(QNStoreSealedFolders, NoticeAnotherNameOrPlace) {
  change(fmt::format("UPDATE folders SET uuid = 'another' WHERE uuid = '{}'", secondUuid));
  EXPECT_THAT(read().damaged, ElementsAre("another"));
  restore();
  change(fmt::format("UPDATE folders SET oid = 77 WHERE uuid = '{}'", secondUuid));
  EXPECT_THAT(read().damaged, ElementsAre(secondUuid));
}

TEST_F(QNStoreSealedFolders, NoticeAnExchangeOfOverviewsOrIcons) {
  for (const char* column : {"overview", "icon"}) {
    change(
        fmt::format("CREATE TABLE two AS SELECT oid, {0} FROM folders; UPDATE folders SET {0} = "
                    "(SELECT {0} FROM two WHERE two.oid <> folders.oid); DROP TABLE two",
                    column));

    EXPECT_THAT(read().damaged, UnorderedElementsAre(firstUuid, secondUuid));
    restore();
  }
}

TEST_F(QNStoreSealedFolders, NoticeARowThatWasTakenAway) {
  change(fmt::format("DELETE FROM folders WHERE uuid = '{}'", firstUuid));

  const QNFolderReport report = read();

  EXPECT_TRUE(report.ledgerBroken);
  EXPECT_THAT(report.misplaced, ElementsAre(secondUuid));
  EXPECT_THAT(
      check().problems,
      ElementsAre("folder " + secondUuid + ": its parent isn't there, lies in it, or is too deep",
                  "folders are missing, were added, or are older than the ledger says"));
}

TEST_F(QNStoreSealedFolders, NoticeARowOfAnOlderState) {
  writeFile(folder / "older", original);
  session = openSession(file);
  const auto first = session.store->folder(session.vault, firstUuid).value();
  first->setTitle("renamed");
  ASSERT_EQ(errorOf(session.store->saveFolder(first)), "");
  session = Session();
  change(
      fmt::format("ATTACH '{}' AS older; DELETE FROM folders WHERE uuid = '{}';"
                  "INSERT INTO folders SELECT * FROM older.folders WHERE uuid = '{}'",
                  (folder / "older").string(), firstUuid, firstUuid));

  const QNFolderReport report = read();

  EXPECT_THAT(report.damaged, IsEmpty());  // the row is genuine, but not the last one
  EXPECT_TRUE(report.ledgerBroken);
  EXPECT_FALSE(check().clean());
}

TEST_F(QNStoreSealedFolders, NoticeADeletedOneThatWasBroughtBack) {
  writeFile(folder / "older", original);
  session = openSession(file);
  const auto second = session.store->folder(session.vault, secondUuid).value();
  ASSERT_EQ(errorOf(session.store->deleteFolder(second)), "");
  session = Session();
  change(
      fmt::format("ATTACH '{}' AS older; DELETE FROM folders WHERE uuid = '{}';"
                  "INSERT INTO folders SELECT * FROM older.folders WHERE uuid = '{}'",
                  (folder / "older").string(), secondUuid, secondUuid));

  EXPECT_TRUE(read().ledgerBroken);
}

TEST_F(QNStoreSealedFolders, NoticeACopyAndOneOfAnotherVault) {
  change(
      "CREATE TABLE copy AS SELECT * FROM folders WHERE oid = 1; UPDATE copy SET oid = 9, uuid = "
      "'copy'; INSERT INTO folders SELECT * FROM copy; DROP TABLE copy");
  EXPECT_THAT(read().damaged, ElementsAre("copy"));
  EXPECT_TRUE(read().ledgerBroken);
  restore();

  session = openSession(file);
  const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
  ASSERT_TRUE(session.store->saveVault(*other).ok());
  const auto theirs = makeFolder(other, "theirs");
  ASSERT_EQ(errorOf(session.store->saveFolder(theirs)), "");
  session = Session();
  change(fmt::format("UPDATE folders SET vault_id = 1 WHERE uuid = '{}'", *theirs->uuid()));

  EXPECT_THAT(read().damaged, ElementsAre(*theirs->uuid()));
  EXPECT_TRUE(read().ledgerBroken);
}

TEST_F(QNStoreSealedFolders, KeepASaveFromCoveringAnAlteredRow) {
  session = openSession(file);
  const auto first = session.store->folder(session.vault, firstUuid).value();
  change("UPDATE folders SET display_order = 8 WHERE oid = 1");
  first->setTitle("edited");

  EXPECT_EQ(errorOf(session.store->saveFolder(first)), codeText(QNStoreErrorCode::damaged));
  EXPECT_EQ(errorOf(session.store->deleteFolder(first)), codeText(QNStoreErrorCode::damaged));
  EXPECT_TRUE(first->dirtyRow());
}

// Every bit of a row's blobs and every length of them: nothing is shown that wasn't saved.
TEST_F(QNStoreSealedFolders, ShowNothingOfARowWithAFlippedBitOrACutEnd) {
  session = openSession(file);
  const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite)).value();
  struct Column {
    const char *select, *update;
  };
  for (const auto& [select, update] : {Column{"SELECT overview FROM folders WHERE oid = 1",
                                              "UPDATE folders SET overview = ?1 WHERE oid = 1"},
                                       Column{"SELECT icon FROM folders WHERE oid = 1",
                                              "UPDATE folders SET icon = ?1 WHERE oid = 1"},
                                       Column{"SELECT seal FROM folders WHERE oid = 1",
                                              "UPDATE folders SET seal = ?1 WHERE oid = 1"}}) {
    SCOPED_TRACE(update);
    Bytes blob;
    {
      QNQuery query = database->query(select);
      ASSERT_TRUE(query.next());
      blob = toBytes(query.bytes(0));
    }
    const auto isNoticed = [&, statement = update](const Bytes& altered) {
      database->change(statement, ByteView(altered));
      const QNFolderReport report = foldersIn(session);
      return report.damaged == std::vector<std::string>{firstUuid};
    };
    for (std::size_t bit = 0; bit < 8 * blob.size(); ++bit) {
      Bytes altered = blob;
      altered[bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
      ASSERT_TRUE(isNoticed(altered)) << "bit " << bit;
    }
    for (std::size_t size = 0; size < blob.size(); ++size) {
      ASSERT_TRUE(isNoticed(Bytes(blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(size))))
          << "size " << size;
    }
    database->change(update, ByteView(blob));
    EXPECT_THAT(foldersIn(session).damaged, IsEmpty());
  }
}

// Quarantine

TEST_F(QNStoreFolders, OfAnOlderVersionStaySmartIfTheirPredicateCanBeBroughtForward) {
  savedOldSmartFolder("old", R"(tags == "a" AND trashed == TRUE)");

  const QNFolderReport report = foldersIn(session);

  EXPECT_THAT(report.quarantined, IsEmpty());
  ASSERT_TRUE(report.folders.at(0)->smartFolder());
  EXPECT_NE(report.folders.at(0)->smartFolderPredicate(), nullptr);
}

TEST_F(QNStoreFolders, WhosePredicateWouldEndTheProcessAreHandedOutAsOrdinaryOnes) {
  const auto fatal = savedOldSmartFolder("fatal", "NOT trashed == TRUE");

  const QNFolderReport report = foldersIn(session);

  EXPECT_THAT(report.quarantined, ElementsAre(*fatal->uuid()));
  ASSERT_EQ(report.folders.size(), 1u);
  EXPECT_EQ(report.folders[0]->title(), "fatal");
  EXPECT_FALSE(report.folders[0]->smartFolder());
  EXPECT_EQ(report.folders[0]->smartFolderPredicate(), nullptr);
  EXPECT_THAT(check().problems, IsEmpty());
  EXPECT_THAT(check().remarks,
              ElementsAre("folder " + *fatal->uuid() +
                          ": its predicate is an older version's and can't be brought forward"));
}

TEST_F(QNStoreFolders, InQuarantineStaySmartInTheFileThroughASave) {
  savedOldSmartFolder("fatal", "NOT trashed == TRUE");
  const auto read = foldersIn(session).folders.at(0);
  read->setTitle("renamed");
  ASSERT_EQ(errorOf(session.store->saveFolder(read)), "");
  EXPECT_FALSE(read->smartFolder());

  const QNFolderReport report = foldersIn(session);

  EXPECT_THAT(report.quarantined, ElementsAre(*read->uuid()));
  EXPECT_EQ(report.folders.at(0)->title(), "renamed");
  const auto database = std::move(QNDatabase::open(file, QNDatabase::Mode::readOnly)).value();
  EXPECT_EQ(database->number("SELECT smart FROM folders"), 1u);
}

TEST_F(QNStoreFolders, LeaveQuarantineWithANewPredicate) {
  savedOldSmartFolder("fatal", "NOT trashed == TRUE");
  const auto read = foldersIn(session).folders.at(0);
  read->setSmartFolder(true);
  read->setSmartFolderPredicate(QNPredicate::predicateWithFormat(R"(title == "a")").value());
  ASSERT_EQ(errorOf(session.store->saveFolder(read)), "");

  const QNFolderReport report = foldersIn(session);

  EXPECT_THAT(report.quarantined, IsEmpty());
  EXPECT_TRUE(report.folders.at(0)->smartFolder());
}

TEST_F(QNStoreFolders, ThatWereSmartBecomeOrdinaryOnesIfTheirPredicateIsNotInQuarantine) {
  const auto smart = savedOldSmartFolder("old", R"(title == "a")");
  const auto read = session.store->folder(session.vault, *smart->uuid()).value();
  read->setSmartFolder(false);
  ASSERT_EQ(errorOf(session.store->saveFolder(read)), "");

  EXPECT_FALSE(foldersIn(session).folders.at(0)->smartFolder());
}

// Check

TEST_F(QNStoreFolders, ThatAreSoundAreCountedByACheckAndNothingIsRemarked) {
  const auto a = savedFolder(session, "a");
  savedFolder(session, "b", a);
  savedLoginIn(session, *a, "1");

  const QNCheckReport report = check();

  EXPECT_EQ(report.foldersChecked, 2u);
  EXPECT_THAT(report.problems, IsEmpty());
  EXPECT_THAT(report.remarks, IsEmpty());
}

TEST_F(QNStoreFolders, ThatAreNotThereAreRemarkedForTheirItems) {
  const auto nowhere = makeFolder(session.vault, "never saved");
  const auto item = savedLoginIn(session, *nowhere, "1");

  const QNCheckReport report = check();

  EXPECT_THAT(report.problems, IsEmpty());
  EXPECT_THAT(report.remarks, ElementsAre("item " + *item->uuid() + ": its folder isn't there"));
}

}  // namespace
}  // namespace quillon
