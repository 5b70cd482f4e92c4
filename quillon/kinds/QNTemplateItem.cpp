#include "quillon/kinds/QNTemplateItem.h"

#include "quillon/fields/QNItemField.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {

std::shared_ptr<QNTemplateItem> QNTemplateItem::initNewWithTemplate(
    const std::shared_ptr<QNTemplate>& from) {
  if (from == nullptr) return nullptr;
  const std::shared_ptr<QNTemplateItem> item(new QNTemplateItem(initNew));
  item->setCategoryUUID(from->uuid());
  item->_setFieldSections(from->instantiateFieldSections());
  return item;
}

// An account's vault knows templates that this library doesn't.
std::shared_ptr<QNTemplate> QNTemplateItem::templateOfCategory() const {
  const auto vault = profile();
  auto found = vault == nullptr ? nullptr : vault->templateForCategoryUUID(categoryUUID());
  if (found != nullptr) return found;
  return QNTemplateManager::sharedManager().templateWithUUID(categoryUUID());
}

std::optional<std::string> QNTemplateItem::_additionalInformation() {
  const auto known = templateOfCategory();
  if (known == nullptr || !known->subtitleFieldName()) return "";
  const std::lock_guard lock(monitor());
  const auto field = findFieldWithIdentifier(*known->subtitleFieldName());
  const auto value = field == nullptr ? std::nullopt : field->stringValue();
  return value ? subtitleOfText(value->reveal()) : QNItem::_additionalInformation();
}

bool QNTemplateItem::isSoftwareLicense() const {
  return categoryUUID() == QNCategoryUUIDSoftwareLicense;
}

}  // namespace quillon
