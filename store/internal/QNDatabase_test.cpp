#include "store/internal/QNDatabase.h"

#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

using std::chrono_literals::operator""ms;

std::unique_ptr<QNDatabase> openedAt(const std::filesystem::path& file) {
  return std::move(QNDatabase::open(file, QNDatabase::Mode::readWrite, 0ms)).value();
}

class QNDatabaseOfOneTable : public ::testing::Test {
 protected:
  QNDatabaseOfOneTable() {
    writeFile(file, "");
    database = openedAt(file);
    database->run("PRAGMA journal_mode = WAL");
    database->run("CREATE TABLE t (a INTEGER PRIMARY KEY, b ANY, c TEXT UNIQUE) STRICT");
    EXPECT_FALSE(database->failed());
  }
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "a";
  std::unique_ptr<QNDatabase> database;
};

TEST_F(QNDatabaseOfOneTable, GivesBackWhatWasBound) {
  const std::optional<std::string> absent;
  const Bytes bytes = {0, 1, 0xff};

  database->change("INSERT INTO t VALUES (1, ?1, 'text')", std::uint64_t{0xffff'ffff'ffff'ffff});
  database->change("INSERT INTO t VALUES (2, ?1, ?2)", ByteView(bytes), absent);
  database->change("INSERT INTO t VALUES (3, ?1, ?2)", ByteView(), std::string_view());
  database->change("INSERT INTO t VALUES (4, ?1, ?2)", std::string_view("a\0b", 3), absent);

  QNQuery query = database->query("SELECT b, c FROM t ORDER BY a");
  ASSERT_TRUE(query.next());
  EXPECT_EQ(query.number(0), 0xffff'ffff'ffff'ffffu);
  EXPECT_EQ(query.text(1), "text");
  ASSERT_TRUE(query.next());
  EXPECT_EQ(toBytes(query.bytes(0)), bytes);
  EXPECT_FALSE(query.optionalText(1));
  ASSERT_TRUE(query.next());
  EXPECT_TRUE(query.optionalBytes(0));  // empty, but there
  EXPECT_TRUE(query.optionalBytes(0)->empty());
  EXPECT_EQ(query.optionalText(1), "");
  ASSERT_TRUE(query.next());
  EXPECT_EQ(query.text(0), std::string_view("a\0b", 3));
  EXPECT_FALSE(query.next());
  EXPECT_FALSE(database->failed());
}

TEST_F(QNDatabaseOfOneTable, SaysHowManyRowsAChangeTouched) {
  database->change("INSERT INTO t VALUES (1, 1, 'a'), (2, 1, 'b')");

  EXPECT_EQ(database->change("UPDATE t SET b = 2 WHERE b = ?1", std::uint64_t{1}), 2u);
  EXPECT_EQ(database->change("UPDATE t SET b = 3 WHERE b = ?1", std::uint64_t{1}), 0u);
}

TEST_F(QNDatabaseOfOneTable, KeepsTheFirstErrorAndDoesNothingMore) {
  {
    QNTransaction transaction(*database, QNTransaction::Kind::write);
    database->change("INSERT INTO t VALUES (1, 1, 'a')");
    database->change("INSERT INTO t VALUES (2, 1, 'a')");
    EXPECT_TRUE(database->failed());
    EXPECT_EQ(database->change("INSERT INTO t VALUES (3, 1, 'b')"), 0u);
    EXPECT_EQ(database->number("SELECT count(*) FROM t"), 0u);
    database->run("DROP TABLE t");
    EXPECT_EQ(errorOf(transaction.commit()), codeText(QNStoreErrorCode::exists));
  }

  EXPECT_FALSE(database->failed());
  EXPECT_EQ(database->number("SELECT count(*) FROM t"), 0u);
}

TEST_F(QNDatabaseOfOneTable, RollsBackATransactionThatIsLeft) {
  {
    QNTransaction transaction(*database, QNTransaction::Kind::write);
    database->change("INSERT INTO t VALUES (1, 1, 'a')");
  }

  EXPECT_FALSE(database->inTransaction());
  EXPECT_EQ(database->number("SELECT count(*) FROM t"), 0u);
}

TEST_F(QNDatabaseOfOneTable, AnInnerTransactionIsAPartOfTheOuterOne) {
  QNTransaction outer(*database, QNTransaction::Kind::write);
  {
    QNTransaction inner(*database, QNTransaction::Kind::write);
    database->change("INSERT INTO t VALUES (1, 1, 'a')");
    EXPECT_TRUE(inner.commit().ok());
  }
  EXPECT_TRUE(database->inTransaction());
  database->fail(QNError{"test", 1, "no"});

  EXPECT_EQ(errorOf(outer.commit()), "test 1");
  EXPECT_EQ(database->number("SELECT count(*) FROM t"), 0u);
}

TEST_F(QNDatabaseOfOneTable, RefusesTwoRunsOfOneQueryAtOnce) {
  database->change("INSERT INTO t VALUES (1, 1, 'a')");
  constexpr std::string_view sql = "SELECT a FROM t";
  {
    QNQuery first = database->query(sql);
    ASSERT_TRUE(first.next());

    QNQuery second = database->query(sql);

    EXPECT_FALSE(second.next());
  }
  EXPECT_TRUE(isStoreError(*database->takeError(), QNStoreErrorCode::busy));
  EXPECT_TRUE(database->query(sql).next());
}

TEST_F(QNDatabaseOfOneTable, SaysThatAnotherHoldsTheWriteLock) {
  const auto other = openedAt(file);
  QNTransaction theirs(*other, QNTransaction::Kind::write);

  QNTransaction mine(*database, QNTransaction::Kind::write);

  EXPECT_EQ(errorOf(mine.commit()), codeText(QNStoreErrorCode::busy));
  EXPECT_TRUE(theirs.commit().ok());
}

TEST_F(QNDatabaseOfOneTable, CallsAMissingTableDamaged) {
  EXPECT_FALSE(database->query("SELECT * FROM nothing").next());

  EXPECT_TRUE(isStoreError(*database->takeError(), QNStoreErrorCode::damaged));
}

TEST_F(QNDatabaseOfOneTable, ShowsNothingOfTheFileInAnError) {
  database->change("INSERT INTO t VALUES (1, 1, 'a')");
  database->change("INSERT INTO t VALUES ('zebrafinch', 1, 'b')");

  const auto error = database->takeError();

  ASSERT_TRUE(error);
  EXPECT_EQ(error->message.find("zebrafinch"), std::string::npos);
  EXPECT_TRUE(isStoreError(*error, QNStoreErrorCode::damaged));
}

// A file is data: what it brings along isn't run.
TEST_F(QNDatabaseOfOneTable, RunsNoTriggerOfTheFile) {
  database->run("CREATE TRIGGER evil AFTER INSERT ON t BEGIN DELETE FROM t; END");

  database->change("INSERT INTO t VALUES (1, 1, 'a')");

  EXPECT_EQ(database->number("SELECT count(*) FROM t"), 1u);
  EXPECT_FALSE(database->failed());
}

TEST_F(QNDatabaseOfOneTable, WorksUnderItsSettings) {
  const auto setting = [this](std::string_view pragma) { return database->number(pragma); };

  EXPECT_EQ(setting("PRAGMA synchronous"), 2u);
  EXPECT_EQ(setting("PRAGMA secure_delete"), 1u);
  EXPECT_EQ(setting("PRAGMA foreign_keys"), 1u);
  EXPECT_EQ(setting("PRAGMA trusted_schema"), 0u);
  EXPECT_EQ(setting("PRAGMA cell_size_check"), 1u);
  EXPECT_EQ(setting("PRAGMA temp_store"), 2u);
  EXPECT_EQ(setting("PRAGMA busy_timeout"), 0u);
  EXPECT_FALSE(database->failed());
}

}  // namespace
}  // namespace quillon
