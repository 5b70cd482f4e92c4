// Somebody with the file and without the password changes rows behind our back. Every such change
// must show: in a list or in an item that is read, and always in a check.

#include <fmt/format.h>
#include <sqlite3.h>

#include "quillon/platform/log/MRLogger.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

class QNStoreSeals : public ::testing::Test {
 protected:
  QNStoreSeals() {
    Session session = makeSession(file);
    auto first = makeLogin(session.vault, "first", "https://first.example", "pass 1");
    first->addURLString("https://second.example");
    EXPECT_TRUE(session.store->save(first).ok());
    firstUuid = *first->uuid();
    secondUuid = *savedLogin(session, "second", "https://other.example", "pass 2")->uuid();
    session = Session();
    original = bytesOfFile(file);
  }

  void runSQL(const std::string& sql) const {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);
  }
  void restore() const { writeFile(file, original); }

  /// What a list says: uuids of damaged rows and whether the ledger is broken.
  [[nodiscard]] QNListReport listReport() const {
    Session session = openSession(file);
    auto report = session.store->list(session.vault, QNStore::Which::all, [](const auto&) {});
    EXPECT_TRUE(report.ok()) << report.error().message;
    return report.ok() ? report.value() : QNListReport();
  }
  [[nodiscard]] std::string errorOfItem(std::string_view uuid) const {
    Session session = openSession(file);
    return errorOf(session.store->item(session.vault, uuid));
  }
  [[nodiscard]] std::string errorOfUnlocking(std::string_view password = DEMO_PASSWORD) const {
    const auto store = std::move(QNStore::open(file)).value();
    const auto vault = std::move(store->vaultNamed(kVaultName)).value();
    const auto unlocked = store->unlock(*vault, password);
    EXPECT_EQ(vault->isUnlocked(), unlocked.ok() && unlocked.value());
    if (!unlocked.ok()) return unlocked.error().domainCodeString();
    return unlocked.value() ? "" : "wrong password";
  }
  [[nodiscard]] bool checkIsClean() const {
    Session session = openSession(file);
    return problemsIn(session).empty();
  }

  const MRCapturingSink silence;
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a.quillon";
  const std::string damaged = codeText(QNStoreErrorCode::damaged);
  std::string firstUuid, secondUuid, original;
};

TEST_F(QNStoreSeals, FitWhatWasSaved) {
  EXPECT_TRUE(listReport().damaged.empty());
  EXPECT_FALSE(listReport().ledgerBroken);
  EXPECT_EQ(errorOfItem(firstUuid), "");
  EXPECT_TRUE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeAChangeOfEachColumnOfAnItem) {
  for (const char* change : {"status = 1 - status",
                             "fave_index = 5",
                             "created_at = created_at + 1",
                             "updated_at = updated_at + 1",
                             "tx_timestamp = tx_timestamp + 1",
                             "times_used = 9",
                             "last_used = 9",
                             "inbox = 1",
                             "attachments = 1",
                             "category_uuid = '005'",
                             "scope = 'Never'",
                             "scope = ''",
                             "folder_uuid = 'f'",
                             "body_hash = randomblob(32)",
                             "body_hash = x''",
                             "seal = randomblob(16)",
                             "seal = x''",
                             "seal = substr(seal, 1, 15)",
                             "overview = CAST(overview || x'00' AS BLOB)",
                             "overview = substr(overview, 1, length(overview) - 1)",
                             "overview = x''"}) {
    SCOPED_TRACE(change);
    runSQL(fmt::format("UPDATE items SET {} WHERE uuid = '{}'", change, firstUuid));

    EXPECT_EQ(listReport().damaged, std::vector<std::string>{firstUuid});
    EXPECT_EQ(errorOfItem(firstUuid), damaged);
    EXPECT_EQ(errorOfItem(secondUuid), "");
    EXPECT_FALSE(checkIsClean());
    restore();
  }
}

