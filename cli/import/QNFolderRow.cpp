#include "cli/import/QNFolderRow.h"

#include "quillon/platform/data/MRData.h"

// A folder of an export:
//
//   "row"            object, the row dictionary; its "uuid" and "overview" are needed. Its
//                    "iconData" is read here, since the dictionary itself takes no bytes
//   "displayOrder"   whole number, 0 for none

namespace quillon {
namespace {

constexpr std::string_view kRow = "row";
constexpr std::string_view kUuid = "uuid";  // these three of the row
constexpr std::string_view kOverview = "overview";
constexpr std::string_view kIconData = "iconData";
constexpr std::string_view kDisplayOrder = "displayOrder";

QNResult<const JsonObject*> rowOf(const Json& exported) {
  const JsonObject* const object = exported.if_object();
  const Json* const row =
      object == nullptr ? nullptr : mr_objectForKey(*object, kRow, JsonKind::object);
  if (row == nullptr) return QNError::unreadable("it has no row");
  const JsonObject& attributes = row->get_object();
  if (mr_validStringValueForKey(attributes, kUuid).value_or("").empty()) {
    return QNError::unreadable("it has no uuid");
  }
  if (mr_objectForKey(attributes, kOverview, JsonKind::object) == nullptr) {
    return QNError::unreadable("it has no overview");
  }
  return &attributes;
}

// Whoever shows it finds out whether they are a picture.
QNResult<std::optional<Bytes>> iconOf(const JsonObject& row) {
  if (!row.contains(kIconData)) return std::optional<Bytes>();
  const auto text = mr_validStringValueForKey(row, kIconData);
  auto bytes = text ? mr_base64decode(*text) : std::nullopt;
  if (!bytes) return QNError::unreadable("its icon is no base64");
  return bytes;
}

}  // namespace

JsonObject exportedJson(QNFolder& folder) {
  JsonObject object(jsonStorage());
  object.emplace(kRow, folder.allAttributes());
  object[kDisplayOrder] = folder.displayOrder();
  return object;
}

QNResult<std::shared_ptr<QNFolder>> folderFromExported(const Json& exported,
                                                       const std::shared_ptr<QNProfile>& vault) {
  const auto row = rowOf(exported);
  if (!row) return row.error();
  auto icon = iconOf(*row.value());
  if (!icon) return icon.error();
  auto folder = std::make_shared<QNFolder>(initNew);
  folder->setProfile(vault);
  folder->setAllAttributes(*row.value());
  folder->setIconData(std::move(icon).value());
  folder->setDisplayOrder(mr_unsignedValueForKey(exported.get_object(), kDisplayOrder).value_or(0));
  folder->validateAndRepairImportedProperties();
  return folder;
}

}  // namespace quillon
