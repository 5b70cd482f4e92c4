#include "cli/import/QNItemRow.h"

#include <algorithm>

#include "cli/fields/QNCategoryNames.h"
#include "quillon/platform/json/QNJson.h"

// An item of an export:
//
//   "row"         object, the row dictionary; its "uuid" is needed, an "oid" isn't read
//   "trashed"     true or false
//   "faveIndex"   whole number, 0 for none
//   "lastUsed"    whole number, seconds since 1970, 0 for never
//   "timesUsed"   whole number
//   "folderUUID"  text, left out when absent

namespace quillon {
namespace {

constexpr std::string_view kRow = "row";
constexpr std::string_view kTrashed = "trashed";
constexpr std::string_view kFaveIndex = "faveIndex";
constexpr std::string_view kLastUsed = "lastUsed";
constexpr std::string_view kTimesUsed = "timesUsed";
constexpr std::string_view kFolderUUID = "folderUUID";

constexpr std::uint64_t kMostTimesUsed = 0x7fffffff;

std::uint64_t numberOf(const JsonObject& object, std::string_view key) {
  return mr_unsignedValueForKey(object, key).value_or(0);
}

void restoreColumns(QNItem& item, const JsonObject& exported) {
  const Json* const trashed = mr_objectForKey(exported, kTrashed, JsonKind::bool_);
  if (trashed != nullptr) item.setTrashed(trashed->get_bool());
  item.setFaveIndex(std::min(numberOf(exported, kFaveIndex), QNItem::newItemFaveIndex()));
  item.setLastUsedTimestamp(numberOf(exported, kLastUsed));
  item.setNumberOfTimesUsed(
      static_cast<std::int32_t>(std::min(numberOf(exported, kTimesUsed), kMostTimesUsed)));
  item.setFolderUUID(ownedStringForKey(exported, kFolderUUID));
}

// Its vault looks for it by the uuid, and by the row id only for what it has stored itself.
QNResult<JsonObject> rowOf(const Json& exported) {
  const JsonObject* const object = exported.if_object();
  const Json* const row =
      object == nullptr ? nullptr : mr_objectForKey(*object, kRow, JsonKind::object);
  if (row == nullptr) return QNError::unreadable("it has no row");
  JsonObject attributes = mr_deepMutableCopy(row->get_object());
  const auto uuid = mr_validStringValueForKey(attributes, "uuid");
  if (!uuid || uuid->empty()) return QNError::unreadable("it has no uuid");
  attributes.stable_erase("oid");
  return attributes;
}

// Of a kind that isn't known, a vault takes anything.
bool isTaken(const QNItem& item) {
  const std::string category = item.categoryUUID().value_or("");
  return !item.isTombstone() && (nameOfCategory(category).empty() || isAvailable(category));
}

}  // namespace

JsonObject exportedJson(QNItem& item) {
  item.disableBackupKeys();
  item.clearBackupKeys();
  JsonObject object(jsonStorage());
  object.emplace(kRow, item.allAttributes());
  object[kTrashed] = item.trashed();
  object[kFaveIndex] = item.faveIndex();
  object[kLastUsed] = item.lastUsedTimestamp();
  object[kTimesUsed] = item.numberOfTimesUsed();
  if (const auto folder = item.folderUUID()) setJsonText(object, kFolderUUID, *folder);
  return object;
}

QNResult<std::shared_ptr<QNItem>> itemFromExported(const Json& exported,
                                                   const std::shared_ptr<QNProfile>& vault) {
  const auto attributes = rowOf(exported);
  if (!attributes) return attributes.error();
  auto item = QNItem::itemWithAttributes(attributes.value(), vault);
  if (item == nullptr || !item->validateAndRepairImportedProperties() || !isTaken(*item)) {
    return QNError::unreadable("a local vault takes no item of its category");
  }
  restoreColumns(*item, exported.get_object());
  return item;
}

}  // namespace quillon
