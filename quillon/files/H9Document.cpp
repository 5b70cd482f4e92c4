#include "quillon/files/H9Document.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

H9Document::H9Document(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDDocument));
}

H9Document::H9Document(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDDocument));
}

}  // namespace quillon
