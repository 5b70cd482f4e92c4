#include "quillon/vaults/internal/QNColorJson.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace quillon {
namespace {

// The number at the beginning of a text; 0 where there is none.
double leadingNumber(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\r");
  if (start == std::string_view::npos) return 0;
  text.remove_prefix(text[start] == '+' ? start + 1 : start);
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

float storableComponent(double component) {
  return std::isfinite(component) ? static_cast<float>(std::clamp(component, 0.0, 1.0)) : 0;
}

// A colour's component may have been stored as a number or as a text that is one.
float componentForKey(const JsonObject& color, std::string_view key) {
  double component = 0;
  if (const Json* const found = color.if_contains(key)) {
    if (found->is_number()) component = found->to_number<double>();
    if (found->is_string()) component = leadingNumber(found->get_string());
  }
  return storableComponent(component);
}

}  // namespace

QNColor storableColor(const QNColor& color) {
  return {storableComponent(color.hue), storableComponent(color.saturation),
          storableComponent(color.brightness), storableComponent(color.alpha)};
}

JsonObject jsonOfColor(const QNColor& color) {
  JsonObject object(jsonStorage());
  object["h"] = static_cast<double>(color.hue);
  object["s"] = static_cast<double>(color.saturation);
  object["b"] = static_cast<double>(color.brightness);
  object["a"] = static_cast<double>(color.alpha);
  return object;
}

std::optional<QNColor> colorOfJson(const JsonObject* color) {
  if (color == nullptr) return std::nullopt;
  return QNColor{componentForKey(*color, "h"), componentForKey(*color, "s"),
                 componentForKey(*color, "b"), componentForKey(*color, "a")};
}

}  // namespace quillon
