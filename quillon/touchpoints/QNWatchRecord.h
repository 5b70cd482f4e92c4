#pragma once

#include <string_view>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

class QNItem;

/// What a watch gets of one item: in clear, since a watch has no vault. Both objects of a record
/// lie in the wiping resource; wipe what you make of them. The keys: QNWatchConstants.h.
///
///   QNOTPKeychainItemUUIDKey          text
///   QNOTPKeychainItemNameKey          text: the title, or localized "Unnamed"
///   QNOTPKeychainItemURLKey           text: the host of the main address
///   QNWatchKeychainItemValueDataKey   object: QNWatchTypeKey, then what the kind adds
///
/// What else isn't there is "".
/// DANGER: what isn't loaded, or doesn't open, reads as if it weren't there: the record of an item
/// in a locked vault looks like one of an item without values. Look whether details(), the item's
/// mutableOverview() and that of its first address give something before you put it in place of
/// another.
class QNWatchRecord final {
 public:
  /// One of QNWatchType....
  explicit QNWatchRecord(std::string_view type);
  void setValue(const std::optional<QNSecret>& value, std::string_view forKey);
  /// The whole record. Hold the item's monitor since before the first value was read.
  [[nodiscard]] JsonObject dictionaryOfItem(QNItem& item) &&;

 private:
  JsonObject _values;
};

}  // namespace quillon
