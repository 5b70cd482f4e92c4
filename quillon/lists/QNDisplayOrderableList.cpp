#include "quillon/lists/QNDisplayOrderableList.h"

#include <algorithm>
#include <utility>

#include "quillon/lists/internal/QNListRange.h"
#include "quillon/objects/QNDatabaseObjectWithOverview.h"
#include "quillon/platform/data/QNNotFound.h"
#include "quillon/templates/QNGenericCategory.h"

namespace quillon {
namespace {

using Row = QNDisplayOrderableList::Row;

QNDisplayOrderable* orderable(const Row& row) {
  return dynamic_cast<QNDisplayOrderable*>(row.get());
}

// A row that has no order stands among others only if a later one brought the flag back.
void setOrder(const Row& row, std::uint64_t order) {
  if (auto* const it = orderable(row)) it->setDisplayOrder(order);
}

// Null for none.
QNSharedString uuidOf(const Row& row) {
  if (const auto* const category = dynamic_cast<const QNGenericCategory*>(row.get())) {
    auto uuid = category->uuid();
    return uuid ? sharedString(*std::move(uuid)) : nullptr;
  }
  const auto* const object = dynamic_cast<const QNDatabaseObjectWithOverview*>(row.get());
  return object == nullptr ? nullptr : object->uuid();
}

// Whatever the rows are: logs have always told them as categories.
void complain(std::string_view complaint, int line = __builtin_LINE()) {
  MRLogger::sharedLogger().assertion(
      DEBUG_DATABASE, "QNDisplayOrderableList",
      MRLogText(complaint, "Common/QNDisplayOrderableList", line, "moveItemAtIndex"));
}

}  // namespace

QNDisplayOrderableList::QNDisplayOrderableList(std::vector<Row> array) : _items(std::move(array)) {
  std::erase(_items, nullptr);
  _itemsAreOrderable = std::all_of(_items.begin(), _items.end(), orderable);
}

void QNDisplayOrderableList::appendItem(const Row& item) {
  if (item == nullptr) return;
  _items.push_back(item);
  _itemsAreOrderable = orderable(item) != nullptr;
}

Row QNDisplayOrderableList::objectAtIndex(std::size_t index) const {
  requireIndex(index, _items.size(), "QNDisplayOrderableList");
  return _items[index];
}

void QNDisplayOrderableList::removeItemAtIndex(std::size_t index) {
  requireIndex(index, _items.size(), "QNDisplayOrderableList");
  _items.erase(_items.begin() + static_cast<std::ptrdiff_t>(index));
}

// Identities

template <class Test>
std::int64_t QNDisplayOrderableList::indexOfFirst(const Test& test) const {
  const auto found = std::find_if(_items.begin(), _items.end(), test);
  return found == _items.end() ? kNotFound : found - _items.begin();
}

std::int64_t QNDisplayOrderableList::indexOfObjectWithId(std::uint64_t oid) const {
  return indexOfFirst([oid](const Row& row) { return row->oid() == oid; });
}

std::int64_t QNDisplayOrderableList::indexOfItemWithUUID(std::string_view uuid) const {
  return indexOfFirst([uuid](const Row& row) {
    const QNSharedString own = uuidOf(row);
    return own != nullptr && *own == uuid;
  });
}

std::set<std::uint64_t> QNDisplayOrderableList::allIds() const {
  std::set<std::uint64_t> ids;
  for (const Row& row : _items) ids.insert(row->oid());
  return ids;
}

std::set<std::string> QNDisplayOrderableList::allUUIDs() const {
  std::set<std::string> uuids;
  for (const Row& row : _items) {
    if (const QNSharedString uuid = uuidOf(row)) uuids.insert(*uuid);
  }
  return uuids;
}

// Order

bool QNDisplayOrderableList::needsSaving() const {
  return _itemsAreOrderable && std::any_of(_items.begin(), _items.end(),
                                           [](const Row& row) { return row->dirtyDisplayOrder(); });
}

void QNDisplayOrderableList::resetDisplayOrder() {
  std::uint64_t order = kFirstDisplayOrder;
  for (const Row& row : _items) {
    setOrder(row, order);
    order += kDisplayOrderStep;
  }
}

void QNDisplayOrderableList::fixDisplayOrders() {
  requireIndex(0, _items.size(), "QNDisplayOrderableList");
  for (std::size_t i = 1; i < _items.size(); ++i) {
    const std::uint64_t a = orderOfRow(i - 1);
    const std::uint64_t b = orderOfRow(i);
    if (a >= b || a > kHighestDisplayOrder || b > kHighestDisplayOrder) return resetDisplayOrder();
  }
}

void QNDisplayOrderableList::moveItemAtIndex(std::size_t index, std::size_t toIndex) {
  if (index == toIndex || !_itemsAreOrderable || !canMove(index, toIndex)) return;
  const Row row = _items[index];
  setOrder(row, orderForMove(index, toIndex));
  _items.erase(_items.begin() + static_cast<std::ptrdiff_t>(index));
  _items.insert(_items.begin() + static_cast<std::ptrdiff_t>(toIndex), row);
  fixDisplayOrders();
}

bool QNDisplayOrderableList::canMove(std::size_t from, std::size_t to) const {
  const bool inRange = from < count() && to < count();
  if (from >= count()) complain("From index cannot exceed category count");
  if (to >= count()) complain("toIndex cannot exceed category count");
  if (count() < 2) complain("Ordered list must have at least 2 items to support rearranging");
  return inRange && count() >= 2;
}

std::uint64_t QNDisplayOrderableList::orderOfRow(std::size_t index) const {
  const auto* const row = orderable(_items[index]);
  return row == nullptr ? 0 : row->displayOrder();
}

// From the list as it stands before the move. Sums wrap round, which fixDisplayOrders() mends.
std::uint64_t QNDisplayOrderableList::orderForMove(std::size_t from, std::size_t to) const {
  const auto atLeastOne = [](std::uint64_t order) { return std::max(order, std::uint64_t{1}); };
  if (to == 0) return atLeastOne(orderOfRow(0) / 2);
  if (to == count() - 1) return atLeastOne(orderOfRow(to) + kDisplayOrderStep);
  const std::size_t before = from <= to ? to : to - 1;
  return atLeastOne((orderOfRow(before) + orderOfRow(before + 1)) / 2);
}

}  // namespace quillon
