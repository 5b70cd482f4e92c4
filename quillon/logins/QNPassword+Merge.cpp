#include "quillon/items/QNItemMerge.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

std::shared_ptr<QNDatabaseObject> QNPassword::mergeWithConflict(
    const std::shared_ptr<QNDatabaseObject>& other) {
  const auto item = itemToMerge(other);
  if (item == nullptr) return shared_from_this();
  std::shared_ptr<QNItem> result = shared_from_this();
  const auto password = std::dynamic_pointer_cast<QNPassword>(item);
  const bool isLogin = std::dynamic_pointer_cast<QNLogin>(item) != nullptr;
  if (item->isTombstone()) {
    markRowDirty();
  } else if (isLogin && item->categoryUUID() == QNCategoryUUIDLogin) {
    result = openToMerge(*item, *this) ? convertToLoginBasedOnLogin(nullptr) : nullptr;
    // Works on the login itself.
    if (result == nullptr || result->mergeWithConflict(item) == nullptr) return nullptr;
    result->markRowDirty();
  } else if (password == nullptr || categoryUUID() != item->categoryUUID()) {
    reportForeignCategory(
        "Attempt to merge password {} ({}) with item from different category {} ({})", *item);
    return nullptr;
  } else {
    if (QNItem::mergeWithConflict(item) == nullptr) return nullptr;
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
  const auto winner = std::dynamic_pointer_cast<QNLogin>(other);
  if (winner == nullptr) return QNItem::objectByReplacingWith(other);
  if (!opensToReplaceThis(*winner)) return shared_from_this();
  const auto login = convertToLoginBasedOnLogin(nullptr);
  if (login == nullptr) return shared_from_this();
  return login->objectByReplacingWith(winner);
}

}  // namespace quillon
