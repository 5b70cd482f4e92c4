#pragma once
// For tests: a vault that costs no key derivation, an item with a password, and what a database
// layer does with both.

#include "quillon/items/QNItem.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/data/MRData.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNTestServerProfile.h"

namespace quillon {

/// An unlocked local vault with random keys, that row id and that uuid.
inline std::shared_ptr<QNProfile> localVault(std::uint64_t oid = 1,
                                             const std::string& uuid = mr_uuid()) {
  auto vault = QNProfile::initExistingWithID(oid);
  vault->setUuid(sharedString(uuid));
  vault->setOverviewKey(mr_randomData(OVERVIEW_KEY_SIZE));
  vault->setMasterKey(mr_randomData(MASTER_KEY_SIZE));
  return vault;
}

inline std::shared_ptr<QNTestServerProfile> accountVault(std::uint64_t oid = 2) {
  auto vault = std::make_shared<QNTestServerProfile>(oid);
  vault->setUuid(sharedString(mr_shortUUID()));
  return vault;
}

/// An item whose password is the value of the one entry of details "fields".
class QNSampleItem final : public QNItem {
 public:
  using QNItem::QNItem;
  [[nodiscard]] std::string_view className() const override { return "QNSampleItem"; }

  std::optional<QNSecret> password() override {
    const std::lock_guard lock(monitor());
    const Json* const fields = detailsObjectForKey(kDetailsFields);
    if (fields == nullptr || !fields->is_array() || fields->get_array().empty()) {
      return std::nullopt;
    }
    const auto value = mr_validStringValueForKey(fields->get_array()[0].get_object(), "value");
    return value ? std::optional<QNSecret>(*value) : std::nullopt;
  }
  void setPassword(std::optional<std::string_view> password) override {
    JsonArray fields(jsonStorage());
    fields.emplace_back(boost::json::object_kind);
    if (password) setJsonText(fields[0].get_object(), "value", *password);
    setDetailsObject(Json(std::move(fields)), kDetailsFields);
  }
  std::optional<std::string> username() override { return name; }
  void willSerialize() override {
    ++numberOfSerializations;
    QNItem::willSerialize();
  }

  std::optional<std::string> name;
  int numberOfSerializations = 0;
};

using QNSampleItemRef = std::shared_ptr<QNSampleItem>;

/// A new item in that vault.
inline QNSampleItemRef newItem(const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = std::make_shared<QNSampleItem>(initNew);
  item->setProfile(vault);
  return item;
}

/// A new item of that title, in a vault of its own.
inline QNSampleItemRef itemTitled(std::string_view title) {
  auto item = newItem(localVault());
  item->setTitle(title);
  return item;
}

/// Saves as a database layer does: a first save gives the item a row.
inline void save(QNItem& item) {
  item.willSave();
  if (!item.hasOid()) item._setOid(11);
  item.didSave();
}

/// What a list reads of a row: overview, identity, category and times.
inline QNSampleItemRef listed(QNItem& row, const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = std::make_shared<QNSampleItem>(QNExisting{row.oid()});
  item->setProfile(vault);
  item->setUuid(row.uuid());
  item->setCategoryUUID(row.categoryUUID());
  item->setCreatedAt(row.createdAt());
  item->setUpdatedAt(row.updatedAt());
  item->setOverviewData(row.overviewData());
  item->didLoad();
  return item;
}

/// A listed item, then its key and details, which stay encrypted.
inline QNSampleItemRef opened(QNItem& row, const std::shared_ptr<QNGenericProfile>& vault) {
  auto item = listed(row, vault);
  item->markLoadingDetails();
  item->setEncryptedKey(row.encryptedKey());
  item->setDetailsData(row.detailsData());
  item->markDetailsLoaded();
  item->markAttachmentsLoaded();
  item->didLoad();
  return item;
}

inline JsonObject jsonObject(std::string_view text) {
  return *mr_objectFromJSONStringWithError(text);
}
inline Json jsonValue(std::string_view text) {
  return *mr_valueFromJSONDataWithError(bytesOf(text));
}
inline std::string jsonText(const Json* value) {
  return value == nullptr ? "(none)" : mr_JSONStringWithError(*value).value_or("(no form)");
}

inline Bytes archiveOf(QNItem& item) {
  return QNKeyedArchiver::archivedDataWithRootObject(item).value();
}
/// The item in an archive; null for any other bytes.
inline std::shared_ptr<QNItem> itemIn(ByteView archive) {
  const auto read =
      QNKeyedUnarchiver::unarchivedObjectOfClasses(QNItem::decodableClasses(), archive);
  return read.ok() ? std::dynamic_pointer_cast<QNItem>(read.value()) : nullptr;
}
/// The members of the root, to be looked at and changed.
inline JsonObject rootOf(ByteView archive) {
  return mr_objectFromJSONDataWithError(archive)->at("root").get_object();
}
inline Bytes archiveWithRoot(const JsonObject& root) {
  return *mr_JSONDataWithError(JsonObject{{"quillon-archive", 1}, {"root", root}});
}

inline std::vector<std::string> revealed(const std::vector<QNSecret>& secrets) {
  std::vector<std::string> texts;
  for (const QNSecret& secret : secrets) texts.emplace_back(secret.reveal());
  return texts;
}

inline std::vector<std::string> assertions(const MRCapturingSink& sink) {
  return sink.texts(MRLogKind::assertion);
}
inline std::vector<std::string> errors(const MRCapturingSink& sink) {
  return sink.texts(MRLogKind::error);
}

}  // namespace quillon
