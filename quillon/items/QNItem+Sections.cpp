#include "quillon/items/QNItem.h"

// Details "sections" is kept as JSON, as it was read: no field is made of it, so none is found.

namespace quillon {

std::shared_ptr<QNItemField> QNItem::findNonEmptyPasswordField() {
  return nullptr;
}

std::shared_ptr<QNItemField> QNItem::findNonEmptyConcealedField() {
  return nullptr;
}

std::shared_ptr<QNItemField> QNItem::findFastmailAliasField() {
  return nullptr;
}

bool QNItem::hasFileFields() {
  return false;
}

void QNItem::saveFieldSections() {}

// The value of findNonEmptyPasswordField().
std::optional<QNSecret> QNItem::password() {
  return std::nullopt;
}

}  // namespace quillon
