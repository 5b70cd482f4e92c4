#include "store/internal/QNSchema.h"

#include <array>

#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

constexpr std::array<const char*, 3> kSteps = {
    "CREATE TABLE a (x INTEGER) STRICT; INSERT INTO a VALUES (1)",
    "ALTER TABLE a ADD COLUMN y TEXT; UPDATE a SET y = 'filled'",
    "CREATE TABLE b AS SELECT y FROM a",
};
QNMigrations firstSteps(std::size_t count) {
  return QNMigrations(kSteps).first(count);
}

class QNSchemaOfThreeVersions : public ::testing::Test {
 protected:
  QNSchemaOfThreeVersions() {
    writeFile(folder / "a", "");
    database = std::move(QNDatabase::open(folder / "a", QNDatabase::Mode::readWrite)).value();
  }
  std::uint64_t version() { return database->number("PRAGMA user_version"); }
  const TemporaryFolder folder;
  std::unique_ptr<QNDatabase> database;
};

TEST_F(QNSchemaOfThreeVersions, IsMadeAsTheNewestVersion) {
  ASSERT_TRUE(makeSchema(*database, kSteps).ok());

  EXPECT_EQ(version(), 3u);
  EXPECT_EQ(database->number("PRAGMA application_id"), 0x514E4C4Eu);
  EXPECT_EQ(database->number("SELECT count(*) FROM b WHERE y = 'filled'"), 1u);
}

TEST_F(QNSchemaOfThreeVersions, IsBroughtForwardFromEachOlderVersion) {
  ASSERT_TRUE(makeSchema(*database, firstSteps(1)).ok());
  database->change("INSERT INTO a VALUES (2)");

  ASSERT_TRUE(bringSchemaForward(*database, kSteps).ok());

  EXPECT_EQ(version(), 3u);
  EXPECT_EQ(database->number("SELECT count(*) FROM b WHERE y = 'filled'"), 2u);
  EXPECT_TRUE(bringSchemaForward(*database, kSteps).ok());
  EXPECT_EQ(database->number("SELECT count(*) FROM b"), 2u);
}

TEST_F(QNSchemaOfThreeVersions, StaysAsItIsWhenAStepFails) {
  ASSERT_TRUE(makeSchema(*database, firstSteps(1)).ok());
  constexpr std::array<const char*, 3> broken = {kSteps[0], kSteps[1], "INSERT INTO nowhere"};

  const auto forward = bringSchemaForward(*database, broken);

  EXPECT_FALSE(forward.ok());
  EXPECT_EQ(version(), 1u);
  EXPECT_EQ(database->number("SELECT count(*) FROM pragma_table_info('a')"), 1u);
  EXPECT_TRUE(bringSchemaForward(*database, kSteps).ok());
}

TEST_F(QNSchemaOfThreeVersions, IsRefusedByAnOlderProgram) {
  ASSERT_TRUE(makeSchema(*database, kSteps).ok());

  EXPECT_EQ(errorOf(bringSchemaForward(*database, firstSteps(2))),
            codeText(QNStoreErrorCode::newerSchema));
  EXPECT_EQ(version(), 3u);
}

TEST_F(QNSchemaOfThreeVersions, CantBeOfNoVersion) {
  database->run("PRAGMA application_id = 0x514E4C4E; CREATE TABLE a (x INTEGER)");

  EXPECT_EQ(errorOf(bringSchemaForward(*database, kSteps)), codeText(QNStoreErrorCode::damaged));
}

TEST_F(QNSchemaOfThreeVersions, AnOlderFileOpenedForReadingMustBeOpenedForWritingFirst) {
  ASSERT_TRUE(makeSchema(*database, firstSteps(1)).ok());
  database = std::move(QNDatabase::open(folder / "a", QNDatabase::Mode::readOnly)).value();

  EXPECT_EQ(errorOf(bringSchemaForward(*database, kSteps)),
            codeText(QNStoreErrorCode::notWritable));
}

TEST(QNSchema, HasAsManyStepsAsVersions) {
  EXPECT_EQ(storeMigrations().size(), static_cast<std::size_t>(QNStore::kSchemaVersion));
}

}  // namespace
}  // namespace quillon
