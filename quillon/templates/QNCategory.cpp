// The row dictionary of a category; a name that is absent has no member:
//
//   uuid          text   three characters
//   singularName  text
//   pluralName    text
//   listIconName  text
//   detaiIconName text   the detail icon name. The missing l is stored data.
//
// An archive has "sName" and "pName" for the two names, and the numbers "displayOrder" and
// "numberOfItems" beside them.

#include "quillon/templates/QNCategory.h"

#include <array>
#include <functional>

#include "quillon/platform/text/QNFormat.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

constexpr std::string_view kUUID = "uuid";
constexpr std::string_view kSingularName = "singularName";
constexpr std::string_view kPluralName = "pluralName";
constexpr std::string_view kListIconName = "listIconName";
constexpr std::string_view kDetailIconName = "detaiIconName";
constexpr std::string_view kArchivedSingularName = "sName";
constexpr std::string_view kArchivedPluralName = "pName";
constexpr std::string_view kDisplayOrder = "displayOrder";
constexpr std::string_view kNumberOfItems = "numberOfItems";

constexpr std::array<std::string_view, 5> kNamedByTheLibrary = {
    QNCategoryUUIDLogin, QNCategoryUUIDCreditCard, QNCategoryUUIDSecureNote, QNCategoryUUIDIdentity,
    QNCategoryUUIDPassword};

bool isNamedByTheLibrary(QNOptionalUUID uuid) {
  for (const std::string_view named : kNamedByTheLibrary) {
    if (uuid == named) return true;
  }
  return false;
}

std::shared_ptr<QNTemplate> templateOf(QNOptionalUUID uuid) {
  return QNTemplateManager::sharedManager().findTemplateWithUUID(uuid);
}

void save(const std::optional<std::string>& text, JsonObject& attributes, std::string_view key) {
  if (text) setJsonText(attributes, key, *text);
}

}  // namespace

QNCategory::QNCategory(QNDecoder& coder)
    : QNDatabaseObject(coder),
      _uuid(coder.decodeString(kUUID)),
      _singularName(coder.decodeString(kArchivedSingularName)),
      _pluralName(coder.decodeString(kArchivedPluralName)),
      _listIconName(coder.decodeString(kListIconName)),
      _detailIconName(coder.decodeString(kDetailIconName)),
      _numberOfItems(coder.decodeInt64(kNumberOfItems).value_or(0)),
      _displayOrder(coder.decodeInt64(kDisplayOrder).value_or(0)) {}

void QNCategory::encodeWithCoder(QNEncoder& coder) {
  QNDatabaseObject::encodeWithCoder(coder);
  if (_uuid) coder.encodeString(*_uuid, kUUID);
  if (_singularName) coder.encodeString(*_singularName, kArchivedSingularName);
  if (_pluralName) coder.encodeString(*_pluralName, kArchivedPluralName);
  if (_listIconName) coder.encodeString(*_listIconName, kListIconName);
  if (_detailIconName) coder.encodeString(*_detailIconName, kDetailIconName);
  coder.encodeInt64(_displayOrder, kDisplayOrder);
  coder.encodeInt64(_numberOfItems, kNumberOfItems);
}

std::string QNCategory::description() const {
  return formatted("<QNCategory: {}> '{}'", static_cast<const void*>(this),
                   _pluralName.value_or("(null)"));
}

bool QNCategory::isHidden() const {
  const auto found = templateOf(_uuid);
  return found != nullptr ? found->hidden() : _uuid == QNCategoryUUIDTombstone;
}

void QNCategory::setDisplayOrder(std::uint64_t order) {
  if (order == _displayOrder) return;
  if (_displayOrder != 0) markDisplayOrderDirty();
  _displayOrder = order;
}

bool QNCategory::isModifiedCopyOf(const QNGenericCategory& other) const {
  return _numberOfItems != other.numberOfItems() || _singularName != other.singularName() ||
         _pluralName != other.pluralName();
}

void QNCategory::setProfile(const std::shared_ptr<QNGenericProfile>& profile) {
  // What the base keeps owns nothing, and nobody reads it: profile() answers from the weak one.
  QNDatabaseObject::setProfile({std::shared_ptr<void>(), profile.get()});
  _vault = profile;
}

void QNCategory::didLoad() {
  if (isNamedByTheLibrary(_uuid)) {
    takeDefaultNames();
  } else if (const auto found = templateOf(_uuid)) {
    _singularName = found->localizedTitle();
    _pluralName = found->localizedPluralTitle();
    _listIconName = found->listIconName();
    _detailIconName = found->detailIconName();
  }
  QNDatabaseObject::didLoad();
}

void QNCategory::takeDefaultNames() {
  _singularName = QNCategoryHelper::defaultSingularNameFor(_uuid);
  _pluralName = QNCategoryHelper::defaultPluralNameFor(_uuid);
  _listIconName = QNCategoryHelper::defaultListIconNameFor(_uuid);
  _detailIconName = QNCategoryHelper::defaultDetailIconNameFor(_uuid);
}

void QNCategory::saveAllAttributes(JsonObject& attributes) {
  QNDatabaseObject::saveAllAttributes(attributes);
  save(_uuid, attributes, kUUID);
  save(_singularName, attributes, kSingularName);
  save(_pluralName, attributes, kPluralName);
  save(_listIconName, attributes, kListIconName);
  save(_detailIconName, attributes, kDetailIconName);
}

void QNCategory::restoreAllAttributes(const JsonObject& attributes) {
  QNDatabaseObject::restoreAllAttributes(attributes);
  _uuid = ownedStringForKey(attributes, kUUID);
  _singularName = ownedStringForKey(attributes, kSingularName);
  _pluralName = ownedStringForKey(attributes, kPluralName);
  _listIconName = ownedStringForKey(attributes, kListIconName);
  _detailIconName = ownedStringForKey(attributes, kDetailIconName);
}

}  // namespace quillon