TEST_F(QNStoreSeals, NoticeAChangeOfAnItemsName) {
  runSQL(fmt::format("UPDATE items SET uuid = 'another' WHERE uuid = '{}'", firstUuid));

  EXPECT_EQ(listReport().damaged, std::vector<std::string>{"another"});
  EXPECT_EQ(errorOfItem("another"), damaged);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeAnExchangeOfTwoOverviews) {
  runSQL(
      "CREATE TEMP TABLE two AS SELECT oid, overview FROM items;"
      "UPDATE items SET overview = (SELECT overview FROM two WHERE two.oid <> items.oid)");

  EXPECT_EQ(listReport().damaged, (std::vector<std::string>{firstUuid, secondUuid}));
  EXPECT_EQ(errorOfItem(firstUuid), damaged);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeAnExchangeOfTwoRowsBodies) {
  runSQL("UPDATE details SET item_id = -item_id; UPDATE details SET item_id = 3 + item_id");

  EXPECT_TRUE(listReport().damaged.empty());  // a list doesn't read them
  EXPECT_EQ(errorOfItem(firstUuid), damaged);
  EXPECT_EQ(errorOfItem(secondUuid), damaged);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeARowThatWasMovedToAnotherPlace) {
  runSQL(
      fmt::format("UPDATE items SET oid = 77 WHERE uuid = '{}';"
                  "UPDATE details SET item_id = 77 WHERE item_id = 1;"
                  "UPDATE urls SET item_id = 77 WHERE item_id = 1",
                  firstUuid));

  EXPECT_EQ(listReport().damaged, std::vector<std::string>{firstUuid});
  EXPECT_EQ(errorOfItem(firstUuid), damaged);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeARowOfAnOlderState) {
  writeFile(folder / "older", original);
  {
    Session session = openSession(file);
    const auto item = std::move(session.store->item(session.vault, firstUuid)).value();
    item->setPassword("pass 3");
    ASSERT_TRUE(session.store->save(item).ok());
  }
  runSQL(
      fmt::format("ATTACH '{}' AS older;"
                  "DELETE FROM items WHERE oid = 1; DELETE FROM details WHERE item_id = 1;"
                  "DELETE FROM urls WHERE item_id = 1;"
                  "INSERT INTO items SELECT * FROM older.items WHERE oid = 1;"
                  "INSERT INTO details SELECT * FROM older.details WHERE item_id = 1;"
                  "INSERT INTO urls SELECT * FROM older.urls WHERE item_id = 1",
                  (folder / "older").string()));

  const QNListReport report = listReport();

  EXPECT_TRUE(report.damaged.empty());  // the row is genuine, but not the last one
  EXPECT_TRUE(report.ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeARowThatWasTakenAway) {
  runSQL(
      "DELETE FROM items WHERE oid = 1; DELETE FROM details WHERE item_id = 1;"
      "DELETE FROM urls WHERE item_id = 1");

  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeADeletedRowThatWasBroughtBack) {
  writeFile(folder / "older", original);
  {
    Session session = openSession(file);
    ASSERT_TRUE(
        session.store->deleteItem(std::move(session.store->item(session.vault, firstUuid)).value())
            .ok());
  }
  runSQL(
      fmt::format("ATTACH '{}' AS older;"
                  "DELETE FROM items WHERE oid = 1; DELETE FROM details WHERE item_id = 1;"
                  "INSERT INTO items SELECT * FROM older.items WHERE oid = 1;"
                  "INSERT INTO details SELECT * FROM older.details WHERE item_id = 1;"
                  "INSERT INTO urls SELECT * FROM older.urls WHERE item_id = 1",
                  (folder / "older").string()));

  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeAChangeOfEachColumnOfADeletedItem) {
  {
    Session session = openSession(file);
    ASSERT_TRUE(
        session.store->deleteItem(std::move(session.store->item(session.vault, firstUuid)).value())
            .ok());
  }
  const std::string deleted = bytesOfFile(file);
  for (const char* change :
       {"items SET status = 0", "items SET created_at = 1", "items SET updated_at = 1",
        "items SET tx_timestamp = 1", "items SET category_uuid = '001'", "items SET scope = ''",
        "items SET body_hash = x''", "items SET overview = x'00'", "items SET times_used = 1"}) {
    SCOPED_TRACE(change);
    runSQL(fmt::format("UPDATE {} WHERE uuid = '{}'", change, firstUuid));

    EXPECT_EQ(listReport().damaged, std::vector<std::string>{firstUuid});
    EXPECT_FALSE(checkIsClean());
    writeFile(file, deleted);
  }
}

TEST_F(QNStoreSeals, ACheckNoticesWhatWasAddedToADeletedItem) {
  {
    Session session = openSession(file);
    ASSERT_TRUE(
        session.store->deleteItem(std::move(session.store->item(session.vault, firstUuid)).value())
            .ok());
    EXPECT_EQ(problemsIn(session), std::vector<std::string>());
  }
  const std::string deleted = bytesOfFile(file);
  for (const char* change : {"UPDATE details SET wrapped_key = randomblob(112) WHERE item_id = 1",
                             "UPDATE details SET details = x'00' WHERE item_id = 1",
                             "DELETE FROM details WHERE item_id = 1",
                             "INSERT INTO urls VALUES (99, 1, 1, 1, NULL, NULL, x'00')"}) {
    SCOPED_TRACE(change);
    runSQL(change);

    Session session = openSession(file);
    EXPECT_EQ(problemsIn(session),
              std::vector<std::string>{"deleted item " + firstUuid + ": what is left was altered"});
    session = Session();
    writeFile(file, deleted);
  }
}

TEST_F(QNStoreSeals, NoticeATombstoneThatWasTakenAway) {
  {
    Session session = openSession(file);
    ASSERT_TRUE(
        session.store->deleteItem(std::move(session.store->item(session.vault, firstUuid)).value())
            .ok());
  }
  runSQL("DELETE FROM details WHERE item_id = 1; DELETE FROM items WHERE oid = 1");

  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, AnItemIsNotHiddenByTheCategoryOfDeletedOnes) {
  runSQL(fmt::format("UPDATE items SET category_uuid = '099' WHERE uuid = '{}'", firstUuid));

  EXPECT_EQ(errorOfItem(firstUuid), damaged);
  EXPECT_EQ(listReport().damaged, std::vector<std::string>{firstUuid});
}

TEST_F(QNStoreSeals, NoticeACopyOfARow) {
  runSQL(
      "CREATE TEMP TABLE copy AS SELECT * FROM items WHERE oid = 1;"
      "UPDATE copy SET oid = 9, uuid = 'copy';"
      "INSERT INTO items SELECT * FROM copy");

  EXPECT_EQ(listReport().damaged, std::vector<std::string>{"copy"});
  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

// The same uuid twice: the file says that it can't be, but somebody else writes the file.
TEST_F(QNStoreSeals, NoticeARowThatStandsThereTwice) {
  runSQL(
      "CREATE TABLE twice AS SELECT * FROM items;"
      "DROP TABLE items; ALTER TABLE twice RENAME TO items;"
      "INSERT INTO items SELECT * FROM items WHERE oid = 1");

  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeARowOfAnotherVault) {
  std::string otherUuid;
  {
    Session session = openSession(file);
    const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
    ASSERT_TRUE(session.store->saveVault(*other).ok());
    const auto item = makeLogin(other, "theirs");
    ASSERT_TRUE(session.store->save(item).ok());
    otherUuid = *item->uuid();
  }
  runSQL(fmt::format("UPDATE items SET vault_id = 1 WHERE uuid = '{}'", otherUuid));

  EXPECT_EQ(listReport().damaged, std::vector<std::string>{otherUuid});
  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_EQ(errorOfItem(otherUuid), damaged);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeAChangeOfDetailsOrAddresses) {
  for (const char* change :
       {"UPDATE details SET wrapped_key = randomblob(112) WHERE item_id = 1",
        "UPDATE details SET wrapped_key = x'' WHERE item_id = 1",
        "UPDATE details SET details = CAST(details || x'00' AS BLOB) WHERE item_id = 1",
        "UPDATE details SET details = x'' WHERE item_id = 1",
        "UPDATE details SET details = (SELECT details FROM details WHERE item_id = 2) "
        "WHERE item_id = 1",
        "DELETE FROM details WHERE item_id = 1",
        "UPDATE urls SET display_order = 150 WHERE oid = 1",
        "UPDATE urls SET display_order = 300 - display_order WHERE item_id = 1",
        "UPDATE urls SET hash_version = 2 WHERE oid = 1",
        "UPDATE urls SET naked_hash = NULL WHERE oid = 1",
        "UPDATE urls SET naked_hash = derived_hash || 'x' WHERE oid = 1",
        "UPDATE urls SET derived_hash = '' WHERE oid = 1",
        "UPDATE urls SET derived_hash = (SELECT derived_hash FROM urls WHERE item_id = 2) "
        "WHERE oid = 1",
        "UPDATE urls SET overview = CAST(overview || x'00' AS BLOB) WHERE oid = 1",
        "UPDATE urls SET overview = (SELECT overview FROM urls WHERE oid = 2) WHERE oid = 1",
        "UPDATE urls SET item_id = 2 WHERE oid = 1", "DELETE FROM urls WHERE oid = 2",
        "INSERT INTO urls SELECT NULL, item_id, display_order + 1, hash_version, naked_hash, "
        "derived_hash, overview FROM urls WHERE oid = 1"}) {
    SCOPED_TRACE(change);
    runSQL(change);

    EXPECT_TRUE(listReport().damaged.empty());  // a list doesn't read them
    EXPECT_EQ(errorOfItem(firstUuid), damaged);
    EXPECT_FALSE(checkIsClean());
    restore();
  }
}

// A hash that was planted would offer an item's password to the wrong site.
TEST_F(QNStoreSeals, NoticeAPlantedHashWhenItIsFound) {
  runSQL(
      "UPDATE urls SET derived_hash = (SELECT derived_hash FROM urls WHERE item_id = 2), "
      "naked_hash = (SELECT naked_hash FROM urls WHERE item_id = 2) WHERE oid = 1");
  Session session = openSession(file);

  const auto set = session.store->itemSetForURL(session.vault, "https://other.example");

  EXPECT_EQ(errorOf(set), damaged);
}

TEST_F(QNStoreSeals, NameAnAlteredRowOnceAndFindTheOthersOfThePage) {
  runSQL(
      "UPDATE urls SET derived_hash = (SELECT derived_hash FROM urls WHERE item_id = 2), "
      "naked_hash = (SELECT naked_hash FROM urls WHERE item_id = 2) WHERE oid = 1");
  Session session = openSession(file);
  std::vector<std::string> left;

  const auto set = session.store->itemSetForURL(session.vault, "https://other.example", &left);

  ASSERT_TRUE(set.ok());
  EXPECT_EQ(set.value()->matchingItems().size(), 1u);
  EXPECT_EQ(left.size(), 1u);
}

TEST_F(QNStoreSeals, LoadNothingIntoAShellFromAlteredRows) {
  Session session = openSession(file);
  std::vector<std::shared_ptr<QNItem>> shells;
  ASSERT_TRUE(session.store
                  ->list(session.vault, QNStore::Which::all,
                         [&shells](const auto& item) { shells.push_back(item); })
                  .ok());
  runSQL(
      "UPDATE details SET details = x'00' WHERE item_id = 1;"
      "UPDATE items SET fave_index = 8 WHERE oid = 2");

  for (const auto& shell : shells) {
    EXPECT_EQ(errorOf(session.store->loadDetails(shell)), damaged);
    EXPECT_FALSE(shell->loadingDetails());
    EXPECT_FALSE(shell->detailsLoaded());
  }
}

TEST_F(QNStoreSeals, KeepASaveFromCoveringAnAlteredRow) {
  Session session = openSession(file);
  const auto item = std::move(session.store->item(session.vault, firstUuid)).value();
  runSQL("UPDATE items SET fave_index = 8 WHERE oid = 1");
  item->setTitle("edited");

  EXPECT_EQ(errorOf(session.store->save(item)), damaged);
  EXPECT_EQ(errorOf(session.store->deleteItem(item)), damaged);
  EXPECT_TRUE(item->dirtyRow());
}

TEST_F(QNStoreSeals, NoticeAChangeOfEachColumnOfAVault) {
  for (const char* change :
       {"uuid = 'another'", "revision = 2", "status = 1", "created_at = 1", "updated_at = 1",
        "hint = 'write to me@evil.example'", "hint = NULL", "last_updated_by = 'x'", "icon = x'00'",
        "color = '{}'", "attributes = x'00'", "seal = randomblob(16)", "seal = x''", "oid = 5"}) {
    SCOPED_TRACE(change);
    runSQL(
        fmt::format("UPDATE vaults SET {0}; UPDATE ledgers SET vault_id = (SELECT oid FROM "
                    "vaults); UPDATE items SET vault_id = (SELECT oid FROM vaults)",
                    change));

    EXPECT_EQ(errorOfUnlocking(), damaged);
    restore();
  }
}

TEST_F(QNStoreSeals, AVaultWithOtherKeysOrCountsDoesNotOpen) {
  for (const char* change : {"master_key = overview_key", "overview_key = master_key",
                             "salt = randomblob(16)", "salt = x''", "iterations = 101",
                             "iterations = 0", "iterations = 9000000000000", "master_key = x''"}) {
    SCOPED_TRACE(change);
    runSQL(fmt::format("UPDATE vaults SET {}", change));

    const std::string error = errorOfUnlocking();
    EXPECT_TRUE(error == "wrong password" || error == damaged) << error;
    restore();
  }
}

TEST_F(QNStoreSeals, NoticeAVaultRowFromBeforeThePasswordChange) {
  writeFile(folder / "older", original);
  {
    Session session = openSession(file);
    ASSERT_TRUE(session.vault->changePasswordTo("a better one"));
    ASSERT_TRUE(session.store->saveVault(*session.vault).ok());
  }
  EXPECT_EQ(errorOfUnlocking("a better one"), "");

  runSQL(
      fmt::format("ATTACH '{}' AS older; DELETE FROM vaults;"
                  "INSERT INTO vaults SELECT * FROM older.vaults",
                  (folder / "older").string()));

  EXPECT_EQ(errorOfUnlocking(DEMO_PASSWORD), damaged);
}

TEST_F(QNStoreSeals, NoticeAnAlteredOrMissingLedger) {
  for (const char* change :
       {"DELETE FROM ledgers", "UPDATE ledgers SET content = x''",
        "UPDATE ledgers SET content = CAST(content || x'00' AS BLOB)",
        "UPDATE ledgers SET content = (SELECT overview FROM items WHERE oid = 1)"}) {
    SCOPED_TRACE(change);
    runSQL(change);

    EXPECT_EQ(errorOfUnlocking(), damaged);
    restore();
  }
}

TEST_F(QNStoreSeals, NoticeALedgerOfAnOlderState) {
  writeFile(folder / "older", original);
  {
    Session session = openSession(file);
    savedLogin(session, "third");
  }
  runSQL(
      fmt::format("ATTACH '{}' AS older; DELETE FROM ledgers;"
                  "INSERT INTO ledgers SELECT * FROM older.ledgers",
                  (folder / "older").string()));

  EXPECT_TRUE(listReport().ledgerBroken);
  EXPECT_FALSE(checkIsClean());
}

TEST_F(QNStoreSeals, NoticeTheLedgerOfAnotherVault) {
  {
    Session session = openSession(file);
    const auto other = QNProfile::profileWithName("other", DEMO_PASSWORD, std::nullopt);
    ASSERT_TRUE(session.store->saveVault(*other).ok());
  }
  runSQL("UPDATE ledgers SET content = (SELECT content FROM ledgers WHERE vault_id = 2)");

  EXPECT_EQ(errorOfUnlocking(), damaged);
}

TEST_F(QNStoreSeals, ACheckSeesWhatSQLiteCanSee) {
  runSQL(
      "PRAGMA writable_schema = ON;"
      "DELETE FROM sqlite_schema WHERE name = 'urls_of_item';"
      "PRAGMA writable_schema = OFF; VACUUM;"
      "INSERT INTO urls SELECT NULL, 99, display_order, hash_version, naked_hash, "
      "derived_hash, overview FROM urls WHERE oid = 1");

  EXPECT_FALSE(checkIsClean());  // an address of an item that isn't there
}

// Flips bytes all over the file: nothing may crash, and nothing may read as something else.
TEST_F(QNStoreSeals, AFileWithFlippedBytesNeverReadsAsAnother) {
  for (std::size_t place = 0; place < original.size(); place += 211) {
    SCOPED_TRACE(place);
    std::string bytes = original;
    bytes[place] = static_cast<char>(bytes[place] ^ 0x41);
    writeFile(file, bytes);
    const auto store = QNStore::open(file);
    if (!store.ok()) continue;
    const auto vault = store.value()->vaultNamed(kVaultName);
    if (!vault.ok()) continue;
    const auto unlocked = store.value()->unlock(*vault.value(), DEMO_PASSWORD);
    if (!unlocked.ok() || !unlocked.value()) continue;
    for (const auto& [uuid, password] : {std::pair(firstUuid, "pass 1"), {secondUuid, "pass 2"}}) {
      const auto item = store.value()->item(vault.value(), uuid);
      if (!item.ok()) continue;
      ASSERT_TRUE(item.value()->password());
      EXPECT_TRUE(item.value()->password()->equals(password));
    }
  }
}

}  // namespace
}  // namespace quillon
