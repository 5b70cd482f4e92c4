#include "quillon/items/QNTombstone.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNTombstone::QNTombstone(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDTombstone));
  setTrashed(true);
}

QNTombstone::QNTombstone(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDTombstone));
  setTrashed(true);
}

// A live item beats a tombstone.
std::shared_ptr<QNDatabaseObject> QNTombstone::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto item = itemToMerge(other);
  if (item == nullptr) return shared_from_this();
  std::shared_ptr<QNItem> result = shared_from_this();
  if (!item->isTombstone()) {
    result = item;
    result->markRowDirty();
  }
  result->copyOidFrom(hasOid() ? shared_from_this() : item);
  return result;
}

}  // namespace quillon
