#include "quillon/lists/QNDisplayOrderableList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "quillon/logins/QNItemURL.h"
#include "quillon/objects/QNDatabaseObjectWithOverview.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategory.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr std::uint64_t kEndOf64Bits = std::numeric_limits<std::uint64_t>::max();

/// A row that can't be moved.
class FixedRow : public QNDatabaseObjectWithOverview {
 public:
  explicit FixedRow(std::uint64_t oid) : QNDatabaseObjectWithOverview(QNExisting{oid}) {}
  std::string_view className() const override { return "FixedRow"; }
  QNSharedString uuid() const override { return identity; }

  QNSharedString identity = sharedString("uuid-" + std::to_string(oid()));
};

class MovableRow final : public FixedRow, public QNDisplayOrderable {
 public:
  MovableRow(std::uint64_t oid, std::uint64_t order) : FixedRow(oid), _order(order) {}
  std::uint64_t displayOrder() const override { return _order; }
  void setDisplayOrder(std::uint64_t order) override {
    ++numberOfSettings;
    if (_order != order) markDisplayOrderDirty();
    _order = order;
  }

  int numberOfSettings = 0;

 private:
  std::uint64_t _order;
};

/// Its first number dirties nothing, as with folders, addresses and categories.
class FolderLikeRow final : public FixedRow, public QNDisplayOrderable {
 public:
  FolderLikeRow(std::uint64_t oid, std::uint64_t order) : FixedRow(oid), _order(order) {}
  std::uint64_t displayOrder() const override { return _order; }
  void setDisplayOrder(std::uint64_t order) override {
    if (_order == order) return;
    if (_order != 0) markDisplayOrderDirty();
    _order = order;
  }

 private:
  std::uint64_t _order;
};

using Rows = std::vector<QNDisplayOrderableList::Row>;
using Orders = std::vector<std::uint64_t>;

// With the row ids 1, 2, 3, ...
Rows rowsOf(const Orders& orders) {
  Rows rows;
  for (const std::uint64_t order : orders) {
    rows.push_back(std::make_shared<MovableRow>(rows.size() + 1, order));
  }
  return rows;
}

Rows withFixedRow(const Orders& orders) {
  Rows rows = rowsOf(orders);
  rows.push_back(std::make_shared<FixedRow>(rows.size() + 1));
  return rows;
}

std::uint64_t orderOf(const QNDisplayOrderableList::Row& row) {
  return dynamic_cast<const QNDisplayOrderable&>(*row).displayOrder();
}

Orders ordersIn(QNDisplayOrderableList& list) {
  Orders orders;
  for (const auto& row : list.items()) orders.push_back(orderOf(row));
  return orders;
}

Orders idsIn(QNDisplayOrderableList& list) {
  Orders ids;
  for (const auto& row : list.items()) ids.push_back(row->oid());
  return ids;
}

// Rows

TEST(QNDisplayOrderableList, KeepsACopyInTheOrderGiven) {
  Rows rows = rowsOf({30, 10, 20});
  rows.insert(rows.begin(), nullptr);

  QNDisplayOrderableList list(rows);
  rows.clear();

  EXPECT_EQ(list.count(), 3u);
  EXPECT_FALSE(list.isEmpty());
  EXPECT_THAT(ordersIn(list), ElementsAre(30, 10, 20));
  EXPECT_TRUE(list.itemsAreOrderable());
}

TEST(QNDisplayOrderableList, OfNoRowsCanBeOrdered) {
  const QNDisplayOrderableList list({});

  EXPECT_TRUE(list.isEmpty());
  EXPECT_EQ(list.count(), 0u);
  EXPECT_TRUE(list.itemsAreOrderable());
}

TEST(QNDisplayOrderableList, WithOneRowThatCantBeMovedIsNotOrderable) {
  Rows rows = withFixedRow({10});
  rows.push_back(std::make_shared<MovableRow>(3, 20));

  EXPECT_FALSE(QNDisplayOrderableList(rows).itemsAreOrderable());
}

