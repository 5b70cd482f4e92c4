#pragma once

namespace quillon {

/// Does the byte go on with a character of UTF-8 that one before it began?
constexpr bool continuesCharacter(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

}  // namespace quillon
