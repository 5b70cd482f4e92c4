// An archive of a category has: "uuid", "sName", "pName", "sourceIconName", "detaiIconName" (texts;
// the missing l is stored data), "numberOfItems", "accountId" (64-bit integers), "adHoc" (a
// boolean), "json" (the template's definition). What is absent isn't written.

#include "quillon/templates/H9Category.h"

#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNCategoryHelper.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

std::shared_ptr<QNTemplate> sharedTemplate(QNOptionalUUID uuid) {
  return QNTemplateManager::sharedManager().findTemplateWithUUID(uuid);
}

}  // namespace

std::shared_ptr<H9Category> H9Category::categoryWithTemplate(
    const std::shared_ptr<QNTemplate>& from, std::uint64_t existingId, std::uint64_t accountId,
    const JsonObject* jsonDictionary) {
  if (from == nullptr || accountId == 0) return nullptr;
  auto category = existingId != 0 ? std::make_shared<H9Category>(QNExisting{existingId})
                                  : std::make_shared<H9Category>(initNew);
  category->setJsonDictionary(jsonDictionary);
  category->_uuid = from->uuid();
  category->_accountId = accountId;
  category->_singularName = from->localizedTitle();
  category->_pluralName = from->localizedPluralTitle();
  category->_detailIconName = from->detailIconName();
  category->_sourceIconName = from->sourceIconName();
  if (const auto& server = from->h9TemplateProperties()) {
    category->_singularName = server->title;
    category->_pluralName = server->pluralTitle;
    category->_uuid = server->uuid;
  }
  return category;
}

std::shared_ptr<H9Category> H9Category::initAdHocWithUUID(QNOptionalUUID uuid) {
  auto category = std::make_shared<H9Category>(initNew);
  category->_adHoc = true;
  if (uuid) category->_uuid = std::string(*uuid);
  const std::string other = QNLocalizedString("Other");
  category->_singularName = QNCategoryHelper::defaultSingularNameFor(uuid).value_or(other);
  category->_pluralName = QNCategoryHelper::defaultPluralNameFor(uuid).value_or(other);
  return category;
}

H9Category::H9Category(QNDecoder& coder)
    : H9DatabaseObject(coder),
      _adHoc(coder.decodeBool("adHoc").value_or(false)),
      _uuid(coder.decodeString("uuid")),
      _singularName(coder.decodeString("sName")),
      _pluralName(coder.decodeString("pName")),
      _detailIconName(coder.decodeString("detaiIconName")),
      _sourceIconName(coder.decodeString("sourceIconName")),
      _numberOfItems(coder.decodeInt64("numberOfItems").value_or(0)),
      _accountId(coder.decodeInt64("accountId").value_or(0)) {
  const Json* const json = coder.decodeJson("json");
  if (json != nullptr && json->is_object()) {
    _template = std::make_shared<const QNTemplate>(&json->get_object());
  }
}

void H9Category::encodeWithCoder(QNEncoder& coder) {
  H9DatabaseObject::encodeWithCoder(coder);
  encodeIfPresent(coder, _uuid, "uuid");
  encodeIfPresent(coder, _singularName, "sName");
  encodeIfPresent(coder, _pluralName, "pName");
  encodeIfPresent(coder, _sourceIconName, "sourceIconName");
  encodeIfPresent(coder, _detailIconName, "detaiIconName");
  coder.encodeInt64(_numberOfItems, "numberOfItems");
  if (const auto* const json = jsonDictionary()) coder.encodeJson(Json(*json), "json");
  coder.encodeInt64(_accountId, "accountId");
  coder.encodeBool(_adHoc, "adHoc");
}

std::string H9Category::description() const {
  return formatted("<H9Category: {}-{}> uuid:'{}', pluralName'{}' adHoc:{}",
                   static_cast<const void*>(this), oid(), _uuid.value_or("(null)"),
                   _pluralName.value_or("(null)"), _adHoc ? "YES" : "NO");
}

bool H9Category::isHidden() const {
  const JsonObject* const json = jsonDictionary();
  if (json != nullptr && !json->empty()) return _template->hidden();
  return _uuid == QNCategoryUUIDTombstone;
}

bool H9Category::isModifiedCopyOf(const QNGenericCategory& other) const {
  if (dynamic_cast<const H9Category*>(&other) == nullptr) return false;
  return _numberOfItems != other.numberOfItems() || _singularName != other.singularName() ||
         _pluralName != other.pluralName();
}

void H9Category::setJsonDictionary(const JsonObject* dictionary) {
  _template = dictionary == nullptr ? nullptr : std::make_shared<const QNTemplate>(dictionary);
  if (dictionary == nullptr || dictionary->empty()) return;
  _singularName = _template->localizedTitle();
  _pluralName = _template->localizedPluralTitle();
  _detailIconName = _template->detailIconName();
  _sourceIconName = _template->sourceIconName();
}

// Icons

std::string H9Category::listIconName() const {
  const auto known = sharedTemplate(_uuid);
  if (known != nullptr && known->listIconName()) return *known->listIconName();
  return QNCategoryHelper::defaultListIconNameFor(_uuid);
}

QNImageRef H9Category::listIcon() const {
  return mr_imageNamed(listIconName());
}

QNImageRef H9Category::detailIcon() const {
  const auto known = sharedTemplate(_uuid);
  const auto icon = mr_imageNamed(known != nullptr && known->detailIconName()
                                      ? *known->detailIconName()
                                      : QNCategoryHelper::defaultDetailIconNameFor(_uuid));
  return icon != nullptr ? icon : listIcon();
}

QNImageRef H9Category::templateImageNamed(std::string_view name) const {
  const auto found = mr_imageNamed(name);
  const auto icon = found != nullptr ? found : listIcon();
  return icon == nullptr ? nullptr : icon->imageWithTemplate(true);
}

QNImageRef H9Category::menuIcon() const {
  return templateImageNamed(QNCategoryHelper::menuIconNameWith(listIconName()));
}

QNImageRef H9Category::touchBarIcon() const {
  return templateImageNamed(QNCategoryHelper::touchbarIconNameWith(listIconName()));
}

QNImageRef H9Category::sourceIconForBackgroundStyle(int style) const {
  return templateImageNamed(QNCategoryHelper::sourceIconNameWith(listIconName(), style));
}

}  // namespace quillon