TEST(QNDisplayOrderableList, IsAsOrderableAsTheRowAppendedLast) {
  QNDisplayOrderableList list(rowsOf({10, 20}));

  list.appendItem(std::make_shared<FixedRow>(3));
  EXPECT_FALSE(list.itemsAreOrderable());
  list.appendItem(std::make_shared<MovableRow>(4, 40));
  EXPECT_TRUE(list.itemsAreOrderable());
  list.appendItem(nullptr);
  EXPECT_TRUE(list.itemsAreOrderable());
  EXPECT_EQ(list.count(), 4u);
}

TEST(QNDisplayOrderableList, GivesAndRemovesRows) {
  const Rows rows = rowsOf({10, 20, 30});
  QNDisplayOrderableList list(rows);

  EXPECT_EQ(list.objectAtIndex(2), rows[2]);
  list.removeItemAtIndex(1);

  EXPECT_THAT(list.items(), ElementsAre(rows[0], rows[2]));
}

TEST(QNDisplayOrderableList, HandsOutTheListItself) {
  QNDisplayOrderableList list(rowsOf({10, 20}));

  list.items().pop_back();

  EXPECT_EQ(list.count(), 1u);
}

TEST(QNDisplayOrderableListDeathTest, EndsTheProcessForARowBeyondTheLast) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  QNDisplayOrderableList list(rowsOf({10}));

  EXPECT_DEATH(static_cast<void>(list.objectAtIndex(1)), "index 1 beyond the last of 1");
  EXPECT_DEATH(list.removeItemAtIndex(1), "index 1 beyond the last of 1");
}

// Identities

TEST(QNDisplayOrderableList, FindsTheFirstRowOfAnIdentity) {
  Rows rows = rowsOf({10, 20});
  rows.push_back(std::make_shared<MovableRow>(2, 30));
  const QNDisplayOrderableList list(rows);

  EXPECT_EQ(list.indexOfObjectWithId(2), 1);
  EXPECT_EQ(list.indexOfObjectWithId(3), 9223372036854775807);
  EXPECT_EQ(list.indexOfItemWithUUID("uuid-2"), 1);
  EXPECT_EQ(list.indexOfItemWithUUID("UUID-2"), kNotFound);
}

TEST(QNDisplayOrderableList, CannotTellAddressesByTheirUUID) {
  const QNDisplayOrderableList list(
      {std::make_shared<QNItemURL>(QNExisting{7}), std::make_shared<QNItemURL>(QNExisting{8})});

  EXPECT_EQ(list.indexOfItemWithUUID("no_uuid"), 0);
  EXPECT_EQ(list.indexOfObjectWithId(8), 1);
}

TEST(QNDisplayOrderableList, GivesAllIdentitiesOnce) {
  Rows rows = rowsOf({10, 20});
  rows.push_back(std::make_shared<MovableRow>(2, 30));
  const QNDisplayOrderableList list(rows);

  EXPECT_THAT(list.allIds(), ElementsAre(1, 2));
  EXPECT_THAT(list.allUUIDs(), ElementsAre("uuid-1", "uuid-2"));
}

TEST(QNDisplayOrderableList, PassesOverARowWithoutAUuid) {
  const auto row = std::make_shared<MovableRow>(1, 10);
  row->identity = nullptr;
  const QNDisplayOrderableList list({row});

  EXPECT_EQ(list.indexOfItemWithUUID(""), kNotFound);
  EXPECT_THAT(list.allUUIDs(), IsEmpty());
}

// Saving

TEST(QNDisplayOrderableList, NeedsSavingWhenARowsOrderDoes) {
  const Rows rows = rowsOf({10, 20});
  const QNDisplayOrderableList list(rows);
  EXPECT_FALSE(list.needsSaving());

  rows[1]->markDisplayOrderDirty();

  EXPECT_TRUE(list.needsSaving());
}

