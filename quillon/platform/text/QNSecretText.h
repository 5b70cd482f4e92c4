#pragma once

#include <string_view>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// What lowercaseIdentifier() gives, of a text that must not outlive its use.
QNSecret secretLowercaseIdentifier(std::string_view text);

}  // namespace quillon
