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

}  // namespace quillon
