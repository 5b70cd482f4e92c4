#include "cli/import/QNItemRow.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/fields/QNCategoryNames.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/json/QNJson.h"

// An item of an export:
//
//   "row"         object, the row dictionary; its "uuid", "overview" and "details" are needed, an
//                 "oid" isn't read
//   "trashed"     true or false
//   "faveIndex"   whole number, 0 for none
//   "lastUsed"    whole number, seconds since 1970, 0 for never
//   "timesUsed"   whole number
//   "inbox"       true or false
//   "folderUUID"  text, left out when absent

namespace quillon {
namespace {

constexpr std::string_view kRow = "row";
constexpr std::string_view kOverview = "overview";  // these three of the row
constexpr std::string_view kDetails = "details";
constexpr std::string_view kURLs = "URLs";
constexpr std::string_view kTrashed = "trashed";
constexpr std::string_view kFaveIndex = "faveIndex";
constexpr std::string_view kLastUsed = "lastUsed";
constexpr std::string_view kTimesUsed = "timesUsed";
constexpr std::string_view kInbox = "inbox";
constexpr std::string_view kFolderUUID = "folderUUID";

constexpr std::uint64_t kMostTimesUsed = 0x7fffffff;

// The file is an object, its items a list; JSON is read down to kMaxJsonDepth.
constexpr std::size_t kMostLevels = kMaxJsonDepth - 2;

// Do no more containers than that stand inside one another?
bool isNestedWithin(const Json& value, std::size_t levels) {
  const auto isInside = [levels](const Json& inner) { return isNestedWithin(inner, levels - 1); };
  if (const JsonArray* const list = value.if_array()) {
    return levels > 0 && std::all_of(list->begin(), list->end(), isInside);
  }
  const JsonObject* const object = value.if_object();
  return object == nullptr ||
         (levels > 0 && std::all_of(object->begin(), object->end(),
                                    [&](const auto& member) { return isInside(member.value()); }));
}

std::uint64_t numberOf(const JsonObject& object, std::string_view key) {
  return mr_unsignedValueForKey(object, key).value_or(0);
}

bool truthOf(const JsonObject& object, std::string_view key) {
  const Json* const truth = mr_objectForKey(object, key, JsonKind::bool_);
  return truth != nullptr && truth->get_bool();
}

void restoreColumns(QNItem& item, const JsonObject& exported) {
  item.setTrashed(truthOf(exported, kTrashed));
  item.setInboxItem(truthOf(exported, kInbox));
  item.setFaveIndex(std::min(numberOf(exported, kFaveIndex), QNItem::newItemFaveIndex()));
  item.setLastUsedTimestamp(numberOf(exported, kLastUsed));
  item.setNumberOfTimesUsed(
      static_cast<std::int32_t>(std::min(numberOf(exported, kTimesUsed), kMostTimesUsed)));
  item.setFolderUUID(ownedStringForKey(exported, kFolderUUID));
}

// What a vault would leave out without a word; an export has either all addresses or none.
bool hasGoodURLs(const JsonObject& row) {
  const Json* const urls = row.if_contains(kURLs);
  if (urls == nullptr) return true;
  const JsonArray* const list = urls->if_array();
  return list != nullptr &&
         std::all_of(list->begin(), list->end(), [](const Json& url) { return url.is_object(); });
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
  for (const std::string_view part : {kOverview, kDetails}) {
    if (mr_objectForKey(attributes, part, JsonKind::object) == nullptr) {
      return QNError::unreadable(fmt::format("it has no {}", part));
    }
  }
  if (!hasGoodURLs(attributes)) return QNError::unreadable("its URLs are no list of objects");
  attributes.stable_erase("oid");
  return attributes;
}

// The list in that member; null for none.
JsonArray* listIn(Json* holder, std::string_view key) {
  JsonObject* const object = holder == nullptr ? nullptr : holder->if_object();
  Json* const list = object == nullptr ? nullptr : object->if_contains(key);
  return list == nullptr ? nullptr : list->if_array();
}

bool isOneTimePassword(const JsonObject& field) {
  const auto identifier = mr_validStringValueForKey(field, kItemFieldIdentifier);
  return identifier && identifier->starts_with(QNItemTOTPField::totpIdentifierPrefix()) &&
         mr_validStringValueForKey(field, kItemFieldType) == QNItemTOTPField::typeName();
}

// The identifier of a one-time password is drawn anew each time that its field is read. Numbered,
// two exports of one item are equal.
void numberOneTimePasswords(JsonObject& row) {
  std::size_t count = 0;
  const auto number = [&count](Json& field) {
    JsonObject* const stored = field.if_object();
    if (stored == nullptr || !isOneTimePassword(*stored)) return;
    setJsonText(*stored, kItemFieldIdentifier,
                fmt::format("{}{}", QNItemTOTPField::totpIdentifierPrefix(), ++count));
  };
  JsonArray* const sections = listIn(row.if_contains(kDetails), kDetailsSections);
  if (sections == nullptr) return;
  for (Json& section : *sections) {
    JsonArray* const fields = listIn(&section, kFieldSectionFields);
    if (fields != nullptr) std::for_each(fields->begin(), fields->end(), number);
  }
}

// Of a kind that isn't known, a vault takes anything.
bool isTaken(const QNItem& item) {
  const std::string category = item.categoryUUID().value_or("");
  return !item.isTombstone() && (nameOfCategory(category).empty() || isAvailable(category));
}

}  // namespace

JsonObject exportedJson(QNItem& item) {
  item.clearBackupKeys();
  JsonObject object(jsonStorage());
  JsonObject row = item.allAttributes();
  numberOneTimePasswords(row);
  object.emplace(kRow, std::move(row));
  object[kTrashed] = item.trashed();
  object[kFaveIndex] = item.faveIndex();
  object[kLastUsed] = item.lastUsedTimestamp();
  object[kTimesUsed] = item.numberOfTimesUsed();
  object[kInbox] = item.inboxItem();
  if (const auto folder = item.folderUUID()) setJsonText(object, kFolderUUID, *folder);
  return object;
}

QNResult<Bytes> exportedText(JsonObject exported) {
  const Json json(std::move(exported));
  if (!isNestedWithin(json, kMostLevels)) {
    return QNError::unreadable("it nests too deeply to be imported again");
  }
  QNError error;
  auto text = mr_JSONDataWithError(json, &error);
  if (!text) return error;
  return std::move(*text);
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
