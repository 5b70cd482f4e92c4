#include "quillon/touchpoints/QNWatchRecord.h"

#include "quillon/items/QNItem.h"
#include "quillon/platform/urls/QNURLTools.h"
#include "quillon/touchpoints/QNWatchConstants.h"

namespace quillon {

QNWatchRecord::QNWatchRecord(std::string_view type) : _values(jsonStorage()) {
  setJsonText(_values, QNWatchTypeKey, type);
}

void QNWatchRecord::setValue(const std::optional<QNSecret>& value, std::string_view forKey) {
  setJsonText(_values, forKey, value ? value->reveal() : "");  // into the wiping resource
}

JsonObject QNWatchRecord::dictionaryOfItem(QNItem& item) && {
  const auto uuid = item.uuid();
  JsonObject record(jsonStorage());
  setJsonText(record, QNOTPKeychainItemUUIDKey, uuid == nullptr ? "" : *uuid);
  setJsonText(record, QNOTPKeychainItemNameKey, item.title());
  // Of the address as it is now: derivedDomain() may be that of another one.
  const auto address = item.URLString();
  const auto host =
      address ? QNURLTools::shared().extractHostFromURLString(*address) : std::nullopt;
  setJsonText(record, QNOTPKeychainItemURLKey, host.value_or(""));
  record.emplace(QNWatchKeychainItemValueDataKey, std::move(_values));
  return record;
}

}  // namespace quillon
