#pragma once

#include <optional>

#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// Each component brought to 0 to 1; one that is no number or infinite to 0. No stored form has a
/// place for such a one.
QNColor storableColor(const QNColor& color);
/// A colour as a JSON object of four numbers, 0 to 1: part of stored vaults.
///
///   "h" hue   "s" saturation   "b" brightness   "a" alpha
JsonObject jsonOfColor(const QNColor& color);
/// Numbers and numeric texts are read, in 32 bits; anything else as 0. Null gives no colour.
std::optional<QNColor> colorOfJson(const JsonObject* color);

}  // namespace quillon
