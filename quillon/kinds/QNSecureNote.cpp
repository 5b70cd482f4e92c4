#include "quillon/kinds/QNSecureNote.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNSecureNote::QNSecureNote(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDSecureNote));
}

QNSecureNote::QNSecureNote(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDSecureNote));
}

}  // namespace quillon
