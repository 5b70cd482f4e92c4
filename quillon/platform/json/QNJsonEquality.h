#pragma once

#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// Equal content? Numbers compare by their exact value and not by how they are held, at every
/// depth: 40 equals 40.0. The order of members doesn't count, the order of elements does.
bool equalJson(const Json& a, const Json& b);
bool equalJson(const JsonObject& a, const JsonObject& b);

}  // namespace quillon
