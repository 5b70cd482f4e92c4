#include <algorithm>
#include <charconv>
#include <cmath>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/vaults/QNProfile.h"

// A colour as text, part of stored vaults: a JSON object of four numbers, 0 to 1.
//
//   "h" hue   "s" saturation   "b" brightness   "a" alpha

namespace quillon {
namespace {

/// Longest encoded icon that a vault keeps, in bytes.
constexpr std::size_t kMaxIconBytes = 49152;

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
