#include "quillon/kinds/QNIdentity.h"

#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {

std::shared_ptr<QNIdentity> QNIdentity::initNewIdentity() {
  return initNewWithTemplate(
      QNTemplateManager::sharedManager().templateWithUUID(QNCategoryUUIDIdentity));
}

std::shared_ptr<QNIdentity> QNIdentity::initNewWithTemplate(
    const std::shared_ptr<QNTemplate>& from) {
  if (from == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, "QNIdentity",
                                       "Failed to obtain Identity template");
    return nullptr;
  }
  auto identity = std::make_shared<QNIdentity>(initNew);
  identity->_setFieldSections(from->instantiateFieldSections());
  return identity;
}

QNIdentity::QNIdentity(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDIdentity));
}

QNIdentity::QNIdentity(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDIdentity));
}

}  // namespace quillon
