#include "quillon/items/internal/QNItemState.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/log/MRLogger.h"

// A row dictionary, in clear; in this order, whole in docs/formats.md:
//
//   key             type                                      left out when
//   "overview"      object, without "pendingCustomIcon"       it doesn't open
//   "categoryUUID"  text                                      absent
//   "uuid"          text                                      absent
//   "updatedAt"     whole number                              never
//   "createdAt"     whole number                              never
//   "scope"         text                                      absent
//   "sectionName"   text                                      absent: in an item never saved
//   "details"       object                                    details aren't loaded, or don't open
//   "URLs"          list of the addresses' row dictionaries   details aren't loaded, there is none,
//                                                             or one doesn't open
//
// Read by itemWithAttributes() alone: "oid", a number, and "templateUuid", a text that stands for
// a missing "categoryUUID".

namespace quillon {
namespace {

constexpr std::string_view kRowOverview = "overview";
constexpr std::string_view kRowCategoryUUID = "categoryUUID";
constexpr std::string_view kRowTemplateUuid = "templateUuid";
constexpr std::string_view kRowUuid = "uuid";
constexpr std::string_view kRowOid = "oid";
constexpr std::string_view kRowUpdatedAt = "updatedAt";
constexpr std::string_view kRowCreatedAt = "createdAt";
constexpr std::string_view kRowScope = "scope";
constexpr std::string_view kRowSectionName = "sectionName";
constexpr std::string_view kRowDetails = "details";
constexpr std::string_view kRowURLs = "URLs";

std::optional<std::string> textOfRow(const JsonObject& attributes, std::string_view key) {
  const auto text = mr_validStringValueForKey(attributes, key);
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::uint64_t numberOfRow(const JsonObject& attributes, std::string_view key) {
  return mr_unsignedValueForKey(attributes, key).value_or(0);
}

void putText(JsonObject& attributes, std::string_view key, const std::optional<std::string>& text) {
  if (text) setJsonText(attributes, key, *text);
}

}  // namespace

std::shared_ptr<QNItem> QNItem::itemWithAttributes(
    const JsonObject& attributes, const std::shared_ptr<QNGenericProfile>& forProfile) {
  if (forProfile == nullptr) return nullptr;
  auto category = textOfRow(attributes, kRowCategoryUUID);
  if (!category) category = textOfRow(attributes, kRowTemplateUuid);
  const std::uint64_t oid = numberOfRow(attributes, kRowOid);
  auto item = oid != 0 ? forProfile->existingItemWithID(oid, category)
                       : forProfile->newItemForCategoryUUID(category);
  if (item == nullptr) return nullptr;
  item->setProfile(forProfile);
  item->setAllAttributes(attributes);
  item->setCategoryUUID(std::move(category));  // no class without it, by whichever name it came
  return item;
}

void QNItem::saveAllAttributes(JsonObject& attributes) {
  QNDatabaseObjectWithOverview::saveAllAttributes(attributes);
  putText(attributes, kRowCategoryUUID, _categoryUUID);
  if (_uuid != nullptr) setJsonText(attributes, kRowUuid, *_uuid);
  attributes[kRowUpdatedAt] = _updatedAt;
  attributes[kRowCreatedAt] = _createdAt;
  putText(attributes, kRowScope, scope());
  {
    const std::lock_guard lock(monitor());
    putText(attributes, kRowSectionName, _sectionName);
  }
  if (!detailsLoaded()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Item details must be loaded");
    return removePendingIconFromAttributesDictionary(attributes);
  }
  if (auto details = detailsCopy()) attributes[kRowDetails] = std::move(*details);
  saveURLs(attributes);
  removePendingIconFromAttributesDictionary(attributes);
}

// All or none: a reader takes a shorter list for the whole.
void QNItem::saveURLs(JsonObject& attributes) {
  const auto urls = URLs();
  if (urls.empty() || !allOpen(urls)) return;
  JsonArray rows(jsonStorage());
  for (const auto& url : urls) rows.emplace_back(url->allAttributes());
  attributes[kRowURLs] = std::move(rows);
}

// An icon that waits for its upload never leaves the device.
void QNItem::removePendingIconFromAttributesDictionary(JsonObject& attributes) {
  Json* const overview = attributes.if_contains(kRowOverview);
  if (overview != nullptr && overview->is_object()) {
    overview->get_object().stable_erase(kPendingCustomIcon);
  }
}

void QNItem::restoreAllAttributes(const JsonObject& attributes) {
  QNDatabaseObjectWithOverview::restoreAllAttributes(attributes);
  setCategoryUUID(textOfRow(attributes, kRowCategoryUUID));
  if (auto uuid = textOfRow(attributes, kRowUuid); uuid && !uuid->empty()) {
    updateUuid(sharedString(std::move(*uuid)), kProfileTypeLocalVault);
  }
  setUpdatedAt(numberOfRow(attributes, kRowUpdatedAt));
  setCreatedAt(numberOfRow(attributes, kRowCreatedAt));
  setScope(textOfRow(attributes, kRowScope));
  setSectionName(textOfRow(attributes, kRowSectionName));
  // Former keys in details that don't open would be lost with them.
  const bool isSealed = detailsLoaded() && detailsData() && mutableDetails() == nullptr;
  if (!isSealed) restoreDetails(attributes);
  markLoadingDetails();
  restoreURLs(attributes);
  const std::lock_guard lock(monitor());
  markDetailsLoaded();
  if (!isSealed) didParseDetails();
}

// Former keys are taken before the details count as loading: details that are still sealed open
// for the last time here, and attachments may be sealed under any of those keys.
void QNItem::restoreDetails(const JsonObject& attributes) {
  QNSecretSet formerKeys = detailsLoaded() ? backupKeysBase64Encoded() : QNSecretSet();
  markLoadingDetails();
  if (const Json* const stored = mr_objectForKey(attributes, kRowDetails, JsonKind::object)) {
    const std::lock_guard lock(monitor());
    copyDetails(stored->get_object());
    dropObjectsOfDetails();  // of equal details too: edits of theirs aren't in the dictionary
  }
  addBackupKeysBase64Encoded(std::move(formerKeys));
}

void QNItem::restoreURLs(const JsonObject& attributes) {
  OpenState& open = openState();
  if (open.URLs) open.URLs->clear();
  open.deletedURLs.clear();
  dropURLCaches();
  const Json* const rows = mr_objectForKey(attributes, kRowURLs, JsonKind::array);
  if (rows == nullptr || rows->get_array().empty()) return;
  const auto self = weak_from_this().lock();
  if (self == nullptr) return reportUnsharedItem();
  for (const Json& row : rows->get_array()) {
    if (const auto* const stored = row.if_object()) addURL(QNItemURL::urlForItem(self, *stored));
  }
}

bool QNItem::validateAndRepairImportedProperties() {
  if (!QNDatabaseObjectWithOverview::validateAndRepairImportedProperties()) return false;
  if (!_categoryUUID) return false;
  if ((_uuid == nullptr || _uuid->empty()) && profileType() != 0) regenerateUuid();
  if (_updatedAt == 0) setUpdatedAt(secondsNow());
  if (_createdAt == 0) setCreatedAt(secondsNow());
  removeNullsFromDetails();
  return true;
}

// What was built from the details would bring its nulls back with the next save.
void QNItem::removeNullsFromDetails() {
  const std::lock_guard lock(monitor());
  const JsonObject* const live = mutableDetails();
  if (live == nullptr) return;
  saveObjectsOfDetails();
  JsonObject repaired = mr_deepMutableCopy(*live);
  mr_removeNSNullValues(repaired);
  if (!equalJson(repaired, *live)) copyDetails(repaired);
}

}  // namespace quillon
