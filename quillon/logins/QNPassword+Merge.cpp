#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/environment/QNEnvironment.h"

namespace quillon {

std::shared_ptr<QNDatabaseObject> QNPassword::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto item = itemToMerge(other);
  if (item == nullptr) return shared_from_this();
  std::shared_ptr<QNItem> result = shared_from_this();
  const auto password = std::dynamic_pointer_cast<QNPassword>(item);
  if (item->isTombstone()) {
    markRowDirty();
  } else if (std::dynamic_pointer_cast<QNLogin>(item) != nullptr) {
    result = convertToLoginBasedOnLogin(nullptr);
    result->mergeWithConflict(item);  // works on the login itself
    result->markRowDirty();
  } else if (password == nullptr || categoryUUID() != item->categoryUUID()) {
    reportForeignCategory(
        "Attempt to merge password {} ({}) with item from different category {} ({})", *item);
    return nullptr;
  } else {
    QNItem::mergeWithConflict(item);
    mergePasswordWithConflict(*password);
  }
  result->copyOidFrom(hasOid() ? shared_from_this() : item);
  return result;
}

void QNPassword::mergePasswordWithConflict(QNPassword& other) {
  const auto theirs = other.password();
  if (!theirs || containsPasswordValue(theirs->reveal())) return;
  addPreviouslyUsedPassword({theirs->clone(), secondsNow()});
}

std::shared_ptr<QNDatabaseObject> QNPassword::objectByReplacingWith(
    const std::shared_ptr<QNDatabaseObject>& other) {
  if (std::dynamic_pointer_cast<QNLogin>(other) == nullptr) {
    return QNItem::objectByReplacingWith(other);
  }
  return convertToLoginBasedOnLogin(nullptr)->objectByReplacingWith(other);
}

}  // namespace quillon