TEST(QNDisplayOrderableList, NeedsNoSavingWhenRowsGotTheirFirstNumbersFromSettersThatSayNothing) {
  const Rows rows = {std::make_shared<FolderLikeRow>(1, 0), std::make_shared<FolderLikeRow>(2, 0)};
  QNDisplayOrderableList list(rows);

  list.resetDisplayOrder();
  EXPECT_THAT(ordersIn(list), ElementsAre(1000000, 1100000));
  EXPECT_FALSE(list.needsSaving());

  list.moveItemAtIndex(1, 0);
  EXPECT_THAT(ordersIn(list), ElementsAre(500000, 1000000));
  EXPECT_TRUE(list.needsSaving());
}

TEST(QNDisplayOrderableList, FindsCategoriesByTheirUuids) {
  const auto category = std::make_shared<QNCategory>(QNExisting{7});
  category->setUuid("003");
  const QNDisplayOrderableList list({rowsOf({10})[0], category});

  EXPECT_TRUE(list.itemsAreOrderable());
  EXPECT_EQ(list.indexOfItemWithUUID("003"), 1);
  EXPECT_EQ(list.indexOfItemWithUUID("004"), kNotFound);
  EXPECT_THAT(list.allUUIDs(), ElementsAre("003", "uuid-1"));
  EXPECT_THAT(list.allIds(), ElementsAre(1, 7));
}

TEST(QNDisplayOrderableList, NeedsNoSavingWhenItsRowsCantBeMoved) {
  const Rows rows = withFixedRow({10, 20});
  rows[1]->markDisplayOrderDirty();

  EXPECT_FALSE(QNDisplayOrderableList(rows).needsSaving());
}

// Numbers

TEST(QNDisplayOrderableList, NumbersAllRowsAnew) {
  QNDisplayOrderableList list(rowsOf({7, 7, kEndOf64Bits}));

  list.resetDisplayOrder();

  EXPECT_THAT(ordersIn(list), ElementsAre(1000000, 1100000, 1200000));
  QNDisplayOrderableList({}).resetDisplayOrder();
}

struct FixCase {
  Orders orders;
  bool isReset;
};
class QNDisplayOrderableListFix : public testing::TestWithParam<FixCase> {};

