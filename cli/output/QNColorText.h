#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "quillon/platform/images/QNImage.h"

namespace quillon {

/// "#rrggbb", or without the "#", in digits of either case; opaque. Nothing for any other text.
std::optional<QNColor> colorFromText(std::string_view text);
/// "#RRGGBB", rounded; what colorFromText() has read comes back. Alpha isn't told.
std::string textOfColor(const QNColor& color);

}  // namespace quillon
