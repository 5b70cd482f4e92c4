#include "quillon/templates/QNTemplateManager.h"

namespace quillon {

QNTemplateManager& QNTemplateManager::sharedManager() {
  static QNTemplateManager shared;
  return shared;
}

std::shared_ptr<QNTemplate> QNTemplateManager::findTemplateWithUUID(
    std::optional<std::string_view> uuid) const {
  if (!uuid) return nullptr;
  const std::lock_guard guard(_mutex);
  const auto found = _templates.find(*uuid);
  return found == _templates.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<QNTemplate>> QNTemplateManager::templates() const {
  const std::lock_guard guard(_mutex);
  std::vector<std::shared_ptr<QNTemplate>> all;
  for (const auto& entry : _templates) all.push_back(entry.second);
  return all;
}

void QNTemplateManager::addTemplate(const std::shared_ptr<QNTemplate>& added) {
  const std::lock_guard guard(_mutex);
  _templates[added->uuid()] = added;
}

void QNTemplateManager::removeTemplateWithUUID(std::string_view uuid) {
  const std::lock_guard guard(_mutex);
  const auto found = _templates.find(uuid);
  if (found != _templates.end()) _templates.erase(found);
}

}  // namespace quillon
