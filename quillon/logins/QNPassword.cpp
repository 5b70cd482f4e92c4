#include "quillon/logins/QNPassword.h"

#include "quillon/items/QNQuickAccessShortcut.h"
#include "quillon/logins/QNLoginField.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/touchpoints/QNWatchConstants.h"
#include "quillon/touchpoints/QNWatchRecord.h"

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

std::vector<QNSecret> QNPassword::allValuesForSearch() {
  const std::lock_guard guard(monitor());
  auto values = QNItem::allValuesForSearch();
  auto own = password();
  if (own && !own->empty()) values.insert(values.begin(), *std::move(own));
  return values;
}

std::vector<QNQuickAccessShortcut> QNPassword::quickAccessFields() {
  const std::lock_guard guard(monitor());
  std::vector<QNQuickAccessShortcut> shortcuts;
  if (auto secret = mayReveal() ? itemFieldForPassword() : nullptr) {
    shortcuts.emplace_back(std::move(secret), 1);
  }
  addOneTimePasswordFieldRequestingCopyKey(3, shortcuts);
  return shortcuts;
}

JsonObject QNPassword::appleWatchDictionaryRepresentation() {
  const std::lock_guard guard(monitor());
  QNWatchRecord record(QNWatchTypePassword);
  record.setValue(password(), QNWatchLoginItemPasswordKey);
  return std::move(record).dictionaryOfItem(*this);
}

std::optional<std::string> QNPassword::dateFormatter(std::chrono::sys_seconds date) {
  return qn_formatDateAndTime(date.time_since_epoch().count());
}

std::optional<std::string> QNPassword::_additionalInformation() {
  if (auto made = dateFormatter(createdAtAsDate())) return made;
  return QNItem::_additionalInformation();
}

bool QNPassword::isModifedByUser() {
  const auto hasIcon = [this](std::string_view key) {
    return overviewObjectForKey(key) != nullptr;
  };
  const auto notes = notesSecret();
  return updatedAt() != createdAt() || (notes && !notes->empty()) || !tags().empty() ||
         numberOfURLs() >= 2 || numberOfFieldSections() > 0 || hasIcon(kCustomIcon) ||
         hasIcon(kCustomIconAttributes) || hasIcon(kPendingCustomIcon) || numberOfAttachments() > 0;
}

}  // namespace quillon
