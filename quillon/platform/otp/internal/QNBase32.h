#pragma once

#include <cstddef>
#include <string_view>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

/// Bytes from base32 (RFC 4648, section 6) as people copy it: small letters, white space and
/// dashes between the characters, padding complete, cut or left out.
struct QNBase32 {
  enum class Fault {
    none,
    /// A character that isn't of the alphabet.
    foreignCharacter,
    /// Characters of the alphabet that no encoder puts out: 1, 3 or 6 at the end, a character
    /// behind padding, or too much of it.
    brokenGroup,
  };
  Fault fault = Fault::none;
  Bytes bytes;  // empty if there is a fault
  /// What doesn't fill a byte at the end is dropped, whatever its bits: many sites draw seeds as
  /// random characters.
  static QNBase32 decode(std::string_view text);
};

}  // namespace quillon
