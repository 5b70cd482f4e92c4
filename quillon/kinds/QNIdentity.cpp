#include "quillon/kinds/QNIdentity.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNIdentity::QNIdentity(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDIdentity));
}

QNIdentity::QNIdentity(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDIdentity));
}

}  // namespace quillon
