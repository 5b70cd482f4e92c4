#pragma once

#include <cstdint>
#include <optional>

#include "quillon/platform/json/QNJson.h"

namespace quillon {

// What a stored value reads as where another kind was expected.

/// The text of any value: a text as it is, a number in digits as far as they stay short, "true" or
/// "false", a container as its JSON text. Nothing for a JSON null.
std::optional<QNSecret> descriptionOfJson(const Json& value);

/// The whole number of a number, or of a text that is one in digits, blanks around it apart; what
/// stands behind the point is cut off. Nothing for any other value, and for a number that 64 bits
/// don't hold.
std::optional<std::int64_t> integerOfJson(const Json& value);

}  // namespace quillon
