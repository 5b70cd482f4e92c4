#include "store/internal/QNSyncStates.h"

#include <gmock/gmock.h>

#include "store/internal/QNSchema.h"
#include "store/internal/QNStoreTesting.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kSource = 7;

class QNSyncStatesTable : public ::testing::Test {
 protected:
  QNSyncStatesTable() {
    writeFile(folder / "a", "");
    database = std::move(QNDatabase::open(folder / "a", QNDatabase::Mode::readWrite)).value();
    EXPECT_EQ(errorOf(makeSchema(*database, storeMigrations())), "");
    // The states alone are looked at.
    database->run("PRAGMA foreign_keys = OFF");
  }
  ~QNSyncStatesTable() override { EXPECT_FALSE(database->failed()); }

  static QNSyncStateRow row(std::uint64_t kind, std::optional<std::string_view> uuid,
                            std::uint64_t time) {
    QNSyncStateRow row;
    row.kind = kind;
    row.objectType = kind;
    row.objectUUID = uuid;
    row.localTimestamp = time;
    return row;
  }
  void write(std::initializer_list<QNSyncStateRow> rows) {
    QNSyncStates::writeAll(*database, kSource, std::vector<QNSyncStateRow>(rows));
  }
  /// "KIND UUID TIME" of each, in order.
  static std::vector<std::string> texts(const QNSyncStates& states) {
    std::vector<std::string> texts;
    for (const auto& row : states.rows()) {
      texts.push_back(std::to_string(row.kind) + " " +
                      std::string(row.objectUUID.value_or("(none)")) + " " +
                      std::to_string(row.localTimestamp));
    }
    return texts;
  }
  std::vector<std::string> stored() { return texts(QNSyncStates::read(*database, kSource)); }

  const TemporaryFolder folder;
  std::unique_ptr<QNDatabase> database;
};

TEST_F(QNSyncStatesTable, AreReadInTheirOrder) {
  write({row(1, "b", 1), row(1, std::nullopt, 2), row(1, "a", 3), row(2, "a", 4), row(3, "c", 5)});

  EXPECT_THAT(stored(), ElementsAre("1 b 1", "1 (none) 2", "1 a 3", "2 a 4", "3 c 5"));
}

TEST_F(QNSyncStatesTable, AreHashedAsTheyAreSealed) {
  write({row(1, "b", 1), row(2, "a", 4)});

  const auto states = QNSyncStates::read(*database, kSource);

  EXPECT_EQ(states.hash(), statesHash(std::vector{row(1, "b", 1), row(2, "a", 4)}));
}

TEST_F(QNSyncStatesTable, OfOneUUIDTheLaterCounts) {
  write({row(1, "a", 1), row(1, "a", 2), row(2, "b", 3)});

  const auto states = QNSyncStates::read(*database, kSource);

  ASSERT_NE(states.itemState("a"), nullptr);
  EXPECT_EQ(states.itemState("a")->localTimestamp, 2u);
  EXPECT_EQ(states.itemState("b"), nullptr);
  EXPECT_EQ(states.itemState(""), nullptr);
}

TEST_F(QNSyncStatesTable, ANewItemStandsBehindTheOthersAndBeforeFolders) {
  write({row(1, "a", 1), row(2, "folder", 4)});
  auto states = QNSyncStates::read(*database, kSource);

  states.setItemState("b", row(0, std::nullopt, 2));
  states.setItemState("c", row(0, std::nullopt, 3));
  states.setItemState("b", row(0, std::nullopt, 9));
  states.writeChanges(*database, kSource);

  EXPECT_THAT(texts(states), ElementsAre("1 a 1", "1 b 9", "1 c 3", "2 folder 4"));
  EXPECT_EQ(stored(), texts(states));
  EXPECT_FALSE(states.hasChanges());
}

TEST_F(QNSyncStatesTable, OnlyChangesAreWritten) {
  write({row(1, "a", 1), row(1, "b", 2)});
  auto states = QNSyncStates::read(*database, kSource);
  EXPECT_FALSE(states.hasChanges());
  states.setItemState("b", row(1, std::nullopt, 3));
  EXPECT_TRUE(states.hasChanges());
  database->run("UPDATE sync_states SET local_timestamp = 8 WHERE object_uuid = 'a'");

  states.writeChanges(*database, kSource);

  EXPECT_THAT(stored(), ElementsAre("1 a 8", "1 b 3"));
}

TEST_F(QNSyncStatesTable, StayWholeWhenTheyAreMoved) {
  write({row(1, "a uuid that is too long for the text object itself", 1)});
  auto states = QNSyncStates::read(*database, kSource);

  const QNSyncStates moved = std::move(states);

  ASSERT_NE(moved.itemState("a uuid that is too long for the text object itself"), nullptr);
  EXPECT_THAT(texts(moved), ElementsAre("1 a uuid that is too long for the text object itself 1"));
}

TEST_F(QNSyncStatesTable, TheFirstOfASourceNeedsNoOther) {
  QNSyncStates states;
  EXPECT_THAT(states.rows(), IsEmpty());

  states.setItemState("a", row(1, std::nullopt, 1));
  states.writeChanges(*database, kSource);

  EXPECT_THAT(stored(), ElementsAre("1 a 1"));
}

}  // namespace
}  // namespace quillon
