#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/objects/QNDatabaseObject.h"

namespace quillon {

/// Rows that a user moves about. A moved row gets a number between those of its new neighbours, so
/// that one object alone changes; only when no number is left there are all rows numbered anew.
/// Which objects get dirty by that is their setters' business: the first number of a folder, an
/// address or a category dirties nothing. After a move save every row whose number changed, dirty
/// or not. Not locked.
///
/// DANGER: an item's display order is its favourite index: to number items makes all favourites.
class QNDisplayOrderableList final {
 public:
  using Row = std::shared_ptr<QNDatabaseObject>;
  static constexpr std::uint64_t kFirstDisplayOrder = 1000000;
  static constexpr std::uint64_t kDisplayOrderStep = 100000;
  /// A row with a higher one has all rows numbered anew.
  static constexpr std::uint64_t kHighestDisplayOrder = 2147483646;

  /// In the order given, whatever their numbers are. Nulls are left out.
  explicit QNDisplayOrderableList(std::vector<Row> array);

  /// Can the rows be moved? At first, if each has a display order; after appendItem(), if the row
  /// that was appended has one.
  [[nodiscard]] bool itemsAreOrderable() const { return _itemsAreOrderable; }
  [[nodiscard]] std::size_t count() const { return _items.size(); }
  [[nodiscard]] bool isEmpty() const { return _items.empty(); }
  /// The live list. It holds no null, and must get none.
  [[nodiscard]] std::vector<Row>& items() { return _items; }
  /// Null changes nothing.
  void appendItem(const Row& item);
  // An index beyond the last ends the process, with an assertion log.
  [[nodiscard]] Row objectAtIndex(std::size_t index) const;
  void removeItemAtIndex(std::size_t index);

  // The first row of that identity, or kNotFound. Only categories and rows with an overview have a
  // uuid, and that of every address is "no_uuid": find them by id.
  [[nodiscard]] std::int64_t indexOfObjectWithId(std::uint64_t oid) const;
  [[nodiscard]] std::int64_t indexOfItemWithUUID(std::string_view uuid) const;
  [[nodiscard]] std::set<std::uint64_t> allIds() const;
  [[nodiscard]] std::set<std::string> allUUIDs() const;

  /// Has a row a dirty display order? False for rows that can't be moved. Not for a row that got
  /// its first number, unless its setter says so.
  [[nodiscard]] bool needsSaving() const;
  /// Numbers all rows anew, in their order.
  void resetDisplayOrder();
  /// The same, unless each number is below the next and low enough. A list without rows ends the
  /// process, with an assertion log.
  void fixDisplayOrders();
  /// Nothing happens if the rows can't be moved. An index beyond the last moves nothing, with
  /// assertion logs.
  void moveItemAtIndex(std::size_t index, std::size_t toIndex);

 private:
  [[nodiscard]] bool canMove(std::size_t from, std::size_t to) const;
  [[nodiscard]] std::uint64_t orderOfRow(std::size_t index) const;
  [[nodiscard]] std::uint64_t orderForMove(std::size_t from, std::size_t to) const;
  template <class Test>
  [[nodiscard]] std::int64_t indexOfFirst(const Test& test) const;

  std::vector<Row> _items;
  bool _itemsAreOrderable = true;
};

}  // namespace quillon