TEST_P(QNDisplayOrderableListFix, NumbersRowsAnewOnlyWhereItMust) {
  const Orders& orders = GetParam().orders;
  QNDisplayOrderableList list(rowsOf(orders));

  list.fixDisplayOrders();

  Orders expected = orders;
  for (std::size_t i = 0; i < orders.size() && GetParam().isReset; ++i) {
    expected[i] = 1000000 + i * 100000;
  }
  EXPECT_THAT(ordersIn(list), ElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(Numbers, QNDisplayOrderableListFix,
                         testing::Values(FixCase{{1, 2, 3}, false}, FixCase{{0, 1}, false},
                                         FixCase{{1, 1, 2}, true}, FixCase{{1, 3, 2}, true},
                                         FixCase{{0, 0}, true}, FixCase{{1, 2147483646}, false},
                                         FixCase{{1, 2147483647}, true},
                                         FixCase{{2147483645, 2147483646}, false},
                                         FixCase{{2147483647, 2147483648}, true},
                                         // One row alone keeps any number.
                                         FixCase{{kEndOf64Bits}, false}, FixCase{{0}, false}));

TEST(QNDisplayOrderableListDeathTest, EndsTheProcessWhenNoRowsAreToBeFixed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  QNDisplayOrderableList list({});

  EXPECT_DEATH(list.fixDisplayOrders(), "index 0 beyond the last of 0");
}

// Moves

struct MoveCase {
  Orders orders;
  std::size_t from, to;
  Orders ids;
  Orders expected;
};
class QNDisplayOrderableListMove : public testing::TestWithParam<MoveCase> {};

TEST_P(QNDisplayOrderableListMove, GivesTheRowANumberBetweenItsNewNeighbours) {
  const MoveCase& move = GetParam();
  QNDisplayOrderableList list(rowsOf(move.orders));

  list.moveItemAtIndex(move.from, move.to);

  EXPECT_THAT(idsIn(list), ElementsAreArray(move.ids));
  EXPECT_THAT(ordersIn(list), ElementsAreArray(move.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Moves, QNDisplayOrderableListMove,
    testing::Values(
        // To the front: half of the first.
        MoveCase{{1000000, 1100000, 1200000}, 2, 0, {3, 1, 2}, {500000, 1000000, 1100000}},
        MoveCase{{3, 10}, 1, 0, {2, 1}, {1, 3}},
        // Half of 1 is none, and 1 itself is taken.
        MoveCase{{1, 10}, 1, 0, {2, 1}, {1000000, 1100000}},
        MoveCase{{0, 0, 0}, 2, 0, {3, 1, 2}, {1000000, 1100000, 1200000}},
        // To the end: 100000 behind the last, of two rows too.
        MoveCase{{1000000, 1100000, 1200000}, 0, 2, {2, 3, 1}, {1100000, 1200000, 1300000}},
        MoveCase{{1000000, 1100000}, 0, 1, {2, 1}, {1100000, 1200000}},
        MoveCase{{1, 2147383546}, 0, 1, {2, 1}, {2147383546, 2147483546}},
        MoveCase{{1, 2147383547}, 0, 1, {2, 1}, {2147383547, 2147483547}},
        MoveCase{{1, 2147383646}, 0, 1, {2, 1}, {2147383646, 2147483646}},
        MoveCase{{1, 2147383647}, 0, 1, {2, 1}, {1000000, 1100000}},
        MoveCase{{1, kEndOf64Bits - 99999}, 0, 1, {2, 1}, {1000000, 1100000}},
        // Between two, down and up.
        MoveCase{{10, 20, 30, 40}, 0, 2, {2, 3, 1, 4}, {20, 30, 35, 40}},
        MoveCase{{10, 20, 30, 41}, 3, 1, {1, 4, 2, 3}, {10, 15, 20, 30}},
        MoveCase{{10, 20, 31, 40}, 0, 1, {2, 1, 3, 4}, {20, 25, 31, 40}},
        // Neighbours that leave no number between them.
        MoveCase{{5, 10, 11, 20}, 0, 1, {2, 1, 3, 4}, {1000000, 1100000, 1200000, 1300000}},
        MoveCase{{0, 1, 2}, 2, 1, {1, 3, 2}, {1000000, 1100000, 1200000}},
        MoveCase{{0, 0, 5, 9}, 3, 1, {1, 4, 2, 3}, {1000000, 1100000, 1200000, 1300000}},
        // Neighbours whose sum is beyond 64 bits.
        MoveCase{{1, kEndOf64Bits - 1, kEndOf64Bits, 5},
                 0,
                 1,
                 {2, 1, 3, 4},
                 {1000000, 1100000, 1200000, 1300000}}));

TEST(QNDisplayOrderableList, ChangesTheMovedRowAlone) {
  const Rows rows = rowsOf({1000000, 1100000, 1200000});
  QNDisplayOrderableList list(rows);

  list.moveItemAtIndex(2, 0);

  const auto settings = [&rows](std::size_t index) {
    return dynamic_cast<const MovableRow&>(*rows[index]).numberOfSettings;
  };
  EXPECT_EQ(settings(2), 1);
  EXPECT_EQ(settings(0), 0);
  EXPECT_EQ(settings(1), 0);
  EXPECT_TRUE(list.needsSaving());
}

// A number of 0 after a sum that wrapped would look like no order at all.
TEST(QNDisplayOrderableList, GivesANumberOf1WhereTheSumWrapsToNone) {
  class Watching final : public FixedRow, public QNDisplayOrderable {
   public:
    using FixedRow::FixedRow;
    std::uint64_t displayOrder() const override { return seen.empty() ? 7 : seen.back(); }
    void setDisplayOrder(std::uint64_t order) override { seen.push_back(order); }
    std::vector<std::uint64_t> seen;
  };
  const auto row = std::make_shared<Watching>(1);
  QNDisplayOrderableList list({row, std::make_shared<MovableRow>(2, kEndOf64Bits - 99999)});

  list.moveItemAtIndex(0, 1);

  EXPECT_THAT(row->seen, ElementsAre(1, 1100000));
}

TEST(QNDisplayOrderableList, MovesNothingToItsOwnPlace) {
  QNDisplayOrderableList list(rowsOf({5, 5}));
  const MRCapturingSink log;

  list.moveItemAtIndex(1, 1);
  list.moveItemAtIndex(9, 9);

  EXPECT_THAT(ordersIn(list), ElementsAre(5, 5));
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST(QNDisplayOrderableList, MovesNothingSilentlyWhenItsRowsCantBeMoved) {
  QNDisplayOrderableList list(rowsOf({10, 20}));
  list.appendItem(std::make_shared<FixedRow>(3));
  const MRCapturingSink log;

  list.moveItemAtIndex(0, 1);
  list.moveItemAtIndex(0, 9);

  EXPECT_THAT(idsIn(list), ElementsAre(1, 2, 3));
  EXPECT_THAT(log.records(), IsEmpty());
}

TEST(QNDisplayOrderableList, MovesAmongRowsThatHaveNoOrderWithoutFailing) {
  QNDisplayOrderableList list(withFixedRow({10, 20}));
  list.appendItem(std::make_shared<MovableRow>(4, 40));

  list.moveItemAtIndex(2, 0);

  EXPECT_THAT(idsIn(list), ElementsAre(3, 1, 2, 4));
  EXPECT_EQ(orderOf(list.items()[3]), 40u);
}

struct ComplaintCase {
  std::size_t count, from, to;
  std::vector<std::string> texts;
};
class QNDisplayOrderableListComplaint : public testing::TestWithParam<ComplaintCase> {};

TEST_P(QNDisplayOrderableListComplaint, TellsWhatIsWrongAndMovesNothing) {
  const ComplaintCase& wrong = GetParam();
  const Rows rows = rowsOf(Orders(wrong.count, 5));
  QNDisplayOrderableList list(rows);
  const MRCapturingSink log;

  list.moveItemAtIndex(wrong.from, wrong.to);

  EXPECT_EQ(list.items(), rows);
  EXPECT_FALSE(list.needsSaving());
  EXPECT_THAT(log.texts(MRLogKind::assertion), ElementsAreArray(wrong.texts));
  for (const auto& record : log.records()) {
    EXPECT_EQ(record.subsystem, DEBUG_DATABASE);
    EXPECT_EQ(record.file, "Common/QNDisplayOrderableList");
  }
}

INSTANTIATE_TEST_SUITE_P(
    Complaints, QNDisplayOrderableListComplaint,
    testing::Values(
        ComplaintCase{2, 2, 0, {"From index cannot exceed category count"}},
        ComplaintCase{2, 0, 2, {"toIndex cannot exceed category count"}},
        ComplaintCase{
            2,
            3,
            2,
            {"From index cannot exceed category count", "toIndex cannot exceed category count"}},
        ComplaintCase{1,
                      0,
                      1,
                      {"toIndex cannot exceed category count",
                       "Ordered list must have at least 2 items to support rearranging"}},
        ComplaintCase{
            0,
            0,
            1,
            {"From index cannot exceed category count", "toIndex cannot exceed category count",
             "Ordered list must have at least 2 items to support rearranging"}}));

}  // namespace
}  // namespace quillon
