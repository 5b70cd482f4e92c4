#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

bool QNItem::belongsToAccount() const {
  if (profileType() == kProfileTypeAccountVault) return true;
  MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                 "Unsupported profile type: {}", profileType());
  return false;
}

H9ItemProperties* QNItem::h9ItemProperties() {
  if (!belongsToAccount()) return nullptr;
  auto& properties = rareColumns().h9ItemProperties;
  return properties ? &*properties : &properties.emplace();
}

void QNItem::setH9ItemProperties(std::optional<H9ItemProperties> properties) {
  if (belongsToAccount()) rareColumns().h9ItemProperties = std::move(properties);
}

std::optional<Bytes> QNItem::encryptedExportOverview() {
  if (!belongsToAccount() || _rare == nullptr) return std::nullopt;
  return _rare->encryptedExportOverview;
}

std::optional<Bytes> QNItem::encryptedExportDetails() {
  if (!belongsToAccount() || _rare == nullptr) return std::nullopt;
  return _rare->encryptedExportDetails;
}

}  // namespace quillon
