#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNColorJson.h"

namespace quillon {
namespace {

/// Longest encoded icon that a vault keeps, in bytes.
constexpr std::size_t kMaxIconBytes = 49152;

}  // namespace

std::shared_ptr<const QNImage> QNProfile::customIcon() const {
  return _iconData ? QNImage::imageWithData(*_iconData) : nullptr;
}

void QNProfile::setCustomIcon(const std::shared_ptr<const QNImage>& icon) {
  if (icon != nullptr && icon->data().size() > kMaxIconBytes) {
    MRLogger::sharedLogger().error(
        DEBUG_DATABASE, descriptionForLogging(),
        "Failed to set custom icon, JPEG data is too large: {} bytes. Giving up",
        icon->data().size());
    return;
  }
  markRowDirty();
  _iconData = icon != nullptr ? std::optional(toBytes(icon->data())) : std::nullopt;
}

std::optional<std::string> QNProfile::profileColorText() const {
  if (!_profileColor) return std::nullopt;
  return mr_JSONStringWithError(jsonOfColor(*_profileColor));
}

void QNProfile::setProfileColorText(std::optional<std::string> text) {
  const auto color = text ? mr_objectFromJSONStringWithError(*text) : std::nullopt;
  setProfileColor(colorOfJson(color ? &*color : nullptr));
}

}  // namespace quillon
