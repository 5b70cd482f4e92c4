#include <algorithm>
#include <charconv>
#include <cmath>

#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/vaults/QNProfile.h"

// A colour as text, part of stored vaults: a JSON object of four numbers, 0 to 1.
//
//   "h" hue   "s" saturation   "b" brightness   "a" alpha

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

// The number at the beginning of a text; 0 where there is none.
double leadingNumber(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\r");
  if (start == std::string_view::npos) return 0;
  text.remove_prefix(text[start] == '+' ? start + 1 : start);
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// A colour's component may have been stored as a number or as a text that is one.
float componentForKey(const JsonObject& color, std::string_view key) {
  double component = 0;
  if (const Json* const found = color.if_contains(key)) {
    if (found->is_number()) component = found->to_number<double>();
    if (found->is_string()) component = leadingNumber(found->get_string());
  }
  return std::isfinite(component) ? static_cast<float>(std::clamp(component, 0.0, 1.0)) : 0;
}

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

std::optional<std::string> QNProfile::profileColorText() const {
  if (!_profileColor) return std::nullopt;
  JsonObject color;
  color["h"] = static_cast<double>(_profileColor->hue);
  color["s"] = static_cast<double>(_profileColor->saturation);
  color["b"] = static_cast<double>(_profileColor->brightness);
  color["a"] = static_cast<double>(_profileColor->alpha);
  return mr_JSONStringWithError(color);
}

void QNProfile::setProfileColorText(std::optional<std::string> text) {
  const auto color = text ? mr_objectFromJSONStringWithError(*text) : std::nullopt;
  if (!color) return setProfileColor(std::nullopt);
  setProfileColor(QNColor{componentForKey(*color, "h"), componentForKey(*color, "s"),
                          componentForKey(*color, "b"), componentForKey(*color, "a")});
}

}  // namespace quillon
