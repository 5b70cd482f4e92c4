#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/vaults/QNProfile.h"
#include "quillon/vaults/internal/QNColorJson.h"

namespace quillon {
namespace {

/// Longest encoded icon that a vault keeps, in bytes. Larger than kMaxCustomQN4IconSize, the limit
/// for icons of items, and meant so.
constexpr std::size_t kMaxIconBytes = 49152;
/// Width and height that an icon is brought to, in points.
constexpr double kIconSide = 300;
/// What a JPEG may lose: first this, then more.
constexpr float kIconQuality = 0.4f;
constexpr float kIconLowQuality = 0.32f;

}  // namespace

std::shared_ptr<const QNImage> QNProfile::customIcon() const {
  return _iconData ? QNImage::imageWithData(*_iconData) : nullptr;
}

std::shared_ptr<const QNImage> QNProfile::downscaleCustomIcon(
    const std::shared_ptr<const QNImage>& icon) {
  if (icon == nullptr) return nullptr;
  const QNSize size = icon->size();
  if (size.width <= kIconSide && size.height <= kIconSide) return icon;
  return mr_imageByScalingProportionallyToSize(icon, {kIconSide, kIconSide}, {}, {}, 1.0);
}

void QNProfile::setCustomIcon(const std::shared_ptr<const QNImage>& icon) {
  std::optional<Bytes> data;
  if (icon != nullptr) {
    data = encodedIcon(icon);
    if (!data) return;
  }
  markRowDirty();
  _iconData = std::move(data);
}

std::optional<Bytes> QNProfile::encodedIcon(std::shared_ptr<const QNImage> icon) const {
  const QNSize size = icon->size();
  if (icon->hasRepresentation() && size.width == size.height) {
    icon = icon->imageWithSize({kIconSide, kIconSide});
  }
  icon = downscaleCustomIcon(icon);
  auto png = QNImagePNGRepresentation(icon);
  if (!png || png->size() <= kMaxIconBytes) return png;
  return encodedIconAsJPEG(icon, png->size());
}

std::optional<Bytes> QNProfile::encodedIconAsJPEG(const std::shared_ptr<const QNImage>& icon,
                                                  std::size_t pngBytes) const {
  auto& logger = MRLogger::sharedLogger();
  auto jpeg = QNImageJPGRepresentation(icon, kIconQuality);
  if (!jpeg) return jpeg;
  logger.error(DEBUG_DATABASE, descriptionForLogging(),
               "Failed to set custom vault icon as PNG, data is too large: {} bytes. Trying JPEG: "
               "{} bytes.",
               pngBytes, jpeg->size());
  if (jpeg->size() <= kMaxIconBytes) return jpeg;
  logger.error(DEBUG_DATABASE, descriptionForLogging(),
               "Failed to set custom icon, JPEG data is too large: {} bytes. Will try again with "
               "less quality",
               jpeg->size());
  jpeg = QNImageJPGRepresentation(icon, kIconLowQuality);
  if (!jpeg || jpeg->size() <= kMaxIconBytes) return jpeg;
  logger.error(DEBUG_DATABASE, descriptionForLogging(),
               "Failed to set custom icon, JPEG data is too large: {} bytes. Giving up",
               jpeg->size());
  return std::nullopt;
}

void QNProfile::setProfileColor(std::optional<QNColor> color) {
  _profileColor = color ? std::optional(storableColor(*color)) : std::nullopt;
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
