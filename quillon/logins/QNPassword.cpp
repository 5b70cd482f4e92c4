#include "quillon/logins/QNPassword.h"

#include "quillon/logins/QNLoginField.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNPassword::QNPassword(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDPassword));
}

QNPassword::QNPassword(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDPassword));
}

std::string_view QNPassword::fillObjectContext() const {
  return QNFillObjectDesignationNewPassword;
}

std::optional<QNSecret> QNPassword::password() {
  const std::lock_guard guard(monitor());
  const JsonObject* const all = details();
  if (all == nullptr) return std::nullopt;
  const auto text = mr_validStringValueForKey(*all, kDetailsPassword);
  return text ? std::optional<QNSecret>(*text) : std::nullopt;
}

void QNPassword::setPassword(std::optional<std::string_view> password) {
  setDetailsText(password, kDetailsPassword);
}

}  // namespace quillon
