#pragma once

#include <string>
#include <string_view>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// What lowercaseIdentifier() gives, of a text that must not outlive its use.
QNSecret secretLowercaseIdentifier(std::string_view text);

/// The text as a secret. The string is wiped once it is copied, as far as it knows what it holds.
inline QNSecret secretOf(std::string text) {
  QNSecret secret(text);
  wipe(text.data(), text.size());
  return secret;
}

}  // namespace quillon
