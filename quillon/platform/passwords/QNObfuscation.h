#pragma once

#include <optional>
#include <string_view>

#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// A text scrambled so that it isn't read at a glance: what an archive holds of a password.
/// NOT encryption: everybody can undo it, on any device and for ever. The form is stored data;
/// docs/formats.md tells it.
QNSecret persistentObfuscatedString(std::string_view text);
/// The text; nothing for what isn't such a form.
std::optional<QNSecret> persistentDeobfuscatedString(std::string_view scrambled);

}  // namespace quillon
